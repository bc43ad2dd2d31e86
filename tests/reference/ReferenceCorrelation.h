// A plain, step-by-step second implementation of the borehole correlation (region tree) and of the
// section lines, written for comparison with the library: every step is done in the documented
// order with the simplest data structures (quadratic scans, insertion sorts, copies), so that a
// faster library can be checked against it bit for bit on many inputs.
//
// The reference shares nothing with the library except the record types of the public header: its
// own tolerance comparison, its own correlation state (one per call, no module-wide state) and its
// own point arithmetic. It is slow on purpose and re-entrant.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <vector>

namespace reference {

// Correlates two boreholes into the region tree below root (same contract as LinkDc). A borehole
// without strata is a hole of zero depth: every boundary on it lies at its collar elevation.
void ReferenceLinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                     DataType::_sLinkRegion& root);

// Appends the section lines of two boreholes to lines, merges coinciding lines, sorts them from
// the highest down and removes the highest (same contract as LinkDcLine).
void ReferenceLinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                         std::vector<DataType::_sLinkLine>& lines);

// The steps of ReferenceLinkDcLine, for tests that need the list before the highest line goes.

// Appends the raw top and bottom line of every leaf region of a built tree (pre-order) to lines.
void ReferenceAppendLeafLines(const DataType::_sLinkRegion& root,
                              std::vector<DataType::_sLinkLine>& lines);
// Merges coinciding lines (a bottom boundary takes over a top boundary and both names), then clears
// every bBottom.
void ReferenceMergeSameLines(std::vector<DataType::_sLinkLine>& lines);
// The ordering predicate: true when a is drawn above b.
bool ReferenceIsLineAbove(const DataType::_sLinkLine& a, const DataType::_sLinkLine& b);
// std::sort by ReferenceIsLineAbove, kept inside the vector although the predicate is not a
// strict weak ordering for every mix of lines.
void ReferenceSortLines(std::vector<DataType::_sLinkLine>& lines);

} // namespace reference
