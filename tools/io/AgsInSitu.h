// The in-situ records of an AGS file (InSitu.h), read in a pass of their own beside the holes.
//
// AGS4: water strikes in WSTG (LOCA_ID, WSTG_DPTH, WSTG_DTIM, WSTG_REM) with the levels read after
// each in WSTD (WSTG_DPTH, WSTD_NMIN, WSTD_POST); monitoring readings in MOND, of which MOND_TYPE
// "WDEP" is the depth to water (MOND_RDNG, MOND_DTIM, MONG_ID); SPT in ISPT (ISPT_TOP, ISPT_NVAL,
// ISPT_REP, ISPT_MAIN, ISPT_NPEN, ISPT_INC1..6); descriptions in GEOL (GEOL_TOP, GEOL_BASE,
// GEOL_DESC). AGS 3.1: HOLE_ID for LOCA_ID, water strikes in WSTK (WSTK_DEP, WSTK_NMIN, WSTK_POST,
// WSTK_DATE, WSTK_TIME; some producers name the group WSTG with WSTG_DPTH, WSTG_POST, ...).
//
// These records never stop a section: a row whose depth is missing or not a number is left out
// with a warning naming its line and field, and a group whose structure is broken is passed over
// with one warning.
#pragma once

#include "Diagnostics.h"
#include "InSitu.h"

#include <string>
#include <string_view>
#include <vector>

namespace xklink {

// `text` is the whole file; `file` names it in messages. Warnings go to `diagnostics`; those about
// the GEOL group repeat what the reader of the holes says, and ReadBoreholes drops them.
InSituData ReadAgsInSitu(std::string_view text, const std::string& file,
                         std::vector<Diagnostic>& diagnostics);

} // namespace xklink
