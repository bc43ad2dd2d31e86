// Sections for the drawing tests, correlated by the library itself from hand-made borehole logs.
#pragma once

#include "Section.h"

#include <string>
#include <utility>
#include <vector>

namespace xklink::testing {

struct Stratum {
  std::wstring code;
  double top;
  double bottom;
};

// A borehole at (x, y) whose collar is the top of its first stratum.
DataType::_sZK MakeHole(const std::wstring& name, double x, double y,
                        const std::vector<Stratum>& strata);

// Holes in the order given, chainages the running plan distance, each neighbouring pair
// correlated with LinkDc and LinkDcLine.
Section CorrelatedSection(const std::string& title,
                          const std::vector<std::pair<std::string, DataType::_sZK>>& holes);

// Five boreholes in London ground along a line running north-east: made ground, alluvium with a
// peat lens, river terrace gravel, London Clay with a claystone band, and the Lambeth Group met by
// the last two holes only.
Section LondonSection();

// Number of section lines over all pairs.
std::size_t LineCount(const Section& section);

// Number of leaf regions over all pairs, by the leaf test of the section lines.
std::size_t LeafCount(const Section& section);

} // namespace xklink::testing
