// Internal routines of the section lines: the leaf regions of a correlation tree, their boundary
// lines, the merging of coinciding lines and their ordering from the highest down.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <vector>

namespace xkl {

using DataType::_sLinkLine;
using DataType::_sLinkRegion;
using LineList = std::vector<_sLinkLine>;

// A region whose boundaries are drawn: named, childless, or with closed children only.
bool IsLeafRegion(const _sLinkRegion& region);
// Pre-order walk: a region before its sub-regions, siblings in order. The leaves are referred to,
// not copied: the tree does not change while its lines are made.
void CollectLeafRegions(const _sLinkRegion& region, std::vector<const _sLinkRegion*>& leaves);
// Appends the top and then the bottom line of every leaf of the tree below root (pre-order).
void AppendLeafLines(const _sLinkRegion& root, LineList& lines);
// Merges coinciding lines so that one line names the regions on both sides; clears bBottom.
void MergeSameLines(LineList& lines);
// Ordering predicate: true when a is to come before b (a is the higher line).
bool IsLineAbove(const _sLinkLine& a, const _sLinkLine& b);
// The final steps: merge, sort from the highest down, remove the highest line.
void FinishLines(LineList& lines);

} // namespace xkl
