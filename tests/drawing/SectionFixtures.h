// Sections for the drawing tests, correlated by the library itself from hand-made and real
// borehole logs.
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

// Holes in the order given, chainages the running plan distance, neighbours correlated with
// LinkDc and LinkDcLine.
Section CorrelatedSection(const std::string& title,
                          const std::vector<std::pair<std::string, DataType::_sZK>>& holes);

// BH01 to BH05 of the Northern Line Extension at Battersea, read from the real file (tests/data/
// real): made ground, alluvium and river terrace gravel over London Clay, with the Lambeth Group
// below and a hard band (HAR) at the base of the clay in BH01 and BH03. Logs as the file gives
// them, repeated codes unmerged.
Section NleSection();

// W (0, 0) holds CLAY 10..0; E (30, 40), chainage 50, holds CLAY, a SAND lens 6..4, CLAY.
Section LensOfSecondHole();

// Two holes of four codes that the file formats must take care with: characters XML escapes, two
// codes that look alike once the characters a DXF layer name refuses are replaced, letters beyond
// ASCII; the title and hole names with such characters too.
Section AwkwardCodes();

} // namespace xklink::testing
