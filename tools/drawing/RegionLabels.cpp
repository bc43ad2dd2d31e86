#include "RegionLabels.h"

#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace xklink::drawing {

namespace {

constexpr double kColumnSize = 10.0;
constexpr double kRegionSize = 10.5;
constexpr double kColumnHalfWidth = 6.0;

struct Span {
  double top = 0.0;
  double bottom = 0.0;
};

// Where a vertical line at x crosses the polygon: from its highest to its lowest crossing (the
// regions are convex, or nearly: a wedge cut by a shallow hole's base).
std::optional<Span> Across(const std::vector<Point>& polygon, double x) {
  std::optional<Span> span;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const Point& a = polygon[i];
    const Point& b = polygon[(i + 1) % polygon.size()];
    if ((x < std::min(a.x, b.x)) || (x > std::max(a.x, b.x)) || a.x == b.x) {
      continue;
    }
    const double y = a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
    if (!span) {
      span = Span{y, y};
    } else {
      span->top = std::min(span->top, y);
      span->bottom = std::max(span->bottom, y);
    }
  }
  return span;
}

// The vertical extent of a polygon at its left (or right) edge.
std::optional<Span> EdgeSpan(const std::vector<Point>& polygon, bool right) {
  double edge = polygon.front().x;
  for (const Point& p : polygon) {
    edge = right ? std::max(edge, p.x) : std::min(edge, p.x);
  }
  std::optional<Span> span;
  for (const Point& p : polygon) {
    if (std::fabs(p.x - edge) < 0.5) {
      span = span ? Span{std::min(span->top, p.y), std::max(span->bottom, p.y)} : Span{p.y, p.y};
    }
  }
  return span;
}

std::size_t Root(std::vector<std::size_t>& parent, std::size_t i) {
  while (parent[i] != i) {
    parent[i] = parent[parent[i]];
    i = parent[i];
  }
  return i;
}

// Units: regions of one code joined where one's right edge meets another's left edge over a
// common height (at a hole, or where a shallow hole's base cut a region in two).
std::vector<std::vector<std::size_t>> Units(const std::vector<FilledRegion>& filled) {
  std::vector<std::size_t> parent(filled.size());
  std::iota(parent.begin(), parent.end(), std::size_t{0});
  for (std::size_t i = 0; i < filled.size(); ++i) {
    const std::optional<Span> right = EdgeSpan(filled[i].points, true);
    double rightX = filled[i].points.front().x;
    for (const Point& p : filled[i].points) {
      rightX = std::max(rightX, p.x);
    }
    for (std::size_t j = 0; j < filled.size() && right; ++j) {
      if (i == j || filled[j].region->code != filled[i].region->code) {
        continue;
      }
      double leftX = filled[j].points.front().x;
      for (const Point& p : filled[j].points) {
        leftX = std::min(leftX, p.x);
      }
      const std::optional<Span> left = EdgeSpan(filled[j].points, false);
      if (left && std::fabs(leftX - rightX) < 0.5 && left->top < right->bottom &&
          right->top < left->bottom) {
        parent[Root(parent, i)] = Root(parent, j);
      }
    }
  }
  std::vector<std::vector<std::size_t>> units(filled.size());
  for (std::size_t i = 0; i < filled.size(); ++i) {
    units[Root(parent, i)].push_back(i);
  }
  units.erase(std::remove_if(units.begin(), units.end(), [](const auto& u) { return u.empty(); }),
              units.end());
  return units;
}

} // namespace

