// What a region of the correlation tree is. The public record carries it as an int (nType).
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <cstdint>

namespace xkl {

enum class RegionKind : int32_t {
  Open = 0,  // the root and what splitting cuts out: may be split again
  Lens = 1,  // made by closing the envelope of a repeated stratum
  Wedge = 2, // made by closing strata that do not correlate: thins out at the other hole
};

constexpr int32_t ToInt(RegionKind kind) {
  return static_cast<int32_t>(kind);
}
inline bool IsOpen(const DataType::_sLinkRegion& region) {
  return region.nType == ToInt(RegionKind::Open);
}

} // namespace xkl
