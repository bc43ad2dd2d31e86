#include "SectionLayout.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace xklink {

std::vector<drawing::PlanPoint> PlanPositions(const std::vector<DataType::_sZK>& holes) {
  std::vector<drawing::PlanPoint> points;
  for (const DataType::_sZK& hole : holes) {
    points.push_back({hole.dX, hole.dY});
  }
  return points;
}

std::vector<std::size_t> OrderAlongPrincipalDirection(const std::vector<DataType::_sZK>& holes) {
  std::vector<std::size_t> order(holes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const std::vector<drawing::PlanPoint> points = PlanPositions(holes);
  const bool spread = std::any_of(points.begin(), points.end(), [&](const drawing::PlanPoint& p) {
    return p.e != points.front().e || p.n != points.front().n;
  });
  if (holes.size() < 2 || !spread) {
    return order;
  }
  const drawing::Alignment line = drawing::BestFitLine(points);
  std::vector<double> along;
  for (const drawing::PlanPoint& p : points) {
    along.push_back(line.Project(p).chainage);
  }
  std::stable_sort(order.begin(), order.end(),
                   [&along](std::size_t a, std::size_t b) { return along[a] < along[b]; });
  return order;
}

std::vector<SectionHole> PlaceOnLine(const drawing::Alignment& line,
                                     const std::vector<std::string>& names,
                                     const std::vector<DataType::_sZK>& holes) {
  std::vector<SectionHole> placed;
  double fence = 0.0;
  for (std::size_t i = 0; i < holes.size(); ++i) {
    SectionHole hole{names[i], 0.0, holes[i]};
    if (line.Kind() == drawing::AlignmentKind::Fence) {
      // Each hole is a vertex: its chainage is the length of the fence up to it, even where the
      // fence doubles back and a projection would find an earlier leg.
      if (i > 0) {
        fence += std::hypot(holes[i].dX - holes[i - 1].dX, holes[i].dY - holes[i - 1].dY);
      }
      hole.chainage = fence;
    } else {
      const drawing::Station station = line.Project({holes[i].dX, holes[i].dY});
      hole.chainage = station.chainage;
      hole.offset = station.offset;
    }
    placed.push_back(std::move(hole));
  }
  std::stable_sort(placed.begin(), placed.end(), [](const SectionHole& a, const SectionHole& b) {
    return a.chainage < b.chainage;
  });
  return placed;
}

} // namespace xklink
