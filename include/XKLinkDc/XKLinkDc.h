// XKLinkDc: correlation of the strata of two boreholes for geological cross-sections.
//
// The host describes each borehole as a DataType::_sZK (collar, plan position and strata from
// the top down) and asks for one of two results:
//   - LinkDc fills a tree of correlation regions (DataType::_sLinkRegion);
//   - LinkDcLine returns the section lines (DataType::_sLinkLine) that a drawing program strokes,
//     ordered from the highest to the lowest.
//
// **Example**:
//
//   DataType::_sZK a, b;             // fill dTopGC, dX, dY and vecDC of both
//   std::vector<DataType::_sLinkLine> lines;
//   LinkDcLine(a, b, lines);         // lines[0] is the highest boundary below the collars
//
// The records below are part of the binary interface: their members are declared in exactly this
// order and with exactly these types. LinkDc and LinkDcLine work through module-wide state and
// must not be called from two threads at once; XKLinkDc::CorrelationContext offers a re-entrant
// entry on the same code.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#if defined(_WIN32)
#if defined(XKLINKDC_BUILDING)
#define XKLINKDC_API __declspec(dllexport)
#else
#define XKLINKDC_API __declspec(dllimport)
#endif
#else
#define XKLINKDC_API __attribute__((visibility("default")))
#endif

// A point or vector of three doubles. On a borehole, x and y are the plan position and z the
// elevation. Equality is tolerant (1e-5, relative below magnitude 1); results of comparisons and
// tests are int, and the compound operators return copies, as the host's code expects.
class XKLINKDC_API CXk3DPoint {
public:
  double x;
  double y;
  double z;

  CXk3DPoint();
  CXk3DPoint(float fx, float fy, float fz);
  CXk3DPoint(double dx, double dy, double dz);
  CXk3DPoint(const CXk3DPoint& p);
  ~CXk3DPoint();

  void Set(float fx, float fy, float fz);
  void Set(double dx, double dy, double dz);
  void Get(float& fx, float& fy, float& fz);
  void Get(double& dx, double& dy, double& dz);

  CXk3DPoint& operator=(const CXk3DPoint& p);
  CXk3DPoint operator+(const CXk3DPoint& p) const;
  CXk3DPoint operator-(const CXk3DPoint& p) const;
  CXk3DPoint operator+=(const CXk3DPoint& p);
  CXk3DPoint operator-=(const CXk3DPoint& p);
  CXk3DPoint operator*(const double& s) const;
  CXk3DPoint operator*=(const double& s);
  // A divisor smaller than 1e-5 in magnitude is replaced by +0.0001.
  CXk3DPoint operator/(const double& d) const;
  CXk3DPoint operator/=(const double& d);
  CXk3DPoint operator-();
  int operator==(const CXk3DPoint& p) const;
  int operator!=(const CXk3DPoint& p) const;

  double Dist2(const CXk3DPoint& p) const;
  double Distance(const CXk3DPoint& p) const;

  // 1 when the three points are collinear (absolute threshold 1e-5 on the cross product).
  static int IsConllinear(const CXk3DPoint& p1, const CXk3DPoint& p2, const CXk3DPoint& p3);
  // Circle through three plane points; 0 (outputs untouched) when they are degenerate.
  static int Get_3P_Circle(double x1, double y1, double x2, double y2, double x3, double y3,
                           double& r, double& cx, double& cy);
  // 1 when (x, y) lies inside the circle or on it within 1e-5.
  static int IsPtInCircle(double x, double y, double cx, double cy, double r);
  // 1 inside, 0 on, -1 outside the circle through A, B, C (-1 when A, B, C are collinear).
  static int IsPtIn3PCircle(double px, double py, double ax, double ay, double bx, double by,
                            double cx, double cy);
};

namespace DataType {

// One stratum interval of a borehole.
struct XKLINKDC_API _sZKDC {
  std::wstring strName; // stratum code, matched exactly
  double dTopGC;        // elevation of the top
  double dBotGC;        // elevation of the bottom
  double dAux;          // host's own value, carried along
  bool bAux;            // host's own flag, carried along

  _sZKDC();
  _sZKDC(const _sZKDC& src);
  _sZKDC(_sZKDC&& src) noexcept;
  _sZKDC& operator=(const _sZKDC& src);
  _sZKDC& operator=(_sZKDC&& src) noexcept;
  ~_sZKDC();
};

// One borehole: identifier, collar elevation, plan position and strata from the top down.
struct XKLINKDC_API _sZK {
  std::wstring strName;
  double dTopGC; // collar elevation
  double dX;
  double dY;
  std::vector<_sZKDC> vecDC; // index 0 is the uppermost stratum

