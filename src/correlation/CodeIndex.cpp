#include "correlation/CodeIndex.h"

#include <algorithm>
#include <cwchar>

namespace xkl {

namespace {

// Equality of two codes. Short codes (a legend's letters and numbers) are compared inline, where a
// library call would cost more than the comparison; long ones (formation names as the BGS lexicon
// spells them, thirty characters and more) by the library's vectorised comparison.
constexpr std::size_t kInlineCodeLength = 6;

bool SameCode(const std::wstring& a, const std::wstring& b) {
  if (a.size() != b.size()) {
    return false;
  }
  if (a.size() > kInlineCodeLength) {
    return std::wmemcmp(a.data(), b.data(), a.size()) == 0;
  }
  for (std::size_t k = 0; k < a.size(); ++k) {
    if (a[k] != b[k]) {
      return false;
    }
  }
  return true;
}

// Up to this many distinct codes, a stratum's code is looked up among those already met; beyond,
// all codes are sorted at once.
constexpr std::size_t kLookupLimit = 16;

} // namespace

void CodeIndex::Rebuild(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  ids1.resize(zk1.vecDC.size());
  ids2.resize(zk2.vecDC.size());
  if (!RebuildFromFewCodes(zk1, zk2)) {
    RebuildBySorting(zk1, zk2);
  }
}

// Logs use a handful of codes: each stratum's code is found among the codes met so far (most often
// it is the code of the stratum just above), and only the distinct codes are sorted.
bool CodeIndex::RebuildFromFewCodes(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
  codes.clear();
  const auto lookUp = [this](const std::wstring& code, int32_t previous) -> int32_t {
    if (previous >= 0 && SameCode(*codes[static_cast<std::size_t>(previous)], code)) {
      return previous;
    }
    for (std::size_t c = 0; c < codes.size(); ++c) {
      if (SameCode(*codes[c], code)) {
        return static_cast<int32_t>(c);
      }
    }
    if (codes.size() == kLookupLimit) {
      return -1;
    }
    codes.push_back(&code);
    return static_cast<int32_t>(codes.size()) - 1;
  };
  for (const auto& [zk, ids] : {std::pair{&zk1, &ids1}, std::pair{&zk2, &ids2}}) {
    int32_t previous = -1;
    for (std::size_t i = 0; i < zk->vecDC.size(); ++i) {
      previous = lookUp(zk->vecDC[i].strName, previous);
      if (previous < 0) {
        return false;
      }
      (*ids)[i] = previous;
    }
  }
  // Ids in order of first appearance so far; renumber them in the ordinal order of the codes.
  int32_t byFirstAppearance[kLookupLimit];
  const auto count = static_cast<int32_t>(codes.size());
  for (int32_t c = 0; c < count; ++c) {
    byFirstAppearance[c] = c;
  }
  std::sort(byFirstAppearance, byFirstAppearance + count, [this](int32_t a, int32_t b) {
    return *codes[static_cast<std::size_t>(a)] < *codes[static_cast<std::size_t>(b)];
  });
  int32_t renumbered[kLookupLimit];
  const std::wstring* sorted[kLookupLimit];
  for (int32_t rank = 0; rank < count; ++rank) {
    renumbered[byFirstAppearance[rank]] = rank;
    sorted[rank] = codes[static_cast<std::size_t>(byFirstAppearance[rank])];
  }
  codes.assign(sorted, sorted + count);
  for (int32_t& id : ids1) {
    id = renumbered[id];
  }
  for (int32_t& id : ids2) {
    id = renumbered[id];
  }
  return true;
}

void CodeIndex::RebuildBySorting(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
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

std::size_t CodeIndex::Bytes() const {
  return codes.capacity() * sizeof(codes[0]) +
         (ids1.capacity() + ids2.capacity()) * sizeof(int32_t) +
         seen.capacity() * sizeof(uint32_t) + m_order.capacity() * sizeof(m_order[0]);
}

uint32_t CodeIndex::NextMark() {
  if (seen.size() != codes.size() || mark == UINT32_MAX) {
    seen.assign(codes.size(), 0);
    mark = 0;
  }
  return ++mark;
}

int32_t CodeIndex::IdOf(const std::wstring& code) const {
  if (codes.size() <= kLookupLimit) {
    for (std::size_t c = 0; c < codes.size(); ++c) {
      if (SameCode(*codes[c], code)) {
        return static_cast<int32_t>(c);
      }
    }
    return -1;
  }
  const auto it =
      std::lower_bound(codes.begin(), codes.end(), code,
                       [](const std::wstring* a, const std::wstring& b) { return *a < b; });
  if (it == codes.end() || **it != code) {
    return -1;
  }
  return static_cast<int32_t>(it - codes.begin());
}

} // namespace xkl
