// Checks of a borehole set before it is correlated. The core takes any records it is given; these
// checks are the tool's boundary, where a fault in the data is reported with its file, line and
// field instead of turning into a wrong section.
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"

#include <vector>

namespace xklink {

// Every problem of the set: what the reader noticed, then hole by hole
//   errors:   a non-finite collar or stratum value; a hole without strata; a stratum whose top is
//             below its base; strata not in downward order; strata that overlap; a first stratum
//             above the collar; duplicate hole names; fewer than two holes;
//   warnings: a gap between strata; a log that starts below the collar; a stratum of no thickness;
//             holes that share a plan position.
// Elevations are compared exactly: the readers compute them from the same decimal values, and a
// tolerance would hide the overlaps of real logs (M621 BH07: 19.97-20.10 then 20.00-23.00).
std::vector<Diagnostic> ValidateBoreholes(const BoreholeSet& set);

// Holes closer than this in plan (1 mm, finer than any survey of a collar) count as one position.
constexpr double kSamePlanPositionTolerance = 1e-3;

// Errors for consecutive holes of a section that stand at the same plan position: the section
// between them has no length, so it has no direction and its slopes would divide by zero.
std::vector<Diagnostic> CheckSectionSpacing(const std::vector<HoleRecord>& section);

} // namespace xklink
