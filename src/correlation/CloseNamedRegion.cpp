// Closing the envelope of a repeated stratum: every other stratum inside it, on either borehole,
// becomes a lens that starts at full thickness on its own hole and ends in a tip inside the
// envelope. The envelope's own occurrences produce nothing: the region itself stands for them.
#include "correlation/Correlation.h"

namespace xkl {

namespace {

// Appends the lenses of one borehole's runs. Both sides store the lens's own borehole corners in
// slot 0 and the tip in slot 1; readers of the tree know a lens by its kind and its -1/-1 range.
void AppendLenses(const CorrelationState& state, const _sLinkRegion& region,
                  const std::vector<DcRun>& runs, bool side, _sLinkRegion& lens,
                  RegionList& out) {
  const _sZK& zk = side ? state.zk1 : state.zk2;
  for (const DcRun& run : runs) {
    if (run.strName == region.strName) {
      continue;
    }
    const double zTop = GetBoundaryGC(zk, run.nBegin);
    const double zBot = GetBoundaryGC(zk, run.nEnd);
    const CXk3DPoint mid(zk.dX, zk.dY, (zBot + zTop) * 0.5);
    const CXk3DPoint tip = GetLensTip(state, region, mid, side);
    lens.nType = 1;
    lens.nBegin1 = side ? run.nBegin : -1;
    lens.nEnd1 = side ? run.nEnd : -1;
    lens.nBegin2 = side ? -1 : run.nBegin;
    lens.nEnd2 = side ? -1 : run.nEnd;
    lens.bNamed = run.bMerged;
    lens.strName = run.strName;
    lens.ptTop[0] = CXk3DPoint(zk.dX, zk.dY, zTop);
    lens.ptTop[1] = tip;
    lens.ptBot[0] = CXk3DPoint(zk.dX, zk.dY, zBot);
    lens.ptBot[1] = tip;
    out.push_back(lens);
  }
}

} // namespace

void CloseNamedRegion(const CorrelationState& state, const _sLinkRegion& region, RegionList& out) {
  const std::vector<DcRun> runs1 = BuildFusedRuns(state, region, true);
  const std::vector<DcRun> runs2 = BuildFusedRuns(state, region, false);
  _sLinkRegion lens;
  AppendLenses(state, region, runs1, true, lens, out);
  AppendLenses(state, region, runs2, false, lens, out);
}

} // namespace xkl
