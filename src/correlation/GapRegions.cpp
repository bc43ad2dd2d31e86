// The second splitting pass: the gaps above, between and below the common strata of a region.
// A gap holds the strata that the two boreholes do not share at that height; it never stays in the
// tree itself, only what closing it produces does.
#include "correlation/Correlation.h"

namespace xkl {

namespace {

// Whether stratum `index` carries the code `code` (an interned code, -1 for one no stratum has).
bool CarriesCode(const std::vector<int32_t>& codeIds, int32_t index, int32_t code) {
  return code >= 0 && index >= 0 && static_cast<std::size_t>(index) < codeIds.size() &&
         codeIds[static_cast<std::size_t>(index)] == code;
}

// Appends one gap of the region whose corners are taken whole from the boundaries that enclose
// it. A gap of a named region is still inside that envelope and is closed as one.
void AppendGap(const _sLinkRegion& region, int32_t begin1, int32_t end1, int32_t begin2,
               int32_t end2, const CXk3DPoint (&top)[2], const CXk3DPoint (&bot)[2],
               RegionList& gaps) {
  _sLinkRegion& gap = gaps.emplace_back();
  gap.nType = ToInt(RegionKind::Open);
  gap.bNamed = region.bNamed;
  gap.strName = region.strName;
  gap.nBegin1 = begin1;
  gap.nEnd1 = end1;
  gap.nBegin2 = begin2;
  gap.nEnd2 = end2;
  gap.ptTop[0] = top[0];
  gap.ptTop[1] = top[1];
  gap.ptBot[0] = bot[0];
  gap.ptBot[1] = bot[1];
}

} // namespace

void MakeGapRegions(const Correlator& correlator, const _sLinkRegion& region,
                    const RegionList& children, RegionList& gaps, bool subRegion) {
  if (children.empty()) {
    return;
  }
  const _sLinkRegion& first = children.front();
  const _sLinkRegion& last = children.back();

  // The envelope's own first stratum is the envelope, not part of the gap below it.
  const CodeIndex& codes = correlator.Codes();
  const int32_t name = region.bNamed ? codes.IdOf(region.strName) : -1;
  int32_t i1 = region.nBegin1;
  int32_t i2 = region.nBegin2;
  if (region.bNamed) {
    if (CarriesCode(codes.ids1, region.nBegin1, name)) {
      i1 = region.nBegin1 + 1;
    }
    if (CarriesCode(codes.ids2, region.nBegin2, name)) {
      i2 = region.nBegin2 + 1;
    }
  }

  if (first.nBegin1 != i1 || first.nBegin2 != i2) {
    AppendGap(region, i1, first.nBegin1, i2, first.nBegin2, region.ptTop, first.ptTop, gaps);
  }
  for (std::size_t k = 1; k < children.size(); ++k) {
    const _sLinkRegion& above = children[k - 1];
    const _sLinkRegion& below = children[k];
    AppendGap(region, above.nEnd1, below.nBegin1, above.nEnd2, below.nBegin2, above.ptBot,
              below.ptTop, gaps);
  }

  // Below the deepest common stratum of the whole section nothing is correlated: the strata there
  // are left out of the tree rather than guessed at.
  if (!subRegion) {
    return;
  }

  // The stratum tested is the one just above the adjusted top, not the region's last stratum: for
  // the envelopes cut out by the first pass both are occurrences of the name, and the rule takes
  // the closing occurrence off the bottom gap.
  int32_t e1 = region.nEnd1;
  int32_t e2 = region.nEnd2;
  if (region.bNamed) {
    const int32_t j1 = i1 - 1 < 0 ? -1 : i1 - 1;
    const int32_t j2 = i2 - 1 < 0 ? -1 : i2 - 1;
    if (CarriesCode(codes.ids1, j1, name)) {
      e1 = region.nEnd1 - 1;
    }
    if (CarriesCode(codes.ids2, j2, name)) {
      e2 = region.nEnd2 - 1;
    }
  }
  if (last.nEnd1 != e1 || last.nEnd2 != e2) {
    AppendGap(region, last.nEnd1, e1, last.nEnd2, e2, last.ptBot, region.ptBot, gaps);
  }
}

} // namespace xkl
