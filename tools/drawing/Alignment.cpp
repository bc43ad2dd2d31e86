#include "Alignment.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace xklink::drawing {

namespace {

bool Finite(const PlanPoint& p) {
  return std::isfinite(p.e) && std::isfinite(p.n);
}

bool Same(const PlanPoint& a, const PlanPoint& b) {
  return a.e == b.e && a.n == b.n;
}

} // namespace

Alignment::Alignment(std::vector<PlanPoint> vertices, AlignmentKind kind) : m_kind(kind) {
  for (const PlanPoint& p : vertices) {
    if (!Finite(p)) {
      throw std::invalid_argument("a vertex of the section line is not a finite number");
    }
    if (m_vertices.empty() || !Same(m_vertices.back(), p)) {
      m_vertices.push_back(p);
    }
  }
  if (m_vertices.size() < 2) {
    throw std::invalid_argument("the section line needs at least two distinct vertices");
  }
  m_cumulative.push_back(0.0);
  for (std::size_t i = 1; i < m_vertices.size(); ++i) {
    m_cumulative.push_back(m_cumulative.back() + std::hypot(m_vertices[i].e - m_vertices[i - 1].e,
                                                            m_vertices[i].n - m_vertices[i - 1].n));
  }
}

Station Alignment::Project(const PlanPoint& p) const {
  const std::size_t last = m_vertices.size() - 2;
  Station best;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i <= last; ++i) {
    const PlanPoint& a = m_vertices[i];
    const PlanPoint& b = m_vertices[i + 1];
    const double length = m_cumulative[i + 1] - m_cumulative[i];
    const double ue = (b.e - a.e) / length;
    const double un = (b.n - a.n) / length;
    // Along and across the segment, from its start; only the end segments reach beyond their ends.
    double along = (p.e - a.e) * ue + (p.n - a.n) * un;
    const double across = (p.e - a.e) * un - (p.n - a.n) * ue; // right of the direction
    if (i > 0) {
      along = std::max(along, 0.0);
    }
    if (i < last) {
      along = std::min(along, length);
    }
    const double distance = std::hypot(p.e - (a.e + along * ue), p.n - (a.n + along * un));
    if (distance < bestDistance) {
      bestDistance = distance;
      best.chainage = m_cumulative[i] + along;
      // At a bend the foot is a vertex: the offset is the distance, on the side of the segment.
      best.offset = across < 0.0 ? -distance : distance;
    }
  }
  return best;
}

std::size_t Alignment::SegmentOf(double chainage) const {
  const auto it = std::upper_bound(m_cumulative.begin() + 1, m_cumulative.end() - 1, chainage);
  return static_cast<std::size_t>(it - m_cumulative.begin()) - 1;
}

PlanPoint Alignment::At(double chainage) const {
  const std::size_t i = SegmentOf(chainage);
  const PlanPoint& a = m_vertices[i];
  const PlanPoint& b = m_vertices[i + 1];
  const double t = (chainage - m_cumulative[i]) / (m_cumulative[i + 1] - m_cumulative[i]);
  return {a.e + (b.e - a.e) * t, a.n + (b.n - a.n) * t};
}

double Alignment::BearingAt(double chainage) const {
  const std::size_t i = SegmentOf(chainage);
  const double bearing =
      std::atan2(m_vertices[i + 1].e - m_vertices[i].e, m_vertices[i + 1].n - m_vertices[i].n) *
      180.0 / M_PI;
  return bearing < 0.0 ? bearing + 360.0 : bearing;
}

Alignment BestFitLine(const std::vector<PlanPoint>& points) {
  if (points.size() < 2) {
    throw std::invalid_argument("a best-fit line needs at least two holes");
  }
  // Centre the positions first: grid coordinates are hundreds of kilometres and their squares
  // would swamp the spread of the holes.
  double ce = 0.0;
  double cn = 0.0;
  for (const PlanPoint& p : points) {
    ce += p.e;
    cn += p.n;
  }
  ce /= static_cast<double>(points.size());
  cn /= static_cast<double>(points.size());
  double see = 0.0;
  double snn = 0.0;
  double sen = 0.0;
  for (const PlanPoint& p : points) {
    see += (p.e - ce) * (p.e - ce);
    snn += (p.n - cn) * (p.n - cn);
    sen += (p.e - ce) * (p.n - cn);
  }
  // The major axis of the 2x2 scatter matrix, pointing east (north when it runs due north).
  const double angle = 0.5 * std::atan2(2.0 * sen, see - snn);
  double ue = std::cos(angle);
  double un = std::sin(angle);
  if (ue < -1e-12 || (std::fabs(ue) <= 1e-12 && un < 0.0)) {
    ue = -ue;
    un = -un;
  }
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  for (const PlanPoint& p : points) {
    const double along = (p.e - ce) * ue + (p.n - cn) * un;
    low = std::min(low, along);
    high = std::max(high, along);
  }
  return Alignment({{ce + low * ue, cn + low * un}, {ce + high * ue, cn + high * un}},
                   AlignmentKind::BestFit);
}

Alignment FenceLine(const std::vector<PlanPoint>& points) {
  return Alignment(points, AlignmentKind::Fence);
}

std::vector<PlanPoint> ParseVertexList(const std::string& text) {
  std::vector<double> numbers;
  std::size_t pos = 0;
  while (pos <= text.size()) {
    const std::size_t comma = std::min(text.find(',', pos), text.size());
    std::size_t begin = pos;
    std::size_t end = comma;
    while (begin < end && text[begin] == ' ') {
      ++begin;
    }
    while (end > begin && text[end - 1] == ' ') {
      --end;
    }
    double value = 0.0;
    const auto [ptr, ec] = std::from_chars(text.data() + begin, text.data() + end, value);
    if (begin == end || ec != std::errc() || ptr != text.data() + end || !std::isfinite(value)) {
      throw std::invalid_argument("value " + std::to_string(numbers.size() + 1) +
                                  " is not a number: '" + text.substr(begin, end - begin) + "'");
    }
    numbers.push_back(value);
    pos = comma + 1;
  }
  if (numbers.size() % 2 != 0 || numbers.size() < 4) {
    throw std::invalid_argument("expected easting,northing pairs of at least two vertices, got " +
                                std::to_string(numbers.size()) + " numbers");
  }
  std::vector<PlanPoint> vertices;
  for (std::size_t i = 0; i < numbers.size(); i += 2) {
    vertices.push_back({numbers[i], numbers[i + 1]});
  }
  return vertices;
}

std::string CompassPoint(double bearing) {
  static constexpr std::array<const char*, 16> kPoints = {"N",  "NNE", "NE", "ENE", "E",  "ESE",
                                                          "SE", "SSE", "S",  "SSW", "SW", "WSW",
                                                          "W",  "WNW", "NW", "NNW"};
  const double turns = std::fmod(std::fmod(bearing, 360.0) + 360.0, 360.0) / 22.5;
  return kPoints[static_cast<std::size_t>(std::lround(turns)) % kPoints.size()];
}

} // namespace xklink::drawing
