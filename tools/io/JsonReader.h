// Boreholes from the tool's own JSON:
//
//   {"boreholes": [
//     {"name": "BH1", "x": 0.0, "y": 0.0, "top": 100.0,
//      "strata": [{"code": "A", "top": 100.0, "bottom": 95.0},
//                 {"code": "B", "top": 95.0, "bottom": 90.0, "aux": 1.5, "flag": true}]},
//     ...]}
//
// Elevations throughout; "aux" (dAux) and "flag" (bAux) are optional and carried to the host.
// Strata stay in the order of the file: this is the tool's own format, so an order that is not
// downwards is a fault for the validation to report, not something to tidy up. Syntax errors, a
// missing or mistyped member and a duplicate key throw ParseError with the line; an unknown member
// (a misspelt "botom") gets a warning, as it would otherwise be ignored without a word.
//
// The file is read as a stream of events, keeping only the members above: memory grows with the
// holes and strata, not with what other members hold, and the time with the length of the file.
// Objects and arrays may nest kMaxJsonNesting deep, anywhere in the file; deeper is refused with
// its line, rather than letting a hostile file exhaust the memory of the open containers.
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace xklink {

// A borehole file nests 5 deep (the document, "boreholes", a hole, "strata", a stratum); the rest
// leaves room for whatever a host keeps in members of its own.
constexpr std::size_t kMaxJsonNesting = 256;

BoreholeSet ReadJsonBoreholes(std::string_view text, const std::string& file,
                              const ReadOptions& options);

} // namespace xklink
