#include "SectionGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace xklink::drawing {

namespace {

bool Finite(const CXk3DPoint& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

// The strata of one borehole inside the half-open range [begin, end), clamped to the list.
template <typename Visit>
void ForEachStratum(const DataType::_sZK& zk, int begin, int end, Visit visit) {
  const long count = static_cast<long>(zk.vecDC.size());
  const long first = std::max(0L, static_cast<long>(begin));
  const long last = std::min(count, static_cast<long>(end));
  for (long i = first; i < last; ++i) {
    visit(zk.vecDC[static_cast<std::size_t>(i)]);
  }
}

std::wstring RegionCode(const Section& section, const SectionPair& pair,
                        const DataType::_sLinkRegion& region) {
  if (!region.strName.empty()) {
    return region.strName;
  }
  std::wstring code;
  bool uniform = true;
  bool any = false;
  const auto visit = [&](const DataType::_sZKDC& stratum) {
    if (!any) {
      code = stratum.strName;
      any = true;
    } else if (stratum.strName != code) {
      uniform = false;
    }
  };
  ForEachStratum(section.holes[pair.from].zk, region.nBegin1, region.nEnd1, visit);
  ForEachStratum(section.holes[pair.to].zk, region.nBegin2, region.nEnd2, visit);
  return any && uniform ? code : std::wstring{};
}

void CollectLeaves(const Section& section, std::size_t pairIndex,
                   const DataType::_sLinkRegion& region, std::vector<RegionShape>& out) {
  const SectionPair& pair = section.pairs[pairIndex];
  if (IsLeafRegion(region)) {
    const SectionHole& a = section.holes[pair.from];
    const SectionHole& b = section.holes[pair.to];
    const std::array<const CXk3DPoint*, 4> corners = {&region.ptTop[0], &region.ptTop[1],
                                                      &region.ptBot[1], &region.ptBot[0]};
    RegionShape shape;
    bool mapped = true;
    for (std::size_t i = 0; i < corners.size() && mapped; ++i) {
      const std::optional<SectionPoint> p = MapToSection(a, b, *corners[i]);
      mapped = p.has_value();
      if (p) {
        shape.corners[i] = *p;
      }
    }
    if (mapped) {
      shape.pair = pairIndex;
      shape.code = RegionCode(section, pair, region);
      shape.kind = region.nType;
      out.push_back(std::move(shape));
    }
  }
  for (const DataType::_sLinkRegion& child : region.vecChild) {
    CollectLeaves(section, pairIndex, child, out);
  }
}

} // namespace

std::optional<SectionPoint> MapToSection(const SectionHole& a, const SectionHole& b,
                                         const CXk3DPoint& p) {
  if (!Finite(p) || !IsDrawableHole(a) || !IsDrawableHole(b) || !std::isfinite(a.zk.dX) ||
      !std::isfinite(a.zk.dY) || !std::isfinite(b.zk.dX) || !std::isfinite(b.zk.dY)) {
    return std::nullopt;
  }
  const double span = std::hypot(b.zk.dX - a.zk.dX, b.zk.dY - a.zk.dY);
  if (!(span > 0.0) || !std::isfinite(span)) {
    return std::nullopt;
  }
  const double along = std::hypot(p.x - a.zk.dX, p.y - a.zk.dY);
  const double s = a.chainage + along / span * (b.chainage - a.chainage);
  if (!std::isfinite(s)) {
    return std::nullopt;
  }
  return SectionPoint{s, p.z};
}

bool IsLeafRegion(const DataType::_sLinkRegion& region) {
  if (!region.strName.empty() || region.vecChild.empty()) {
    return true;
  }
  return std::none_of(region.vecChild.begin(), region.vecChild.end(),
                      [](const DataType::_sLinkRegion& child) { return child.nType == 0; });
}

bool IsDrawableHole(const SectionHole& hole) {
  return std::isfinite(hole.chainage) && std::isfinite(hole.zk.dTopGC);
}

bool IsDrawablePair(const Section& section, const SectionPair& pair) {
  return pair.from < section.holes.size() && pair.to < section.holes.size() &&
         pair.from != pair.to && IsDrawableHole(section.holes[pair.from]) &&
         IsDrawableHole(section.holes[pair.to]);
}

std::vector<RegionShape> CollectRegionShapes(const Section& section) {
  std::vector<RegionShape> shapes;
  for (std::size_t i = 0; i < section.pairs.size(); ++i) {
    if (IsDrawablePair(section, section.pairs[i])) {
      CollectLeaves(section, i, section.pairs[i].root, shapes);
    }
  }
  return shapes;
}

std::vector<LineShape> CollectLineShapes(const Section& section) {
  std::vector<LineShape> shapes;
  for (std::size_t i = 0; i < section.pairs.size(); ++i) {
    const SectionPair& pair = section.pairs[i];
    if (!IsDrawablePair(section, pair)) {
      continue;
    }
    const SectionHole& a = section.holes[pair.from];
    const SectionHole& b = section.holes[pair.to];
    for (const DataType::_sLinkLine& line : pair.lines) {
      const std::optional<SectionPoint> from = MapToSection(a, b, line.pt1);
      const std::optional<SectionPoint> to = MapToSection(a, b, line.pt2);
      if (from && to) {
        shapes.push_back({i, *from, *to, line.strUpName, line.strDownName});
      }
    }
  }
  return shapes;
}

void Extent::Add(double s, double z) {
  if (!std::isfinite(s) || !std::isfinite(z)) {
    return;
  }
  if (empty) {
    sMin = sMax = s;
    zMin = zMax = z;
    empty = false;
    return;
  }
  sMin = std::min(sMin, s);
  sMax = std::max(sMax, s);
  zMin = std::min(zMin, z);
  zMax = std::max(zMax, z);
}

Extent SectionExtent(const Section& section, const std::vector<RegionShape>& regions,
                     const std::vector<LineShape>& lines) {
  Extent extent;
  for (const SectionHole& hole : section.holes) {
    if (!IsDrawableHole(hole)) {
      continue;
    }
    extent.Add(hole.chainage, hole.zk.dTopGC);
    for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
      extent.Add(hole.chainage, stratum.dTopGC);
      extent.Add(hole.chainage, stratum.dBotGC);
    }
  }
  for (const RegionShape& region : regions) {
    for (const SectionPoint& p : region.corners) {
      extent.Add(p.s, p.z);
    }
  }
  for (const LineShape& line : lines) {
    extent.Add(line.from.s, line.from.z);
    extent.Add(line.to.s, line.to.z);
  }
  return extent;
}

