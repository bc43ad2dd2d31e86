// The output records: a region of the correlation tree and a section line.
#include "records/CompareDouble.h"

#include <XKLinkDc/XKLinkDc.h>

#include <utility>

namespace DataType {

_sLinkRegion::_sLinkRegion()
    : nType(0), bNamed(false), nBegin1(-1), nEnd1(-1), nBegin2(-1), nEnd2(-1) {}
_sLinkRegion::_sLinkRegion(const _sLinkRegion& src) = default;
_sLinkRegion::_sLinkRegion(_sLinkRegion&& src) noexcept = default;
_sLinkRegion::~_sLinkRegion() = default;

_sLinkRegion& _sLinkRegion::operator=(const _sLinkRegion& src) {
  if (this != &src) {
    nType = src.nType;
    bNamed = src.bNamed;
    strName = src.strName;
    nBegin1 = src.nBegin1;
    nEnd1 = src.nEnd1;
    nBegin2 = src.nBegin2;
    nEnd2 = src.nEnd2;
    ptTop[0] = src.ptTop[0];
    ptTop[1] = src.ptTop[1];
    ptBot[0] = src.ptBot[0];
    ptBot[1] = src.ptBot[1];
    // Copy first, then replace: the source may be a descendant of this region.
    std::vector<_sLinkRegion> children(src.vecChild);
    vecChild.swap(children);
  }
  return *this;
}

_sLinkRegion& _sLinkRegion::operator=(_sLinkRegion&& src) noexcept {
  if (this != &src) {
    nType = src.nType;
    bNamed = src.bNamed;
    strName = std::move(src.strName);
    nBegin1 = src.nBegin1;
    nEnd1 = src.nEnd1;
    nBegin2 = src.nBegin2;
    nEnd2 = src.nEnd2;
    ptTop[0] = src.ptTop[0];
    ptTop[1] = src.ptTop[1];
    ptBot[0] = src.ptBot[0];
    ptBot[1] = src.ptBot[1];
    std::vector<_sLinkRegion> children(std::move(src.vecChild));
    vecChild.swap(children);
  }
  return *this;
}

_sLinkLine::_sLinkLine() : nType(0), bBottom(false) {}
_sLinkLine::_sLinkLine(const _sLinkLine& src) = default;
_sLinkLine::_sLinkLine(_sLinkLine&& src) noexcept = default;
_sLinkLine::~_sLinkLine() = default;

_sLinkLine& _sLinkLine::operator=(const _sLinkLine& src) {
  if (this != &src) {
    pt1 = src.pt1;
    pt2 = src.pt2;
    nType = src.nType;
    bBottom = src.bBottom;
    strUpName = src.strUpName;
    strDownName = src.strDownName;
  }
  return *this;
}

_sLinkLine& _sLinkLine::operator=(_sLinkLine&& src) noexcept {
  if (this != &src) {
    pt1 = src.pt1;
    pt2 = src.pt2;
    nType = src.nType;
    bBottom = src.bBottom;
    strUpName = std::move(src.strUpName);
    strDownName = std::move(src.strDownName);
  }
  return *this;
}

// Ends are compared as they stand, borehole 1's end with borehole 1's end: a line and its reverse
// are different lines.
bool _sLinkLine::IsSame(const _sLinkLine& other) const {
  return xkl::CompareDouble(pt1.x, other.pt1.x) == 0 &&
         xkl::CompareDouble(pt1.y, other.pt1.y) == 0 &&
         xkl::CompareDouble(pt1.z, other.pt1.z) == 0 &&
         xkl::CompareDouble(pt2.x, other.pt2.x) == 0 &&
         xkl::CompareDouble(pt2.y, other.pt2.y) == 0 && xkl::CompareDouble(pt2.z, other.pt2.z) == 0;
}

} // namespace DataType