void DrawColumnCodes(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                     const Frame& frame) {
  for (std::size_t n = 0; n < holes.size(); ++n) {
    const SectionHole& hole = section.holes[holes[n]];
    const bool left = n == 0 && holes.size() > 1;
    const double x = frame.X(hole.chainage) + (left ? -1.0 : 1.0) * (kColumnHalfWidth + 4.0);
    const std::vector<DataType::_sZKDC>& strata = hole.zk.vecDC;
    for (std::size_t k = 0; k < strata.size(); ++k) {
      const DataType::_sZKDC& stratum = strata[k];
      if (!std::isfinite(stratum.dTopGC) || !std::isfinite(stratum.dBotGC) ||
          (k > 0 && strata[k - 1].strName == stratum.strName)) {
        continue;
      }
      // A run of strata of one code, as a log splits a unit by its descriptions, gets one code.
      double bottom = stratum.dBotGC;
      for (std::size_t m = k + 1; m < strata.size() && strata[m].strName == stratum.strName &&
                                  std::isfinite(strata[m].dBotGC);
           ++m) {
        bottom = strata[m].dBotGC;
      }
      const double y0 = frame.Y(stratum.dTopGC);
      const double y1 = frame.Y(bottom);
      if (std::fabs(y1 - y0) < kColumnSize + 1.0) {
        continue; // too thin to carry its code legibly
      }
      Text t = canvas.MakeText(Layer::BoreholeLabels, {x, 0.5 * (y0 + y1) + 0.36 * kColumnSize},
                               WideToUtf8(stratum.strName), kColumnSize,
                               left ? Anchor::End : Anchor::Start);
      t.halo = true;
      const Box box = TextBox(t);
      if (box.left < frame.left || box.right > frame.Right() || !canvas.Free(box)) {
        continue;
      }
      canvas.AddText(std::move(t));
      // Room on either side, so that no region label lands right beside the code and repeats it.
      canvas.Take({box.left - 24.0, box.top - 4.0, box.right + 24.0, box.bottom + 4.0});
    }
  }
}

void DrawRegionLabels(Canvas& canvas, const std::vector<FilledRegion>& filled) {
  for (const std::vector<std::size_t>& unit : Units(filled)) {
    const FilledRegion& first = filled[unit.front()];
    const std::string text = WideToUtf8(first.region->code);
    const double width = TextWidth(text, kRegionSize, false) + 4.0;
    const double height = 1.05 * kRegionSize + 2.0;
    struct Candidate {
      double thickness;
      double x;
      double y;
      Rgb colour;
    };
    std::vector<Candidate> candidates;
    for (const std::size_t i : unit) {
      const std::vector<Point>& polygon = filled[i].points;
      double left = polygon.front().x;
      double right = left;
      for (const Point& p : polygon) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
      }
      // Clear of the columns at the holes: a label there would sit on a log.
      left += kColumnHalfWidth + 4.0;
      right -= kColumnHalfWidth + 4.0;
      if (right - left < width) {
        continue;
      }
      for (int k = 0; k <= 16; ++k) {
        const double x = left + 0.5 * width + (right - left - width) * k / 16.0;
        const std::optional<Span> at = Across(polygon, x);
        const std::optional<Span> atLeft = Across(polygon, x - 0.5 * width);
        const std::optional<Span> atRight = Across(polygon, x + 0.5 * width);
        if (!at || !atLeft || !atRight) {
          continue;
        }
        const double top = std::max({at->top, atLeft->top, atRight->top});
        const double bottom = std::min({at->bottom, atLeft->bottom, atRight->bottom});
        if (bottom - top >= height + 2.0) {
          candidates.push_back({bottom - top, x, 0.5 * (top + bottom), filled[i].colour});
        }
      }
    }
    std::stable_sort(
        candidates.begin(), candidates.end(),
        [](const Candidate& a, const Candidate& b) { return a.thickness > b.thickness; });
    for (const Candidate& c : candidates) {
      const Rgb ink = Luminance(c.colour) < 0.22 ? kWhite : kInk;
      Text t = canvas.MakeText(Layer::RegionLabels, {c.x, c.y + 0.36 * kRegionSize}, text,
                               kRegionSize, Anchor::Middle, false, ink);
      if (canvas.Free(TextBox(t))) {
        canvas.AddText(std::move(t));
        break;
      }
    }
  }
}

} // namespace xklink::drawing
