// Closing the envelope of a repeated stratum: every other stratum inside it, on either borehole,
// becomes a lens that starts at full thickness on its own hole and ends in a tip inside the
// envelope. The envelope's own occurrences produce nothing: the region itself stands for them.
#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

namespace xkl {

namespace {

// Appends the lenses of one borehole's runs. Both sides store the lens's own borehole corners in
// slot 0 and the tip in slot 1; readers of the tree know a lens by its kind and its -1/-1 range.
void AppendLenses(const CorrelationState& state, const _sLinkRegion& region, int32_t regionCode,
                  const std::vector<DcRun>& runs, bool side, RegionList& out) {
  const _sZK& zk = side ? state.Zk1() : state.Zk2();
  for (const DcRun& run : runs) {
    if (run.nCode == regionCode) {
      continue;
    }
    const double zTop = GetBoundaryGC(zk, run.nBegin);
    const double zBot = GetBoundaryGC(zk, run.nEnd);
    const CXk3DPoint mid(zk.dX, zk.dY, (zBot + zTop) * 0.5);
    const CXk3DPoint tip = GetLensTip(state, region, mid, side);
    _sLinkRegion& lens = out.emplace_back();
    lens.nType = 1;
    lens.nBegin1 = side ? run.nBegin : -1;
    lens.nEnd1 = side ? run.nEnd : -1;
    lens.nBegin2 = side ? -1 : run.nBegin;
    lens.nEnd2 = side ? -1 : run.nEnd;
    lens.bNamed = run.bMerged;
    lens.strName = *state.Codes().codes[static_cast<std::size_t>(run.nCode)];
    lens.ptTop[0] = CXk3DPoint(zk.dX, zk.dY, zTop);
    lens.ptTop[1] = tip;
    lens.ptBot[0] = CXk3DPoint(zk.dX, zk.dY, zBot);
    lens.ptBot[1] = tip;
  }
}

} // namespace

void CloseNamedRegion(const CorrelationState& state, const _sLinkRegion& region, RegionList& out) {
  std::vector<DcRun>& runs1 = state.Work().runs.side1;
  std::vector<DcRun>& runs2 = state.Work().runs.side2;
  BuildFusedRuns(state, region, true, runs1);
  BuildFusedRuns(state, region, false, runs2);
  ReserveMore(out, runs1.size() + runs2.size());
  const int32_t regionCode = state.Codes().IdOf(region.strName);
  AppendLenses(state, region, regionCode, runs1, true, out);
  AppendLenses(state, region, regionCode, runs2, false, out);
}

} // namespace xkl
