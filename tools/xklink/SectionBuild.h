// From the chosen holes to the correlated section, and from the section to the file that draws
// it: the steps the `section` command and the Python module share.
#pragma once

#include "Alignment.h"
#include "Input.h"
#include "Section.h"

#include <optional>
#include <string>

namespace xklink {

// The holes of `holes` within `buffer` metres of the line, in their order; UsageError naming
// `file` when fewer than two are.
SectionHoles HolesNearLine(SectionHoles holes, const drawing::Alignment& line, double buffer,
                           const std::string& file);

// The section of the holes: along the given line; without one, through the holes in their order
// (a fence) or along their best-fit line. The holes are placed on the line by chainage, each
// neighbouring pair is correlated and, beneath a hole shallower than its neighbours, the deeper
// holes on either side are correlated across it. `jobs` pairs at once (0: one per core).
Section CorrelateSection(const SectionHoles& holes, const std::optional<drawing::Alignment>& given,
                         bool fence, unsigned jobs);

// The lower-case extension of `path`, with its dot (".svg").
std::string LowerExtension(const std::string& path);

// The drawing of the whole section on one sheet, in the format of `extension`: .svg, .dxf,
// .pdf, .png (at `dpi`), .html (the page to explore) or .json (the laid-out section). UsageError
// for any other.
std::string RenderDrawing(const Section& section, const Legend& legend, const DrawOptions& draw,
                          const std::string& extension, double dpi);

} // namespace xklink
