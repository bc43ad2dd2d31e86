// Boreholes from an AGS file (AGS4 or AGS 3.1).
//
// Holes come from LOCA (AGS 3.1: HOLE): LOCA_ID, LOCA_NATE and LOCA_NATN (plan position), LOCA_GL
// (ground level, the collar elevation). Strata come from GEOL: LOCA_ID, GEOL_TOP and GEOL_BASE as
// depths below ground, so that elevation = LOCA_GL - depth. The code of a stratum is read from the
// column given in the options, or else from the first of GEOL_GEOL, GEOL_LEG and GEOL_GEO2 that is
// filled in some row of the file: producers fill different columns.
//
// Real files are messy; the reader copes as an engineer would:
//  - GEOL rows of a hole out of depth order are sorted by GEOL_TOP (a warning lists the holes);
//  - a hole in LOCA without geology, or without a position or ground level, is left out with a
//    warning (BoreholeSet::skipped says why);
//  - a GEOL row whose hole is not in LOCA, a duplicate LOCA_ID, a GEOL row without top or base
//    are errors, tied to their hole;
//  - a hole whose final depth (LOCA_FDEP) lies below its last logged stratum gets a warning.
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <string>
#include <string_view>

namespace xklink {

// `text` is the whole file; `file` names it in messages.
BoreholeSet ReadAgsBoreholes(std::string_view text, const std::string& file,
                             const ReadOptions& options);

} // namespace xklink
