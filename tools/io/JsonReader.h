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
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <string>
#include <string_view>

namespace xklink {

BoreholeSet ReadJsonBoreholes(std::string_view text, const std::string& file,
                              const ReadOptions& options);

} // namespace xklink
