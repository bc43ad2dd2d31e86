// Plane-geometry tests that the point class offers to the host: collinearity, the circle through
// three points and the position of a point against a circle. Thresholds are absolute (1e-5), as
// the host's drawings are in metres and never approach that scale.
#include "records/CompareDouble.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>

namespace {

using xkl::kTolerance;

double Length(const CXk3DPoint& p) {
  return std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
}

// Writes a x b into out and returns it.
CXk3DPoint& CrossProduct(const CXk3DPoint& a, CXk3DPoint& out, const CXk3DPoint& b) {
  out.x = a.y * b.z - a.z * b.y;
  out.y = a.z * b.x - a.x * b.z;
  out.z = a.x * b.y - a.y * b.x;
  return out;
}

// True when P1, P2, P3 fix no direction or no plane: a repeated point, or a cross product of the
// two edge vectors shorter than the threshold (not normalised by the edge lengths).
bool IsDegenerateTriangle(const CXk3DPoint& p1, const CXk3DPoint& p2, const CXk3DPoint& p3) {
  const CXk3DPoint u = p2 - p1;
  const CXk3DPoint v = p3 - p1;
  if (Length(u) < kTolerance) {
    return true;
  }
  if (Length(v) < kTolerance) {
    return true;
  }
  CXk3DPoint n;
  return Length(CrossProduct(u, n, v)) < kTolerance;
}

double Cross2(double ux, double uy, double vx, double vy) {
  return ux * vy - uy * vx;
}

} // namespace

int CXk3DPoint::IsConllinear(const CXk3DPoint& p1, const CXk3DPoint& p2, const CXk3DPoint& p3) {
  return IsDegenerateTriangle(p1, p2, p3) ? 1 : 0;
}

int CXk3DPoint::Get_3P_Circle(double x1, double y1, double x2, double y2, double x3, double y3,
                              double& r, double& cx, double& cy) {
  if (IsDegenerateTriangle({x1, y1, 0.0}, {x2, y2, 0.0}, {x3, y3, 0.0})) {
    return 0;
  }
  const double len = std::sqrt((x1 - x2) * (x1 - x2) + (y1 - y2) * (y1 - y2));
  const double ux = (x2 - x1) / len;
  const double uy = (y2 - y1) / len;
  // Distance of the centre from the midpoint of P1P2, along the perpendicular bisector.
  const double t = ((y3 - y2) * (y3 - y1) + (x3 - x2) * (x3 - x1)) /
                   (2.0 * ((y3 - y1) * ux + (x3 - x1) * (-uy)));
  cx = (x1 + x2) * 0.5 + t * (-uy);
  cy = (y1 + y2) * 0.5 + t * ux;
  r = std::sqrt((x1 - cx) * (x1 - cx) + (y1 - cy) * (y1 - cy));
  return 1;
}

int CXk3DPoint::IsPtInCircle(double x, double y, double cx, double cy, double r) {
  const double e = std::sqrt((y - cy) * (y - cy) + (x - cx) * (x - cx)) - r;
  return e <= kTolerance ? 1 : 0;
}

int CXk3DPoint::IsPtIn3PCircle(double px, double py, double ax, double ay, double bx, double by,
                               double cx, double cy) {
  // Twice the signed area of A, B, C: positive when they run counter-clockwise.
  const double o = ax * by + bx * cy + ay * cx - ay * bx - by * cx - ax * cy;
  if (std::fabs(o) <= kTolerance) {
    return -1;
  }
  const bool clockwise = o < -kTolerance;
  const double ax1 = ax - px;
  const double ay1 = ay - py;
  const double bx1 = bx - px;
  const double by1 = by - py;
  const double cx1 = cx - px;
  const double cy1 = cy - py;
  const double d = (ax1 * ax1 + ay1 * ay1) * Cross2(bx1, by1, cx1, cy1) +
                   (bx1 * bx1 + by1 * by1) * Cross2(cx1, cy1, ax1, ay1) +
                   (cx1 * cx1 + cy1 * cy1) * Cross2(ax1, ay1, bx1, by1);
  if (std::fabs(d) < kTolerance) {
    return 0;
  }
  if (d > kTolerance) {
    return clockwise ? -1 : 1;
  }
  return clockwise ? 1 : -1;
}
