// Stratum codes interned to small integers once per correlation, so that the hot loops compare
// integers instead of strings. Ids follow the ordinal order of the codes.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace xkl {

// The codes point into the boreholes the index was built from, which must outlive it unchanged.
struct CodeIndex {
  std::vector<const std::wstring*> codes; // distinct codes of both boreholes, in ordinal order
  std::vector<int32_t> ids1;              // code id of every stratum of borehole 1
  std::vector<int32_t> ids2;              // code id of every stratum of borehole 2

  // Builds the index of two boreholes, reusing its storage.
  void Rebuild(const DataType::_sZK& zk1, const DataType::_sZK& zk2);
  // Lets go of the codes once the boreholes may change.
  void Forget() { codes.clear(); }
  // The id of a code, or -1 when neither borehole carries it.
  int32_t IdOf(const std::wstring& code) const;
  int32_t Count() const { return static_cast<int32_t>(codes.size()); }

  // A fresh mark for `seen`: codes marked with it were seen in the current scan.
  uint32_t NextMark();
  std::vector<uint32_t> seen; // per code id, the mark of the scan that last saw it
  uint32_t mark = 0;

  std::size_t Bytes() const;

private:
  bool RebuildFromFewCodes(const DataType::_sZK& zk1, const DataType::_sZK& zk2);
  void RebuildBySorting(const DataType::_sZK& zk1, const DataType::_sZK& zk2);
  std::vector<std::pair<const std::wstring*, int32_t>> m_order; // working storage of Rebuild
};

} // namespace xkl
