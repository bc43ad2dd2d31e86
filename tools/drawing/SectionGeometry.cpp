#include "SectionGeometry.h"

#include "Beneath.h"

#include <algorithm>
#include <array>
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

// The base of the shallow holes of a span below which its direct correlation is drawn: the
// polyline through their bases, held level out to the two deeper holes that bound the span.
struct Floor {
  std::vector<SectionPoint> points; // by chainage
};

std::vector<Floor> Floors(const Section& section) {
  std::vector<Floor> floors;
  for (const SectionPair& pair : section.pairs) {
    if (!pair.beneath || !IsDrawablePair(section, pair)) {
      continue;
    }
    const double a = section.holes[pair.from].chainage;
    const double b = section.holes[pair.to].chainage;
    std::vector<SectionPoint> bases;
    for (std::size_t i = 0; i < section.holes.size(); ++i) {
      const SectionHole& hole = section.holes[i];
      if (i != pair.from && i != pair.to && IsDrawableHole(hole) &&
          hole.chainage > std::min(a, b) && hole.chainage < std::max(a, b)) {
        bases.push_back({hole.chainage, HoleBase(hole)});
      }
    }
    if (bases.empty()) {
      continue;
    }
    std::sort(bases.begin(), bases.end(),
              [](const SectionPoint& p, const SectionPoint& q) { return p.s < q.s; });
    Floor floor;
    floor.points.push_back({std::min(a, b), bases.front().z});
    floor.points.insert(floor.points.end(), bases.begin(), bases.end());
    floor.points.push_back({std::max(a, b), bases.back().z});
    floors.push_back(std::move(floor));
  }
  return floors;
}

// The part of a polygon where a*s + b*z + c >= 0 (Sutherland-Hodgman against one half-plane).
std::vector<SectionPoint> ClipHalfPlane(const std::vector<SectionPoint>& polygon, double a,
                                        double b, double c) {
  std::vector<SectionPoint> out;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const SectionPoint& p = polygon[i];
    const SectionPoint& q = polygon[(i + 1) % polygon.size()];
    const double fp = a * p.s + b * p.z + c;
    const double fq = a * q.s + b * q.z + c;
    if (fp >= 0.0) {
      out.push_back(p);
    }
    if ((fp >= 0.0) != (fq >= 0.0)) {
      const double t = fp / (fp - fq);
      out.push_back({p.s + (q.s - p.s) * t, p.z + (q.z - p.z) * t});
    }
  }
  return out;
}

// Half-planes of one piece of a floor: right of its start, left of its end, and above (or below)
// the piece.
std::array<std::array<double, 3>, 3> PieceHalfPlanes(const SectionPoint& p, const SectionPoint& q,
                                                     bool above) {
  const double slope = (q.z - p.z) / (q.s - p.s);
  const double sign = above ? 1.0 : -1.0;
  // z - (p.z + slope * (s - p.s)) >= 0 above the piece.
  return {{{1.0, 0.0, -p.s}, {-1.0, 0.0, q.s}, {-sign * slope, sign, sign * (slope * p.s - p.z)}}};
}

double Area(const std::vector<SectionPoint>& polygon) {
  double twice = 0.0;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const SectionPoint& a = polygon[i];
    const SectionPoint& b = polygon[(i + 1) % polygon.size()];
    twice += a.s * b.z - b.s * a.z;
  }
  return 0.5 * std::fabs(twice);
}

// The parts of a polygon above (or below) a floor, over the floor's chainages; the polygon as it
// is outside them.
std::vector<std::vector<SectionPoint>> CutByFloor(const std::vector<SectionPoint>& polygon,
                                                  const Floor& floor, bool above) {
  std::vector<std::vector<SectionPoint>> parts;
  for (std::size_t i = 0; i + 1 < floor.points.size(); ++i) {
    const SectionPoint& p = floor.points[i];
    const SectionPoint& q = floor.points[i + 1];
    if (!(q.s > p.s)) {
      continue;
    }
    std::vector<SectionPoint> part = polygon;
    for (const auto& [a, b, c] : PieceHalfPlanes(p, q, above)) {
      part = ClipHalfPlane(part, a, b, c);
    }
    if (part.size() >= 3 && Area(part) > 1e-9) {
      parts.push_back(std::move(part));
    }
  }
  return parts;
}

// The floor under which a pair of chainages a..b lies, if any.
const Floor* FloorOver(const std::vector<Floor>& floors, double a, double b) {
  const double low = std::min(a, b);
  const double high = std::max(a, b);
  for (const Floor& floor : floors) {
    const double tolerance = 1e-9 * std::max(1.0, std::fabs(high));
    if (low >= floor.points.front().s - tolerance && high <= floor.points.back().s + tolerance) {
      return &floor;
    }
  }
  return nullptr;
}

} // namespace

