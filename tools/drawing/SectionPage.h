// The fixed parts of the interactive page (SectionHtml.h): its layout, style and script. The
// script finds the section's data in the element "section-data" and the drawing in "sheet".
#pragma once

#include <string_view>

namespace xklink::drawing {

// Everything up to the drawing; the page title goes where "@TITLE@" stands (escaped).
std::string_view SectionPageHead();
// From the end of the drawing to the opening of the data.
std::string_view SectionPageMiddle();
// Everything after the data: its closing tag, the script and the end of the page.
std::string_view SectionPageTail();

} // namespace xklink::drawing
