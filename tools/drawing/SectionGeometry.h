// The geometry of a section: region corners and line ends mapped into the section plane, the
// leaf regions to fill, the extent of the data and the round numbers of its axes.
#pragma once

#include "Section.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace xklink::drawing {

// A point of the section plane: distance along the section and elevation.
struct SectionPoint {
  double s = 0.0;
  double z = 0.0;
};

// The section-plane image of a point of the pair (a, b): a's chainage plus the point's plan
// distance from a, as a fraction of the plan distance from a to b, times the chainage from a to
// b; the elevation is the point's z. The distance ignores the side on which the point lies, so a
// lens tip, stored in either corner slot, lands between the holes wherever the library put it.
// Nothing when a coordinate is not finite or the two holes stand at the same plan position.
std::optional<SectionPoint> MapToSection(const SectionHole& a, const SectionHole& b,
                                         const CXk3DPoint& p);

// Calls visit(leaf) for every region of the tree whose boundaries the section lines draw, in
// pre-order (a region before its children, so lenses come after their host), without recursion:
// trees of long logs nest deeply. The fills are the regions the lines bound, so that the two stay
// in step: a region with a name, without children, or whose children all come from closing.
void ForEachLeafRegion(const DataType::_sLinkRegion& root,
                       const std::function<void(const DataType::_sLinkRegion&)>& visit);

// One leaf region to fill, or the part of one that a shallow hole leaves to it (see Beneath.h).
struct RegionShape {
  std::size_t pair = 0;
  // The region's name or, for an unnamed leaf (only the root can be one), the single code of all
  // the strata it holds; empty when those strata carry different codes or there are none, as the
  // correlation then says nothing about what lies between the holes.
  std::wstring code;
  int kind = 0;
  bool beneath = false; // inferred below shallow holes: drawn with dashed boundaries
  // ptTop[0], ptTop[1], ptBot[1], ptBot[0] (a triangle for wedges and lenses), cut where a
  // shallow hole's base passes through it.
  std::vector<SectionPoint> polygon;
};

// The leaf regions of every pair in pre-order, pairs in the order of the section. Pairs whose hole
// indices are out of range or equal, regions with a corner that does not map, and the parts of
// regions that the shallow holes give to the other side of their bases (see Beneath.h) are left
// out.
std::vector<RegionShape> CollectRegionShapes(const Section& section);

// One section line in the section plane.
struct LineShape {
  std::size_t pair = 0;
  SectionPoint from;
  SectionPoint to;
  std::wstring upName;
  std::wstring downName;
  bool beneath = false;
};

// The lines of every pair, in order, cut at the bases of shallow holes as the regions are; lines
// with an end that does not map are left out.
std::vector<LineShape> CollectLineShapes(const Section& section);

// Whether a pair can be drawn: both indices name holes, different ones, at finite chainages.
bool IsDrawablePair(const Section& section, const SectionPair& pair);

// Whether a hole can be drawn: a finite chainage and collar.
bool IsDrawableHole(const SectionHole& hole);

struct Extent {
  double sMin = 0.0;
  double sMax = 0.0;
  double zMin = 0.0;
  double zMax = 0.0;
  bool empty = true;
  void Add(double s, double z);
};

// The box around the holes (collar down to the deepest stratum bottom, finite values only) and
// every mapped point.
Extent SectionExtent(const Section& section, const std::vector<RegionShape>& regions,
                     const std::vector<LineShape>& lines);

// The smallest of 1, 2, 2.5, 5 times a power of ten that is not less than `rough` (> 0).
double NiceStep(double rough);

// A round vertical exaggeration (1, 2, 2.5, 5 times a power of ten, at least 1) at which a section
// `length` long and `height` high is drawn about 0.45 times as high as it is long, the proportion
// of a section on a landscape report page.
double ChooseExaggeration(double length, double height);

// Decimals that show every multiple of `step` exactly (0 for 5, 1 for 2.5 or 0.5, 2 for 0.25).
int DecimalsFor(double step);

} // namespace xklink::drawing
