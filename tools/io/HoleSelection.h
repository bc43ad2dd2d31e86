// Choosing the holes of a section by name (--holes A,B,C).
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"

#include <string>
#include <string_view>
#include <vector>

namespace xklink {

// A selection that names no usable section: an unknown hole, a hole named twice, an empty name,
// fewer than two holes.
class SelectionError : public ParseError {
public:
  explicit SelectionError(const std::string& message) : ParseError({}, message) {}
};

// "BH01, BH02,BH03" -> {"BH01", "BH02", "BH03"}; spaces around names are dropped. An empty name
// ("A,,B", a trailing comma) is a SelectionError.
std::vector<std::string> SplitHoleList(std::string_view list);

// "no hole 'BH9' in site.ags", with the reason the reader left it out, if it did, or the name that
// differs only in case.
std::string UnknownHoleMessage(const BoreholeSet& set, const std::string& name);

// The index in set.holes of each named hole, in the order given. SelectionError for an unknown
// name, a name given twice, and fewer than two names.
std::vector<std::size_t> FindHoles(const BoreholeSet& set, const std::vector<std::string>& names);

// The named holes in the order given, which is the order along the section. The diagnostics kept
// are those of the file as a whole and of the chosen holes, so that a fault in a hole left out
// does not stop a section that does not use it. SelectionError for an unknown name (saying why
// the reader left it out, if it did, or which name differs only in case), a name given twice, and
// fewer than two names.
BoreholeSet SelectHoles(const BoreholeSet& set, const std::vector<std::string>& names);

} // namespace xklink
