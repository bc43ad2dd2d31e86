// The regions whose boundaries are drawn, and their two boundary lines each.
#include "lines/Lines.h"
#include "records/RegionKind.h"

namespace xkl {

// Splitting and closing name every region they make, so below the root every region is drawn; the
// root (unnamed) only when nothing was split out of it.
bool IsLeafRegion(const _sLinkRegion& region) {
  if (!region.strName.empty()) {
    return true;
  }
  if (region.vecChild.empty()) {
    return true;
  }
  for (const _sLinkRegion& child : region.vecChild) {
    if (IsOpen(child)) {
      return false;
    }
  }
  return true;
}

namespace {

// Calls f(leaf) for every leaf below root, in pre-order, without recursion.
template <class F>
void ForEachLeaf(const _sLinkRegion& root, std::vector<const _sLinkRegion*>& stack, F&& f) {
  stack.clear();
  stack.push_back(&root);
  while (!stack.empty()) {
    const _sLinkRegion* next = stack.back();
    stack.pop_back();
    if (IsLeafRegion(*next)) {
      f(*next);
    }
    for (auto it = next->vecChild.rbegin(); it != next->vecChild.rend(); ++it) {
      stack.push_back(&*it);
    }
  }
}

} // namespace

// Pre-order without recursion: trees of long logs nest deeply.
void CollectLeafRegions(const _sLinkRegion& region, std::vector<const _sLinkRegion*>& leaves) {
  std::vector<const _sLinkRegion*> stack;
  ForEachLeaf(region, stack, [&leaves](const _sLinkRegion& leaf) { leaves.push_back(&leaf); });
}

void AppendLeafLines(const _sLinkRegion& root, LineList& lines) {
  std::vector<const _sLinkRegion*> stack;
  stack.reserve(64); // the pending siblings of a typical tree, in one allocation
  std::size_t leaves = 0;
  ForEachLeaf(root, stack, [&leaves](const _sLinkRegion&) { ++leaves; });
  lines.reserve(lines.size() + 2 * leaves);
  const auto append = [&lines](const _sLinkRegion& leaf, const CXk3DPoint& pt1,
                               const CXk3DPoint& pt2, bool bottom) {
    _sLinkLine& line = lines.emplace_back();
    line.strUpName = leaf.strName;
    line.nType = leaf.nType;
    line.bBottom = bottom;
    line.pt1 = pt1;
    line.pt2 = pt2;
  };
  ForEachLeaf(root, stack, [&append](const _sLinkRegion& leaf) {
    append(leaf, leaf.ptTop[0], leaf.ptTop[1], false);
    append(leaf, leaf.ptBot[0], leaf.ptBot[1], true);
  });
}

} // namespace xkl
