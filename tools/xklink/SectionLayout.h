// Where the holes of a section stand along it, and which of them it is drawn through.
#pragma once

#include "Alignment.h"
#include "Section.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cstddef>
#include <string>
#include <vector>

namespace xklink {

// The order of the holes along the section's principal direction: the plan positions projected on
// their best-fit line, running west to east, or south to north when the line runs due north.
// Holes with equal projections keep their file order.
std::vector<std::size_t> OrderAlongPrincipalDirection(const std::vector<DataType::_sZK>& holes);

// The plan positions of the holes.
std::vector<drawing::PlanPoint> PlanPositions(const std::vector<DataType::_sZK>& holes);

// The holes of a section placed on its line: each hole's chainage and offset, the holes ordered by
// chainage (holes of equal chainage keep their order). A fence keeps the order given, each hole
// at the length of the fence up to it.
std::vector<SectionHole> PlaceOnLine(const drawing::Alignment& line,
                                     const std::vector<std::string>& names,
                                     const std::vector<DataType::_sZK>& holes);

} // namespace xklink
