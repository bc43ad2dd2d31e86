// Where a lens ends. A lens starts at full thickness on its own borehole and thins to a tip on the
// plan line towards the other hole, at its own mid elevation. Nothing in a borehole log says how
// far a lens reaches; by convention it reaches 45 % of the way, but not beyond the envelope around
// it: where the envelope's top or bottom closes in across the lens's mid elevation sooner, the tip
// stops at 60 % of the distance to that crossing.
//
// The work is done in the vertical plane of the section, each point written as (plan distance from
// the lens's borehole, elevation, 0).
#include "correlation/Correlation.h"
#include "records/CompareDouble.h"

#include <cmath>
#include <utility>

namespace xkl {

namespace {

constexpr double kLensReach = 0.45;
constexpr double kPullBack = 0.6;

CXk3DPoint ToSectionPlane(const CXk3DPoint& p, double originX, double originY) {
  const double dy = p.y - originY;
  const double dx = p.x - originX;
  return {std::sqrt(dy * dy + dx * dx), p.z, 0.0};
}

double SquaredLength(const CXk3DPoint& d) {
  return std::fabs(d.x * d.x + d.y * d.y + d.z * d.z);
}

// Collinear segments: where P0-P1 lies on Q0-Q1, as parameters of the second segment.
int32_t IntersectCollinear(const CXk3DPoint& p1, const CXk3DPoint& q0, const CXk3DPoint& d2,
                           const CXk3DPoint& w, CXk3DPoint& r1, CXk3DPoint& r2) {
  const CXk3DPoint w2 = p1 - q0;
  double t0 = 0.0;
  double t1 = 0.0;
  if (std::fabs(d2.x) > kTolerance) {
    t0 = w.x / d2.x;
    t1 = w2.x / d2.x;
  } else {
    t0 = w.y / d2.y;
    t1 = w2.y / d2.y;
  }
  if (t0 > t1) {
    std::swap(t0, t1);
  }
  if (t0 > 1.0 || t1 < 0.0) {
    return 0;
  }
  if (t0 < 0.0) {
    t0 = 0.0;
  }
  if (t1 > 1.0) {
    t1 = 1.0;
  }
  if (std::fabs(t0 - t1) > kTolerance) {
    r1 = q0 + d2 * t0;
    r2 = q0 + d2 * t1;
    return 2;
  }
  r1 = q0 + d2 * t0;
  return 1;
}

} // namespace

CXk3DPoint GetLensTip(const Correlator& correlator, const _sLinkRegion& region,
                      const CXk3DPoint& mid, bool side) {
  const _sZK& own = side ? correlator.Zk1() : correlator.Zk2();
  const _sZK& other = side ? correlator.Zk2() : correlator.Zk1();
  const double ox = own.dX;
  const double oy = own.dY;

  const CXk3DPoint top0 = ToSectionPlane(region.ptTop[0], ox, oy);
  const CXk3DPoint top1 = ToSectionPlane(region.ptTop[1], ox, oy);
  const CXk3DPoint bot0 = ToSectionPlane(region.ptBot[0], ox, oy);
  const CXk3DPoint bot1 = ToSectionPlane(region.ptBot[1], ox, oy);

  const CXk3DPoint c0 = ToSectionPlane(mid, ox, oy);
  CXk3DPoint c1(kLensReach * correlator.Distance(), mid.z, 0.0);
  double t = kLensReach * correlator.Distance();

  // Only a crossing in a single point counts; an envelope edge running along the probe says
  // nothing about where the lens ends. The bottom edge is tested second, against the probe as the
  // top edge has shortened it, and has the last word.
  CXk3DPoint r1;
  CXk3DPoint r2;
  if (IntersectSegment(top0, top1, c0, c1, r1, r2) == 1) {
    t = (r1.x - c0.x) * kPullBack + c0.x;
    c1.x = t;
  }
  if (IntersectSegment(bot0, bot1, c0, c1, r1, r2) == 1) {
    t = (r1.x - c0.x) * kPullBack + c0.x;
  }

  // Boreholes at one plan position give a distance of 0 and a non-finite tip: there is no direction
  // in which the lens could reach.
  const double x = (other.dX - own.dX) * t / correlator.Distance() + own.dX;
  const double y = (other.dY - own.dY) * t / correlator.Distance() + own.dY;
  return {x, y, mid.z};
}

int32_t IntersectSegment(const CXk3DPoint& p0, const CXk3DPoint& p1, const CXk3DPoint& q0,
                         const CXk3DPoint& q1, CXk3DPoint& r1, CXk3DPoint& r2) {
  const CXk3DPoint d1 = p1 - p0;
  const CXk3DPoint d2 = q1 - q0;
  const CXk3DPoint w = p0 - q0;
  const double cross = d1.x * d2.y - d1.y * d2.x;
  if (std::fabs(cross) >= kTolerance) {
    const double s = (w.y * d2.x - d2.y * w.x) / cross;
    if (s < 0.0 || s > 1.0) {
      return 0;
    }
    const double u = (d1.x * w.y - d1.y * w.x) / cross;
    if (u < 0.0 || u > 1.0) {
      return 0;
    }
    r1 = p0 + d1 * s;
    return 1;
  }
  // Parallel: unless both lie on one line there is no common point.
  if (std::fabs(d1.x * w.y - d1.y * w.x) > kTolerance) {
    return 0;
  }
  if (std::fabs(w.y * d2.x - d2.y * w.x) > kTolerance) {
    return 0;
  }
  const double len1 = SquaredLength(d1);
  const double len2 = SquaredLength(d2);
  if (len1 <= kTolerance && len2 <= kTolerance) {
    if (CompareDouble(p0.x, q0.x) != 0 || CompareDouble(p0.y, q0.y) != 0 ||
        CompareDouble(p0.z, q0.z) != 0) {
      return 0;
    }
    r1 = p0;
    return 1;
  }
  if (len1 <= kTolerance) {
    if (!IsBetween(p0, q0, q1)) {
      return 0;
    }
    r1 = p0;
    return 1;
  }
  if (len2 <= kTolerance) {
    if (!IsBetween(q0, p0, p1)) {
      return 0;
    }
    r1 = q0;
    return 1;
  }
  return IntersectCollinear(p1, q0, d2, w, r1, r2);
}

bool IsBetween(const CXk3DPoint& p, const CXk3DPoint& a, const CXk3DPoint& b) {
  if (std::fabs(a.x - b.x) <= kTolerance) {
    return (p.y >= a.y && b.y >= p.y) || (a.y >= p.y && p.y >= b.y);
  }
  return (p.x >= a.x && b.x >= p.x) || (a.x >= p.x && p.x >= b.x);
}

} // namespace xkl
