// The output records: a region of the correlation tree and a section line.
#include "records/MoveAssign.h"

#include <XKLinkDc/XKLinkDc.h>
#include <utility>
#include <vector>

namespace DataType {

namespace {

// Every member but the children, copied from a region or moved from one about to go.
template <class From> void AssignFields(_sLinkRegion& to, From&& from) {
  to.nType = from.nType;
  to.bNamed = from.bNamed;
  to.strName = std::forward<From>(from).strName;
  to.nBegin1 = from.nBegin1;
  to.nEnd1 = from.nEnd1;
  to.nBegin2 = from.nBegin2;
  to.nEnd2 = from.nEnd2;
  to.ptTop[0] = from.ptTop[0];
  to.ptTop[1] = from.ptTop[1];
  to.ptBot[0] = from.ptBot[0];
  to.ptBot[1] = from.ptBot[1];
}

} // namespace

_sLinkRegion::_sLinkRegion()
    : nType(0), bNamed(false), nBegin1(-1), nEnd1(-1), nBegin2(-1), nEnd2(-1) {}

// Logs of thousands of strata with nested repetitions nest regions thousands deep; copying and
// destroying a tree therefore walk it with a work list instead of recursing on the call stack.
_sLinkRegion::_sLinkRegion(const _sLinkRegion& src) : _sLinkRegion() {
  AssignFields(*this, src);
  if (src.vecChild.empty()) {
    return; // most regions are leaves: no work list
  }
  std::vector<std::pair<const _sLinkRegion*, _sLinkRegion*>> pending{{&src, this}};
  while (!pending.empty()) {
    const auto [from, to] = pending.back();
    pending.pop_back();
    to->vecChild.resize(from->vecChild.size());
    for (std::size_t i = 0; i < from->vecChild.size(); ++i) {
      AssignFields(to->vecChild[i], from->vecChild[i]);
      pending.emplace_back(&from->vecChild[i], &to->vecChild[i]);
    }
  }
}

_sLinkRegion::_sLinkRegion(_sLinkRegion&& src) noexcept = default;

namespace {

// Trees of ordinary sections are a few levels deep and are released by plain recursion; below this
// depth the rest of a subtree is handed to a work list, so that no depth exhausts the stack.
constexpr int kRecursionDepth = 32;

void ReleaseChildren(std::vector<_sLinkRegion>& children, int depth) {
  if (depth < kRecursionDepth) {
    for (_sLinkRegion& child : children) {
      if (!child.vecChild.empty()) {
        ReleaseChildren(child.vecChild, depth + 1);
      }
    }
    children.clear(); // every child is childless by now: its destructor has nothing to walk
    return;
  }
  // Detach every descendant before it is destroyed, so that no destructor below this one finds
  // children of its own.
  std::vector<_sLinkRegion> pending = std::move(children);
  while (!pending.empty()) {
    _sLinkRegion last = std::move(pending.back());
    pending.pop_back();
    for (_sLinkRegion& child : last.vecChild) {
      pending.push_back(std::move(child));
    }
    last.vecChild.clear();
  }
}

} // namespace

_sLinkRegion::~_sLinkRegion() {
  if (!vecChild.empty()) {
    ReleaseChildren(vecChild, 0);
  }
}

_sLinkRegion& _sLinkRegion::operator=(const _sLinkRegion& src) {
  if (this != &src) {
    // Copy first, then take over: the source may be a descendant of this region.
    _sLinkRegion copy(src);
    *this = std::move(copy);
  }
  return *this;
}

_sLinkRegion& _sLinkRegion::operator=(_sLinkRegion&& src) noexcept {
  if (this != &src) {
    AssignFields(*this, std::move(src));
    // The old children are released through a destructor, which walks them without recursion.
    _sLinkRegion old;
    old.vecChild.swap(vecChild);
    std::vector<_sLinkRegion> children(std::move(src.vecChild));
    vecChild.swap(children);
  }
  return *this;
}

_sLinkLine::_sLinkLine() : nType(0), bBottom(false) {}
_sLinkLine::_sLinkLine(const _sLinkLine& src) = default;
_sLinkLine::_sLinkLine(_sLinkLine&& src) noexcept = default;
_sLinkLine::~_sLinkLine() = default;

_sLinkLine& _sLinkLine::operator=(const _sLinkLine& src) = default;
_sLinkLine& _sLinkLine::operator=(_sLinkLine&& src) noexcept {
  return xkl::MoveAssign(*this, std::move(src));
}

// Ends are compared as they stand, borehole 1's end with borehole 1's end: a line and its reverse
// are different lines.
bool _sLinkLine::IsSame(const _sLinkLine& other) const {
  return pt1 == other.pt1 && pt2 == other.pt2; // the points' tolerant equality
}

} // namespace DataType
