// The exported 3-D point: arithmetic, distances and tolerant comparison.
#include "records/CompareDouble.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>

namespace {

// A divisor this small would blow coordinates up to meaningless magnitudes; the host's code has
// always divided by 1e-4 instead, whatever the sign, and drawings made with it depend on that.
double GuardedDivisor(double d) {
  return std::fabs(d) < xkl::kTolerance ? 0.0001 : d;
}

} // namespace

CXk3DPoint::CXk3DPoint() : x(0.0), y(0.0), z(0.0) {}
CXk3DPoint::CXk3DPoint(float fx, float fy, float fz) : x(fx), y(fy), z(fz) {}
CXk3DPoint::CXk3DPoint(double dx, double dy, double dz) : x(dx), y(dy), z(dz) {}
CXk3DPoint::CXk3DPoint(const CXk3DPoint& p) = default;
CXk3DPoint::~CXk3DPoint() = default;

void CXk3DPoint::Set(float fx, float fy, float fz) {
  Set(double(fx), double(fy), double(fz));
}

void CXk3DPoint::Set(double dx, double dy, double dz) {
  x = dx;
  y = dy;
  z = dz;
}

void CXk3DPoint::Get(float& fx, float& fy, float& fz) {
  fx = static_cast<float>(x);
  fy = static_cast<float>(y);
  fz = static_cast<float>(z);
}

void CXk3DPoint::Get(double& dx, double& dy, double& dz) {
  dx = x;
  dy = y;
  dz = z;
}

CXk3DPoint& CXk3DPoint::operator=(const CXk3DPoint& p) {
  if (this != &p) {
    x = p.x;
    y = p.y;
    z = p.z;
  }
  return *this;
}

CXk3DPoint CXk3DPoint::operator+(const CXk3DPoint& p) const {
  return {x + p.x, y + p.y, z + p.z};
}
CXk3DPoint CXk3DPoint::operator-(const CXk3DPoint& p) const {
  return {x - p.x, y - p.y, z - p.z};
}

CXk3DPoint CXk3DPoint::operator+=(const CXk3DPoint& p) {
  return *this = *this + p;
}

CXk3DPoint CXk3DPoint::operator-=(const CXk3DPoint& p) {
  return *this = *this - p;
}

CXk3DPoint CXk3DPoint::operator*(const double& s) const {
  return {x * s, y * s, z * s};
}

// Member by member: a factor that is one of the point's own coordinates (p *= p.x) scales the later
// coordinates by its new value, as the host's code always has.
CXk3DPoint CXk3DPoint::operator*=(const double& s) {
  x *= s;
  y *= s;
  z *= s;
  return *this;
}

CXk3DPoint CXk3DPoint::operator/(const double& d) const {
  const double g = GuardedDivisor(d);
  return {x / g, y / g, z / g};
}

CXk3DPoint CXk3DPoint::operator/=(const double& d) {
  return *this = *this / d;
}

CXk3DPoint CXk3DPoint::operator-() {
  return {-x, -y, -z};
}

int CXk3DPoint::operator==(const CXk3DPoint& p) const {
  return xkl::CompareDouble(x, p.x) == 0 && xkl::CompareDouble(y, p.y) == 0 &&
                 xkl::CompareDouble(z, p.z) == 0
             ? 1
             : 0;
}

int CXk3DPoint::operator!=(const CXk3DPoint& p) const {
  return *this == p ? 0 : 1;
}

double CXk3DPoint::Dist2(const CXk3DPoint& p) const {
  const double dx = x - p.x;
  const double dy = y - p.y;
  const double dz = z - p.z;
  return (dx * dx + dy * dy) + dz * dz;
}

double CXk3DPoint::Distance(const CXk3DPoint& p) const {
  return std::sqrt(Dist2(p));
}
