// Very long logs and deeply nested envelopes: the walk over the region tree, the copies and the
// destruction of trees must not grow the call stack with the depth of the tree.
#include "lines/Lines.h"

#include <XKLinkDc/XKLinkDc.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using DataType::_sLinkRegion;
using DataType::_sZK;

// Strata 0.5 thick from the collar down; halves keep every elevation and sum exact.
void AppendStratum(_sZK& zk, const std::wstring& code) {
  DataType::_sZKDC dc;
  dc.strName = code;
  dc.dTopGC = zk.vecDC.empty() ? zk.dTopGC : zk.vecDC.back().dBotGC;
  dc.dBotGC = dc.dTopGC - 0.5;
  zk.vecDC.push_back(dc);
}

std::size_t Depth(const _sLinkRegion& root) {
  std::vector<std::pair<const _sLinkRegion*, std::size_t>> pending{{&root, 0}};
  std::size_t deepest = 0;
  while (!pending.empty()) {
    const auto [region, depth] = pending.back();
    pending.pop_back();
    deepest = std::max(deepest, depth);
    for (const _sLinkRegion& child : region->vecChild) {
      pending.emplace_back(&child, depth + 1);
    }
  }
  return deepest;
}

TEST(DeepStructure, HundredThousandStrataOfNestedAndAlternatingCodes) {
  // Twenty envelopes N0 > N1 > ... > N19 nested around 99,960 strata alternating A and B, against
  // a hole that shares none of them: every envelope closes inside the one around it, and inside
  // the innermost the alternation closes into one lens per occurrence.
  constexpr int kNesting = 20;
  constexpr int kStrata = 100000;
  _sZK deep;
  for (int i = 0; i < kNesting; ++i) {
    AppendStratum(deep, L"N" + std::to_wstring(i));
  }
  for (int i = 0; i < kStrata - 2 * kNesting; ++i) {
    AppendStratum(deep, i % 2 == 0 ? L"A" : L"B");
  }
  for (int i = kNesting - 1; i >= 0; --i) {
    AppendStratum(deep, L"N" + std::to_wstring(i));
  }
  _sZK single;
  single.dX = 40.0;
  AppendStratum(single, L"Z");

  _sLinkRegion root;
  LinkDc(deep, single, root);
  // Root, the wedge of N0, the lenses N1..N19, the lens of the fused B (equal thickness sums let
  // the later candidate win), and the lenses of A inside it.
  EXPECT_EQ(Depth(root), static_cast<std::size_t>(kNesting + 2));
  _sLinkRegion copy(root);
  EXPECT_EQ(Depth(copy), Depth(root));
  std::vector<DataType::_sLinkLine> lines;
  LinkDcLine(deep, single, lines);
  EXPECT_GT(lines.size(), static_cast<std::size_t>(kStrata / 2));
}

TEST(DeepStructure, TreeOfDepthHundredThousandIsCopiedAssignedWalkedAndReleased) {
  // A chain of regions, each the only child of the one before.
  constexpr std::size_t kDepth = 100000;
  _sLinkRegion tree;
  _sLinkRegion* tip = &tree;
  for (std::size_t i = 0; i < kDepth; ++i) {
    tip = &tip->vecChild.emplace_back();
    tip->nBegin1 = static_cast<int32_t>(i);
    tip->strName = L"L";
  }
  _sLinkRegion copy(tree);
  EXPECT_EQ(Depth(copy), kDepth);
  _sLinkRegion assigned;
  assigned = copy;
  EXPECT_EQ(Depth(assigned), kDepth);
  // Assigning a descendant to its ancestor keeps the descendant's subtree.
  _sLinkRegion* middle = &assigned;
  for (std::size_t i = 0; i < kDepth / 2; ++i) {
    middle = &middle->vecChild.front();
  }
  assigned = *middle;
  EXPECT_EQ(Depth(assigned), kDepth / 2);
  EXPECT_EQ(assigned.nBegin1, static_cast<int32_t>(kDepth / 2 - 1));

  std::vector<const _sLinkRegion*> leaves;
  xkl::CollectLeafRegions(tree, leaves);
  EXPECT_EQ(leaves.size(), kDepth); // every named region; the unnamed root has a kind-0 child
  std::vector<DataType::_sLinkLine> lines;
  xkl::AppendLeafLines(tree, lines);
  EXPECT_EQ(lines.size(), 2 * kDepth);
}

} // namespace
