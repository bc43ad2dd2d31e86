// Closing the envelope of a repeated stratum: every other stratum inside it, on either borehole,
// becomes a lens that starts at full thickness on its own hole and ends in a tip inside the
// envelope. The envelope's own occurrences produce nothing: the region itself stands for them.
#include "correlation/Correlation.h"

namespace xkl {

namespace {

// Appends the lenses of one borehole's runs. Both sides store the lens's own borehole corners in
// slot 0 and the tip in slot 1; readers of the tree know a lens by its kind and its -1/-1 range.
void AppendLenses(const Correlator& correlator, const _sLinkRegion& region, int32_t regionCode,
                  const std::vector<StratumRun>& runs, bool side, RegionList& out) {
  const _sZK& zk = side ? correlator.Zk1() : correlator.Zk2();
  for (const StratumRun& run : runs) {
    if (run.code == regionCode) {
      continue;
    }
    const double zTop = GetBoundaryGC(zk, run.begin);
    const double zBot = GetBoundaryGC(zk, run.end);
    const CXk3DPoint mid(zk.dX, zk.dY, (zBot + zTop) * 0.5);
    const CXk3DPoint tip = GetLensTip(correlator, region, mid, side);
    _sLinkRegion& lens = out.emplace_back();
    lens.nType = ToInt(RegionKind::Lens);
    lens.nBegin1 = side ? run.begin : -1;
    lens.nEnd1 = side ? run.end : -1;
    lens.nBegin2 = side ? -1 : run.begin;
    lens.nEnd2 = side ? -1 : run.end;
    lens.bNamed = run.merged;
    lens.strName = *correlator.Codes().codes[static_cast<std::size_t>(run.code)];
    lens.ptTop[0] = CXk3DPoint(zk.dX, zk.dY, zTop);
    lens.ptTop[1] = tip;
    lens.ptBot[0] = CXk3DPoint(zk.dX, zk.dY, zBot);
    lens.ptBot[1] = tip;
  }
}

} // namespace

void CloseNamedRegion(Correlator& correlator, const _sLinkRegion& region, RegionList& out) {
  BuildFusedRunsOfBothSides(correlator, region, out);
  const std::vector<StratumRun>& runs1 = correlator.runs.side1;
  const std::vector<StratumRun>& runs2 = correlator.runs.side2;
  const int32_t regionCode = correlator.Codes().IdOf(region.strName);
  AppendLenses(correlator, region, regionCode, runs1, true, out);
  AppendLenses(correlator, region, regionCode, runs2, false, out);
}

} // namespace xkl
