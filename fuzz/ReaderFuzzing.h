// What the reader targets share: reading that may only fail with a ParseError, and the checks of
// what a reader lets through. A set that passes the validation goes on to the correlation, so that
// the values readers produce (huge, tiny, equal, many strata, odd codes) reach the core as well.
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"
#include "Validation.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace fuzz {

// The set read by `read`, or nothing when the input was refused with a ParseError. Any other
// exception escapes and libFuzzer reports it: a reader must not fail in any other way.
template <typename ReadFunction>
std::optional<xklink::BoreholeSet> ReadOrRefuse(ReadFunction read) {
  try {
    return read();
  } catch (const xklink::ParseError& error) {
    // The message of a refusal is shown to the user: it must be a complete sentence with a place.
    if (error.Message().empty() || error.Where().file.empty()) {
      __builtin_trap();
    }
    return std::nullopt;
  }
}

// What a set without validation errors promises the core: two holes or more, each with finite
// collar and plan values and at least one stratum, strata right way up, finite, in downward order
// and not overlapping, the first not above the collar.
inline bool MeetsCorePromises(const xklink::BoreholeSet& set) {
  if (set.holes.size() < 2) {
    return false;
  }
  for (const auto& hole : set.holes) {
    if (!std::isfinite(hole.x) || !std::isfinite(hole.y) || !std::isfinite(hole.top) ||
        hole.strata.empty()) {
      return false;
    }
    const DataType::_sZKDC* above = nullptr;
    for (const auto& stratum : hole.strata) {
      const auto& dc = stratum.dc;
      if (!std::isfinite(dc.dTopGC) || !std::isfinite(dc.dBotGC) || dc.dTopGC < dc.dBotGC) {
        return false;
      }
      if (above == nullptr ? dc.dTopGC > hole.top : dc.dTopGC > above->dBotGC) {
        return false;
      }
      above = &dc;
    }
  }
  return true;
}

// Validates the set and, when it is clean, correlates its first two holes as the tool would.
inline void ValidateAndCorrelate(const xklink::BoreholeSet& set) {
  const auto diagnostics = xklink::ValidateBoreholes(set);
  for (const auto& diagnostic : diagnostics) {
    if (diagnostic.ToString().empty()) {
      __builtin_trap();
    }
  }
  if (xklink::HasErrors(diagnostics)) {
    return;
  }
  if (!MeetsCorePromises(set)) {
    __builtin_trap(); // the validation let through what the core is not promised to take
  }
  // The readers check their text as UTF-8, so turning names and codes into wide strings for the
  // core must not fail here: a ParseError escaping from ToZK is a finding.
  const DataType::_sZK zk1 = set.holes[0].ToZK();
  const DataType::_sZK zk2 = set.holes[1].ToZK();
  std::vector<DataType::_sLinkLine> lines;
  LinkDcLine(zk1, zk2, lines);
}

// The checks above on the set as read and, when joining repeated codes changes it, on the joined
// set too (what --merge-repeats hands to the core).
inline void CheckSet(xklink::BoreholeSet set) {
  ValidateAndCorrelate(set);
  std::size_t before = 0;
  for (const auto& hole : set.holes) {
    before += hole.strata.size();
  }
  xklink::MergeRepeatedCodes(set);
  std::size_t after = 0;
  for (const auto& hole : set.holes) {
    after += hole.strata.size();
  }
  if (after != before) {
    ValidateAndCorrelate(set);
  }
}

} // namespace fuzz
