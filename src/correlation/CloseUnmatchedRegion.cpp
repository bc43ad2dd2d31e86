// Closing a region whose strata do not correlate: every run of each borehole becomes a pinch-out
// wedge, full thickness on its own hole and thinned to nothing at the other hole.
#include "correlation/Correlation.h"

namespace xkl {

namespace {

// A wedge of one borehole's run, thinning out at boundary `tip` of the other borehole. `own` is the
// side the run belongs to (true: borehole 1).
void FillWedge(const Correlator& correlator, const _sLinkRegion& region, const StratumRun& run,
               int32_t tip, bool own, _sLinkRegion& wedge) {
  const _sZK& ownZk = own ? correlator.Zk1() : correlator.Zk2();
  const _sZK& otherZk = own ? correlator.Zk2() : correlator.Zk1();
  const int o = own ? 0 : 1; // corner slot on the run's borehole
  const int t = own ? 1 : 0; // corner slot on the other borehole
  wedge.nType = ToInt(RegionKind::Wedge);
  wedge.bNamed = run.merged;
  wedge.strName = *correlator.Codes().codes[static_cast<std::size_t>(run.code)];
  (own ? wedge.nBegin1 : wedge.nBegin2) = run.begin;
  (own ? wedge.nEnd1 : wedge.nEnd2) = run.end;
  (own ? wedge.nBegin2 : wedge.nBegin1) = tip;
  (own ? wedge.nEnd2 : wedge.nEnd1) = tip;
  const double tipZ = GetBoundaryGC(otherZk, tip);
  wedge.ptTop[o] =
      CXk3DPoint(region.ptTop[o].x, region.ptTop[o].y, GetBoundaryGC(ownZk, run.begin));
  wedge.ptBot[o] = CXk3DPoint(region.ptBot[o].x, region.ptBot[o].y, GetBoundaryGC(ownZk, run.end));
  wedge.ptTop[t] = CXk3DPoint(region.ptTop[t].x, region.ptTop[t].y, tipZ);
  wedge.ptBot[t] = CXk3DPoint(region.ptBot[t].x, region.ptBot[t].y, tipZ);
}

} // namespace

void CloseUnmatchedRegion(Correlator& correlator, const _sLinkRegion& region, RegionList& out) {
  BuildFusedRunsOfBothSides(correlator, region, out);
  const std::vector<StratumRun>& runs1 = correlator.runs.side1;
  const std::vector<StratumRun>& runs2 = correlator.runs.side2;
  // Without a common stratum there is no evidence of which bed lies above which between the holes;
  // the ordinal order of the codes decides, so that a coding scheme numbered from the top down
  // (01, 02, ...) stacks the wedges in its own order. Code ids follow that order.
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < runs1.size() || j < runs2.size()) {
    _sLinkRegion& wedge = out.emplace_back();
    const bool takeFirst =
        j >= runs2.size() || (i < runs1.size() && runs1[i].code <= runs2[j].code);
    if (takeFirst) {
      const int32_t tip = j < runs2.size() ? runs2[j].begin : region.nEnd2;
      FillWedge(correlator, region, runs1[i], tip, true, wedge);
      ++i;
    } else {
      const int32_t tip = i < runs1.size() ? runs1[i].begin : region.nEnd1;
      FillWedge(correlator, region, runs2[j], tip, false, wedge);
      ++j;
    }
  }
}

} // namespace xkl
