// The regions whose boundaries are drawn, and their two boundary lines each.
#include "lines/Lines.h"

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
    if (child.nType == 0) {
      return false;
    }
  }
  return true;
}

// Pre-order without recursion: trees of long logs nest deeply.
void CollectLeafRegions(const _sLinkRegion& region, std::vector<const _sLinkRegion*>& leaves) {
  std::vector<const _sLinkRegion*> stack{&region};
  while (!stack.empty()) {
    const _sLinkRegion* next = stack.back();
    stack.pop_back();
    if (IsLeafRegion(*next)) {
      leaves.push_back(next);
    }
    for (auto it = next->vecChild.rbegin(); it != next->vecChild.rend(); ++it) {
      stack.push_back(&*it);
    }
  }
}

void AppendLeafLines(const _sLinkRegion& root, LineList& lines) {
  std::vector<const _sLinkRegion*> leaves;
  CollectLeafRegions(root, leaves);
  lines.reserve(lines.size() + 2 * leaves.size());
  for (const _sLinkRegion* leaf : leaves) {
    _sLinkLine& top = lines.emplace_back();
    top.strUpName = leaf->strName;
    top.nType = leaf->nType;
    top.bBottom = false;
    top.pt1 = leaf->ptTop[0];
    top.pt2 = leaf->ptTop[1];
    _sLinkLine& bottom = lines.emplace_back();
    bottom.strUpName = leaf->strName;
    bottom.nType = leaf->nType;
    bottom.bBottom = true;
    bottom.pt1 = leaf->ptBot[0];
    bottom.pt2 = leaf->ptBot[1];
  }
}

} // namespace xkl
