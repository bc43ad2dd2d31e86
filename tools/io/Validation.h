// Checks of a borehole set before it is correlated. The core takes any records it is given; these
// checks are the tool's boundary, where a fault in the data is reported with its file, line and
// field instead of turning into a wrong section.
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"

#include <cstddef>
#include <string>
#include <vector>

namespace xklink {

// No ground on Earth stands higher than 8.9 km and no hole has been drilled deeper than 12.3 km
// below its collar: an elevation beyond 15 km is a typing or unit error, and left in, it makes the
// drawing's scale overflow.
constexpr double kMaxElevation = 15000.0;
// Projected coordinates (national grids, UTM with its false origins) stay within 1e7 m; 1e8 m
// leaves room for any local grid while keeping a millimetre within the precision of a double.
constexpr double kMaxCoordinate = 1e8;

// Holes closer than this in plan (1 mm, finer than any survey of a collar) count as one position.
constexpr double kSamePlanPositionTolerance = 1e-3;

// The problems of each hole, hole by hole, into `sink` (not the reader's diagnostics):
//   errors:   a non-finite value or one beyond the limits above; a hole without strata; a stratum
//             whose top is below its base; strata not in downward order; strata that overlap; a
//             first stratum above the collar; duplicate hole names;
//   warnings: a gap between strata; a log that starts below the collar; a stratum of no
//             thickness.
// Every one names its hole. Elevations are compared exactly: the readers compute them from the
// same decimal values, and a tolerance would hide the overlaps of real logs (M621 BH07:
// 19.97-20.10 then 20.00-23.00).
void ValidateHoles(const BoreholeSet& set, const DiagnosticSink& sink);

// Every problem of the set, as `xklink check` lists it: the reader's diagnostics, then those of
// ValidateHoles, then fewer than two holes (an error), holes without a ground level and holes that
// share a plan position (warnings).
void ValidateBoreholes(const BoreholeSet& set, const DiagnosticSink& sink);
std::vector<Diagnostic> ValidateBoreholes(const BoreholeSet& set);

// The messages for holes without a ground level (HoleRecord::groundLevelKnown): none of the holes
// has one, so the section is drawn in depth below ground; or this hole lacks one while others have
// one, so it cannot stand beside them.
std::string NoGroundLevelMessage();
std::string MissingGroundLevelMessage(const std::string& hole);

// For each hole, the index of the first earlier hole within kSamePlanPositionTolerance of it in
// plan, or its own index when there is none (also for a hole whose position is not finite or out
// of range). Linear in the count of holes: a grid of tolerance-sized cells is searched instead of
// every pair (150,000 holes would take a minute).
std::vector<std::size_t> SamePlanPositionAs(const std::vector<const HoleRecord*>& holes);

// Errors for consecutive holes of a section that stand at the same plan position: the section
// between them has no length, so it has no direction and its slopes would divide by zero.
std::vector<Diagnostic> CheckSectionSpacing(const std::vector<HoleRecord>& section);

} // namespace xklink
