#include "correlation/CodeIndex.h"

#include <algorithm>

namespace xkl {

namespace {

void IdsOf(const DataType::_sZK& zk, const std::vector<std::wstring>& codes,
           std::vector<int32_t>& ids) {
  ids.clear();
  ids.reserve(zk.vecDC.size());
  for (const DataType::_sZKDC& dc : zk.vecDC) {
    const auto it = std::lower_bound(codes.begin(), codes.end(), dc.strName);
    ids.push_back(static_cast<int32_t>(it - codes.begin()));
  }
}

} // namespace

CodeIndex CodeIndex::Build(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  CodeIndex index;
  index.Rebuild(zk1, zk2);
  return index;
}

void CodeIndex::Rebuild(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  codes.clear();
  codes.reserve(zk1.vecDC.size() + zk2.vecDC.size());
  for (const DataType::_sZKDC& dc : zk1.vecDC) {
    codes.push_back(dc.strName);
  }
  for (const DataType::_sZKDC& dc : zk2.vecDC) {
    codes.push_back(dc.strName);
  }
  std::sort(codes.begin(), codes.end());
  codes.erase(std::unique(codes.begin(), codes.end()), codes.end());
  IdsOf(zk1, codes, ids1);
  IdsOf(zk2, codes, ids2);
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
