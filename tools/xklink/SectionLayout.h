// Where the holes of a section stand along it.
#pragma once

#include <XKLinkDc/XKLinkDc.h>

#include <cstddef>
#include <vector>

namespace xklink {

// The order of the holes along the section's principal direction: the plan positions projected on
// their best-fit line (the major axis of their scatter), running west to east, or south to north
// when the line runs exactly north-south. Holes with equal projections keep their file order.
std::vector<std::size_t> OrderAlongPrincipalDirection(const std::vector<DataType::_sZK>& holes);

// Distance along the section of each hole: the section runs from hole to hole, so each chainage
// is the previous one plus the plan distance between the two holes.
std::vector<double> Chainages(const std::vector<DataType::_sZK>& orderedHoles);

} // namespace xklink
