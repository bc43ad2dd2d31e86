// The line of a section in plan, and where each hole stands along it.
//
// An engineer reads a section against the site plan: the distance along the section must be the
// chainage of each hole on the section line (the distance along the line to the hole's
// perpendicular foot), and the hole's offset from the line says how far the log is carried onto
// it. Three kinds of line:
// - a given line, a polyline of plan vertices; chainage 0 at its first vertex;
// - the best-fit straight line through the holes (the major axis of their scatter), running west to
//   east (south to north when it runs due north), chainage 0 at the first hole's foot;
// - a fence through the holes in a given order, each hole on the line (offset 0).
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace xklink::drawing {

// A plan position: easting and northing.
struct PlanPoint {
  double e = 0.0;
  double n = 0.0;
};

enum class AlignmentKind { Given, BestFit, Fence };

// Where a point stands relative to the line. The offset is positive to the right of the line,
// looking along increasing chainage, negative to its left.
struct Station {
  double chainage = 0.0;
  double offset = 0.0;
};

class Alignment {
public:
  // Consecutive repeated vertices are dropped. std::invalid_argument when fewer than two distinct
  // vertices remain or a coordinate is not finite.
  Alignment(std::vector<PlanPoint> vertices, AlignmentKind kind);

  // The nearest point of the line; the first and last segments are extended beyond the ends, so a
  // hole before the start has a negative chainage and one beyond the end a chainage past the
  // length, both measured square to the line. Of two equally near segments, the first is taken.
  Station Project(const PlanPoint& p) const;

  // The plan point at a chainage (the end segments extended).
  PlanPoint At(double chainage) const;

  // Bearing of the line at a chainage, degrees clockwise from grid north.
  double BearingAt(double chainage) const;

  double Length() const { return m_cumulative.back(); }
  const std::vector<PlanPoint>& Vertices() const { return m_vertices; }
  AlignmentKind Kind() const { return m_kind; }

private:
  std::size_t SegmentOf(double chainage) const;

  std::vector<PlanPoint> m_vertices;
  std::vector<double> m_cumulative; // chainage of each vertex
  AlignmentKind m_kind;
};

// The best-fit line through the points (at least two, not all at one place), spanning their feet.
Alignment BestFitLine(const std::vector<PlanPoint>& points);

// The fence through the points in order.
Alignment FenceLine(const std::vector<PlanPoint>& points);

// "E1,N1,E2,N2[,...]": std::invalid_argument naming the bad value.
std::vector<PlanPoint> ParseVertexList(const std::string& text);

// The point of the 16-wind compass rose nearest to a bearing (degrees clockwise from north).
std::string CompassPoint(double bearing);

} // namespace xklink::drawing
