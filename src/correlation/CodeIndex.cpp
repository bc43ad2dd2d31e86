#include "correlation/CodeIndex.h"

#include <algorithm>

namespace xkl {

namespace {

std::vector<int32_t> IdsOf(const DataType::_sZK& zk, const std::vector<std::wstring>& codes) {
  std::vector<int32_t> ids;
  ids.reserve(zk.vecDC.size());
  for (const DataType::_sZKDC& dc : zk.vecDC) {
    const auto it = std::lower_bound(codes.begin(), codes.end(), dc.strName);
    ids.push_back(static_cast<int32_t>(it - codes.begin()));
  }
  return ids;
}

} // namespace

CodeIndex CodeIndex::Build(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  CodeIndex index;
  index.codes.reserve(zk1.vecDC.size() + zk2.vecDC.size());
  for (const DataType::_sZKDC& dc : zk1.vecDC) {
    index.codes.push_back(dc.strName);
  }
  for (const DataType::_sZKDC& dc : zk2.vecDC) {
    index.codes.push_back(dc.strName);
  }
  std::sort(index.codes.begin(), index.codes.end());
  index.codes.erase(std::unique(index.codes.begin(), index.codes.end()), index.codes.end());
  index.ids1 = IdsOf(zk1, index.codes);
  index.ids2 = IdsOf(zk2, index.codes);
  return index;
}

uint32_t CodeIndex::NextMark() const {
  if (seen.size() != codes.size() || mark == UINT32_MAX) {
    seen.assign(codes.size(), 0);
    mark = 0;
  }
  return ++mark;
}

int32_t CodeIndex::IdOf(const std::wstring& code) const {
  const auto it = std::lower_bound(codes.begin(), codes.end(), code);
  if (it == codes.end() || *it != code) {
    return -1;
  }
  return static_cast<int32_t>(it - codes.begin());
}

} // namespace xkl
