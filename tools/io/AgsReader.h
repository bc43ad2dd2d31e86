// Boreholes from an AGS file (AGS4 or AGS 3.1).
//
// Holes come from LOCA (AGS 3.1: HOLE): LOCA_ID, LOCA_NATE and LOCA_NATN (plan position), LOCA_GL
// (ground level, the collar elevation). Strata come from GEOL: LOCA_ID, GEOL_TOP and GEOL_BASE as
// depths below ground, so that elevation = LOCA_GL - depth.
//
// Codes (see AgsCodes.h): the column named in the options, for every hole; or else the first of
// GEOL_GEOL, GEOL_LEG and GEOL_GEO2 that is filled in some row of the file. A hole on most of
// whose rows that column is empty takes the next column that is filled on at least half of its
// rows, and finally the principal soil or rock name of GEOL_DESC; one warning for each fall-back
// lists the holes. What the ABBR group says the codes used mean goes to
// BoreholeSet::codeDescriptions.
//
// Real files are messy; the reader copes as an engineer would, and only a file that cannot be read
// at all is a ParseError:
//  - GEOL rows of a hole out of depth order are sorted by GEOL_TOP (a warning lists the holes);
//  - a hole without a usable ground level (LOCA_GL absent, empty, "-", not a number) is read with
//    groundLevelKnown false, its collar at 0 and its strata at minus their depths;
//  - a hole in LOCA without geology or without a plan position is left out with a warning
//    (BoreholeSet::skipped says why);
//  - a GEOL row without a top or a base ("Continued on sheet 2") is left out with a warning; GEOL
//    rows of a hole that is not in LOCA, a GEOL row with a depth that is not a number, a row with
//    the wrong number of fields and a hole given twice with different values are left out with an
//    error tied to their hole, for the caller to decide whether a section without it will do;
//  - a hole whose final depth (LOCA_FDEP) lies below its last logged stratum gets a warning.
#pragma once

#include "BoreholeSet.h"
#include "ReadOptions.h"

#include <string>
#include <string_view>

namespace xklink {

// `text` is the whole file (read in place: pass it with std::move to spare a copy); `file` names
// it in messages.
BoreholeSet ReadAgsBoreholes(std::string text, const std::string& file, const ReadOptions& options);
BoreholeSet ReadAgsBoreholes(std::string_view text, const std::string& file,
                             const ReadOptions& options);

} // namespace xklink
