// The section as one self-contained web page, to explore on screen: the sheet itself, as the SVG
// output draws it, with what a reader asks of a section. Drag and the wheel pan and zoom; pointing
// at a region tells its unit, code and description as logged; clicking a hole opens its log
// (depths, codes, descriptions, water, SPT); the labels, water, tests and section lines are layers
// that switch on and off. The page fetches nothing: the drawing, its style, its script and the
// logs all travel inside it, so that it opens from a mail attachment or an archive alike.
#pragma once

#include "Section.h"

#include <string>

namespace xklink {

// The page (UTF-8 HTML5).
std::string RenderSectionHtml(const Section& section, const Legend& legend,
                              const DrawOptions& options);

} // namespace xklink
