#include "SectionLayout.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace xklink {

std::vector<std::size_t> OrderAlongPrincipalDirection(const std::vector<DataType::_sZK>& holes) {
  std::vector<std::size_t> order(holes.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  if (holes.size() < 2) {
    return order;
  }
  // Centre the positions first: site coordinates are large (hundreds of kilometres) and their
  // squares would swamp the spread of the holes.
  double cx = 0.0;
  double cy = 0.0;
  for (const DataType::_sZK& hole : holes) {
    cx += hole.dX;
    cy += hole.dY;
  }
  const auto n = static_cast<double>(holes.size());
  cx /= n;
  cy /= n;
  double sxx = 0.0;
  double syy = 0.0;
  double sxy = 0.0;
  for (const DataType::_sZK& hole : holes) {
    const double dx = hole.dX - cx;
    const double dy = hole.dY - cy;
    sxx += dx * dx;
    syy += dy * dy;
    sxy += dx * dy;
  }
  // Major axis of the 2x2 scatter matrix.
  const double angle = 0.5 * std::atan2(2.0 * sxy, sxx - syy);
  double ux = std::cos(angle);
  double uy = std::sin(angle);
  if (ux < -1e-12 || (std::fabs(ux) <= 1e-12 && uy < 0.0)) {
    ux = -ux;
    uy = -uy;
  }
  std::vector<double> along(holes.size());
  for (std::size_t i = 0; i < holes.size(); ++i) {
    along[i] = (holes[i].dX - cx) * ux + (holes[i].dY - cy) * uy;
  }
  std::stable_sort(order.begin(), order.end(),
                   [&along](std::size_t a, std::size_t b) { return along[a] < along[b]; });
  return order;
}

std::vector<double> Chainages(const std::vector<DataType::_sZK>& orderedHoles) {
  std::vector<double> chainage(orderedHoles.size(), 0.0);
  for (std::size_t i = 1; i < orderedHoles.size(); ++i) {
    const double dx = orderedHoles[i].dX - orderedHoles[i - 1].dX;
    const double dy = orderedHoles[i].dY - orderedHoles[i - 1].dY;
    chainage[i] = chainage[i - 1] + std::sqrt(dx * dx + dy * dy);
  }
  return chainage;
}

} // namespace xklink
