#include "Beneath.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

double HoleBase(const SectionHole& hole) {
  double base = hole.zk.dTopGC;
  for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
    if (std::isfinite(stratum.dBotGC)) {
      base = std::min(base, stratum.dBotGC);
    }
    if (std::isfinite(stratum.dTopGC)) {
      base = std::min(base, stratum.dTopGC);
    }
  }
  return base;
}

bool IsShallowBeside(const SectionHole& hole, const SectionHole& deeper) {
  const double depth = deeper.zk.dTopGC - HoleBase(deeper);
  return HoleBase(hole) > HoleBase(deeper) + std::max(kShallowerBy, kReachFraction * depth);
}

std::vector<BeneathSpan> SpansBeneathShallowHoles(const std::vector<SectionHole>& holes) {
  std::vector<BeneathSpan> spans;
  std::size_t from = 0;
  while (from + 2 < holes.size()) {
    // The run after `from`: the holes shallow beside it. The first hole that is not closes it, and
    // bounds a span when the run is shallow beside it too.
    std::size_t next = from + 1;
    while (next < holes.size() && IsShallowBeside(holes[next], holes[from])) {
      ++next;
    }
    if (next == from + 1 || next == holes.size()) {
      ++from;
      continue;
    }
    bool shallow = true;
    for (std::size_t k = from + 1; k < next && shallow; ++k) {
      shallow = IsShallowBeside(holes[k], holes[next]);
    }
    if (shallow) {
      spans.push_back({from, next});
      from = next;
    } else {
      ++from;
    }
  }
  return spans;
}

} // namespace xklink::drawing
