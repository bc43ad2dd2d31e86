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

std::vector<BeneathSpan> SpansBeneathShallowHoles(const std::vector<SectionHole>& holes) {
  std::vector<double> base;
  for (const SectionHole& hole : holes) {
    base.push_back(HoleBase(hole));
  }
  std::vector<BeneathSpan> spans;
  std::size_t from = 0;
  while (from + 2 < holes.size()) {
    // The run after `from` grows while its holes are shallower than `from`; the first hole deeper
    // than every hole of the run closes it.
    double runDeepest = 0.0;
    bool run = false;
    std::size_t next = from + 1;
    for (; next < holes.size(); ++next) {
      const bool shallowerThanFrom = base[next] > base[from] + kShallowerBy;
      if (run && base[next] < runDeepest - kShallowerBy) {
        break; // deeper than the whole run: it bounds it on the right
      }
      if (!shallowerThanFrom) {
        break;
      }
      runDeepest = run ? std::min(runDeepest, base[next]) : base[next];
      run = true;
    }
    if (!run || next == holes.size()) {
      ++from; // nothing shallow here, or no deeper hole closes the run
      continue;
    }
    if (base[next] < runDeepest - kShallowerBy) {
      spans.push_back({from, next});
    }
    from = next;
  }
  return spans;
}

} // namespace xklink::drawing
