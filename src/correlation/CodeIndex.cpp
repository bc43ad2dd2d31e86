#include "correlation/CodeIndex.h"

#include <algorithm>

namespace xkl {

CodeIndex CodeIndex::Build(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  CodeIndex index;
  index.Rebuild(zk1, zk2);
  return index;
}

void CodeIndex::Rebuild(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  // Every stratum's code, sorted once; equal codes then stand together and get one id.
  m_order.clear();
  const auto count1 = static_cast<int32_t>(zk1.vecDC.size());
  for (int32_t i = 0; i < count1; ++i) {
    m_order.emplace_back(&zk1.vecDC[static_cast<std::size_t>(i)].strName, i);
  }
  for (std::size_t j = 0; j < zk2.vecDC.size(); ++j) {
    m_order.emplace_back(&zk2.vecDC[j].strName, count1 + static_cast<int32_t>(j));
  }
  std::sort(m_order.begin(), m_order.end(),
            [](const auto& a, const auto& b) { return *a.first < *b.first; });
  codes.clear();
  ids1.resize(zk1.vecDC.size());
  ids2.resize(zk2.vecDC.size());
  for (const auto& [code, stratum] : m_order) {
    if (codes.empty() || *codes.back() != *code) {
      codes.push_back(code);
    }
    const auto id = static_cast<int32_t>(codes.size()) - 1;
    if (stratum < count1) {
      ids1[static_cast<std::size_t>(stratum)] = id;
    } else {
      ids2[static_cast<std::size_t>(stratum - count1)] = id;
    }
  }
}

uint32_t CodeIndex::NextMark() const {
  if (seen.size() != codes.size() || mark == UINT32_MAX) {
    seen.assign(codes.size(), 0);
    mark = 0;
  }
  return ++mark;
}

int32_t CodeIndex::IdOf(const std::wstring& code) const {
  const auto it = std::lower_bound(codes.begin(), codes.end(), code,
                                   [](const std::wstring* a, const std::wstring& b) { return *a < b; });
  if (it == codes.end() || **it != code) {
    return -1;
  }
  return static_cast<int32_t>(it - codes.begin());
}

} // namespace xkl