void ForEachLeafRegion(const DataType::_sLinkRegion& root,
                       const std::function<void(const DataType::_sLinkRegion&)>& visit) {
  const auto isLeaf = [](const DataType::_sLinkRegion& region) {
    return !region.strName.empty() || region.vecChild.empty() ||
           std::none_of(region.vecChild.begin(), region.vecChild.end(),
                        [](const DataType::_sLinkRegion& child) { return child.nType == 0; });
  };
  std::vector<const DataType::_sLinkRegion*> stack{&root};
  while (!stack.empty()) {
    const DataType::_sLinkRegion* next = stack.back();
    stack.pop_back();
    if (isLeaf(*next)) {
      visit(*next);
    }
    for (auto it = next->vecChild.rbegin(); it != next->vecChild.rend(); ++it) {
      stack.push_back(&*it);
    }
  }
}

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

bool IsDrawableHole(const SectionHole& hole) {
  return std::isfinite(hole.chainage) && std::isfinite(hole.zk.dTopGC);
}

bool IsDrawablePair(const Section& section, const SectionPair& pair) {
  return pair.from < section.holes.size() && pair.to < section.holes.size() &&
         pair.from != pair.to && IsDrawableHole(section.holes[pair.from]) &&
         IsDrawableHole(section.holes[pair.to]);
}

// Calls visit(i, pair, a, b, floor) for each pair that can be drawn, a and b its holes: a pair
// beneath shallower holes only where the floor of their bases (floor) stands over it.
template <class Visit> void ForEachDrawnPair(const Section& section, Visit visit) {
  const std::vector<Floor> floors = Floors(section);
  for (std::size_t i = 0; i < section.pairs.size(); ++i) {
    const SectionPair& pair = section.pairs[i];
    if (!IsDrawablePair(section, pair)) {
      continue;
    }
    const SectionHole& a = section.holes[pair.from];
    const SectionHole& b = section.holes[pair.to];
    const Floor* floor = FloorOver(floors, a.chainage, b.chainage);
    if (!pair.beneath || floor != nullptr) {
      visit(i, pair, a, b, floor);
    }
  }
}

std::vector<RegionShape> CollectRegionShapes(const Section& section) {
  std::vector<RegionShape> shapes;
  ForEachDrawnPair(section, [&](std::size_t i, const SectionPair& pair, const SectionHole& a,
                                const SectionHole& b, const Floor* floor) {
    ForEachLeafRegion(pair.root, [&](const DataType::_sLinkRegion& region) {
      RegionShape shape;
      for (const CXk3DPoint* corner :
           {&region.ptTop[0], &region.ptTop[1], &region.ptBot[1], &region.ptBot[0]}) {
        const std::optional<SectionPoint> p = MapToSection(a, b, *corner);
        if (!p) {
          return;
        }
        shape.polygon.push_back(*p);
      }
      shape.pair = i;
      shape.code = RegionCode(section, pair, region);
      shape.kind = region.nType;
      shape.beneath = pair.beneath;
      if (floor == nullptr) {
        shapes.push_back(std::move(shape));
        return;
      }
      for (std::vector<SectionPoint>& part : CutByFloor(shape.polygon, *floor, !pair.beneath)) {
        RegionShape piece = shape;
        piece.polygon = std::move(part);
        shapes.push_back(std::move(piece));
      }
    });
  });
  return shapes;
}

std::vector<LineShape> CollectLineShapes(const Section& section) {
  std::vector<LineShape> shapes;
  ForEachDrawnPair(section, [&](std::size_t i, const SectionPair& pair, const SectionHole& a,
                                const SectionHole& b, const Floor* floor) {
    for (const DataType::_sLinkLine& line : pair.lines) {
      const std::optional<SectionPoint> from = MapToSection(a, b, line.pt1);
      const std::optional<SectionPoint> to = MapToSection(a, b, line.pt2);
      if (!from || !to) {
        continue;
      }
      const LineShape shape{i, *from, *to, line.strUpName, line.strDownName, pair.beneath};
      if (floor == nullptr) {
        shapes.push_back(shape);
        continue;
      }
      // A segment is a polygon of two points: the clip keeps its part on the wanted side.
      for (std::size_t k = 0; k + 1 < floor->points.size(); ++k) {
        const SectionPoint& p = floor->points[k];
        const SectionPoint& q = floor->points[k + 1];
        if (!(q.s > p.s)) {
          continue;
        }
        std::vector<SectionPoint> part{*from, *to};
        for (const auto& [fa, fb, fc] : PieceHalfPlanes(p, q, !pair.beneath)) {
          part = ClipHalfPlane(part, fa, fb, fc);
        }
        if (part.size() >= 2 && (part[0].s != part[1].s || part[0].z != part[1].z)) {
          LineShape piece = shape;
          piece.from = part[0];
          piece.to = part[1];
          shapes.push_back(std::move(piece));
        }
      }
    }
  });
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
    for (const SectionPoint& p : region.polygon) {
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
