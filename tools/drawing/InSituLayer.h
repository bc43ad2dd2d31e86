// Groundwater and standard penetration tests beside the logs of the section.
//
// Each hole's marks stand on the side of its column away from its strata codes (the first hole's
// codes are on its left, the others' on their right), so that a code and an N value never compete
// for the same place:
//   - a water strike is an open inverted triangle with its point at the depth struck, and the
//     level the water rose to a filled one, joined by a dashed line: the rise is what tells
//     confined water from perched; the date struck and the minutes to the last reading are
//     written beside them where there is room;
//   - monitoring readings are the conventional triangle over two short bars, at the highest and the
//     lowest level read (the design cares for the highest, the seasons show in the range);
//   - each SPT is a tick on the column at the top of the test and its result beside it ("N=17",
//     or a refusal as the log writes it), where it is clear of everything drawn so far; a result
//     that would cover another is left to the tick, and the interactive page and section.json
//     keep every one.
#pragma once

#include "SheetCanvas.h"
#include "SheetFrame.h"

#include <cstddef>
#include <string>
#include <vector>

namespace xklink::drawing {

// Draws the marks of the holes (indices into section.holes, by chainage).
void DrawInSitu(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                const Frame& frame);

// A key to the marks, as a small panel of the given width below whatever ends at `top` on the
// sheet, at `left`; only the marks the sheet shows are explained. Returns its bottom (`top` when
// there is nothing to explain).
double DrawInSituKey(Canvas& canvas, const Section& section, const std::vector<std::size_t>& holes,
                     double left, double top, double width);

// A time as the logs write it ("2000-02-16T10:30:00") shortened for a label: the date, and the
// time of day unless it is midnight, which the logs write when only the day was recorded.
std::string ShortTime(const std::string& time);

} // namespace xklink::drawing