  _sZK();
  _sZK(const _sZK& src);
  _sZK(_sZK&& src) noexcept;
  _sZK& operator=(const _sZK& src);
  _sZK& operator=(_sZK&& src) noexcept;
  ~_sZK();

  // The lowest elevation of the borehole: the minimum of the collar and all stratum bottoms.
  double GetBotGC() const;
};

// One region of the correlation tree. Index ranges are half-open into the strata of the two
// boreholes; begin >= end means the region holds no stratum on that side (-1/-1: it does not reach
// that borehole; p/p: it touches it at the boundary above stratum p).
struct XKLINKDC_API _sLinkRegion {
  int32_t nType; // 0 open, 1 lens (closed named region), 2 pinch-out wedge
  bool bNamed;   // envelope of the stratum strName
  std::wstring strName;
  int32_t nBegin1;
  int32_t nEnd1;
  int32_t nBegin2;
  int32_t nEnd2;
  CXk3DPoint ptTop[2]; // element 0 on borehole 1, element 1 on borehole 2 (but see lenses)
  CXk3DPoint ptBot[2];
  std::vector<_sLinkRegion> vecChild;

  _sLinkRegion();
  _sLinkRegion(const _sLinkRegion& src);
  _sLinkRegion(_sLinkRegion&& src) noexcept;
  _sLinkRegion& operator=(const _sLinkRegion& src);
  _sLinkRegion& operator=(_sLinkRegion&& src) noexcept;
  ~_sLinkRegion();
};

// One section line from borehole 1's side (pt1) to borehole 2's side (pt2).
struct XKLINKDC_API _sLinkLine {
  CXk3DPoint pt1;
  CXk3DPoint pt2;
  int32_t nType;
  bool bBottom; // working flag of the merge; false on every line handed back
  std::wstring strUpName;
  std::wstring strDownName;

  _sLinkLine();
  _sLinkLine(const _sLinkLine& src);
  _sLinkLine(_sLinkLine&& src) noexcept;
  _sLinkLine& operator=(const _sLinkLine& src);
  _sLinkLine& operator=(_sLinkLine&& src) noexcept;
  ~_sLinkLine();

  // Geometric equality within tolerance, end by end; a line and its reverse differ.
  bool IsSame(const _sLinkLine& other) const;
};

} // namespace DataType

// Correlates two boreholes into the region tree below root. Uses module-wide state: not
// re-entrant. A borehole without strata is taken as a hole of zero depth: every boundary on it
// lies at its collar elevation, so the other hole's strata pinch out there.
extern "C" XKLINKDC_API void LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                    DataType::_sLinkRegion& root);

// Appends the section lines between two boreholes to lines, merges coinciding lines, sorts them
// from the highest down (in the order std::sort leaves) and removes the highest. Not re-entrant,
// like LinkDc.
XKLINKDC_API void LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                             std::vector<DataType::_sLinkLine>& lines);

namespace xkl {
class Correlator; // the library's own
}

namespace XKLinkDc {

// A correlation with its own state, owned by the caller: two contexts may run at the same time on
// different threads. Results are identical to LinkDc and LinkDcLine. A context reads the two
// boreholes in place during a call, without copying them, and refers to them no more once the call
// has returned; the caller must not change them while the call runs. Between calls a context keeps
// up to 64 MB of working storage, so that the next pair of a section starts warm; destroy it to
// give the memory back.
class XKLINKDC_API CorrelationContext {
public:
  CorrelationContext();
  ~CorrelationContext();
  CorrelationContext(const CorrelationContext&) = delete;
  CorrelationContext& operator=(const CorrelationContext&) = delete;

  void LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2, DataType::_sLinkRegion& root);
  void LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                  std::vector<DataType::_sLinkLine>& lines);
  // Both results of one correlation: the tree below root (as LinkDc) and the section lines
  // appended to lines (as LinkDcLine), for the cost of one.
  void LinkDcTreeAndLines(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                          DataType::_sLinkRegion& root, std::vector<DataType::_sLinkLine>& lines);

private:
  std::unique_ptr<xkl::Correlator> m_correlator;
};

} // namespace XKLinkDc