double NiceStep(double rough) {
  if (!(rough > 0.0) || !std::isfinite(rough)) {
    return 1.0;
  }
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  for (const double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
    // The small allowance keeps 0.2 / 0.1 == 2.0000000000000004 from skipping to 2.5.
    if (m * power >= rough * (1.0 - 1e-9)) {
      return m * power;
    }
  }
  return 10.0 * power;
}

double ChooseExaggeration(double length, double height) {
  if (!(length > 0.0) || !(height > 0.0) || !std::isfinite(length) || !std::isfinite(height)) {
    return 1.0;
  }
  const double wanted = 0.45 * length / height;
  if (wanted <= 1.0) {
    return 1.0;
  }
  // The round value nearest on a logarithmic scale, so that 3.4 gives 2.5 and 3.8 gives 5.
  const double power = std::pow(10.0, std::floor(std::log10(wanted)));
  double best = 1.0;
  double bestError = std::numeric_limits<double>::infinity();
  for (const double m : {1.0, 2.0, 2.5, 5.0, 10.0}) {
    const double candidate = m * power;
    const double error = std::fabs(std::log(candidate / wanted));
    if (error < bestError) {
      bestError = error;
      best = candidate;
    }
  }
  return std::max(1.0, best);
}

int DecimalsFor(double step) {
  for (int decimals = 0; decimals < 6; ++decimals) {
    const double scaled = step * std::pow(10.0, decimals);
    if (std::fabs(scaled - std::round(scaled)) < 1e-6 * std::max(1.0, scaled)) {
      return decimals;
    }
  }
  return 6;
}

} // namespace xklink::drawing
