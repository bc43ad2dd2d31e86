// The plot of a sheet: its box, the chainages and elevations it shows, the scales that map them
// onto the sheet and the round steps of its axes.
#pragma once

#include "SectionGeometry.h"

#include <vector>

namespace xklink::drawing {

struct Frame {
  double exaggeration = 1.0;
  double scale = 1.0; // sheet units per metre of chainage
  double left = 0.0;  // the plot box on the sheet
  double top = 0.0;
  double width = 0.0;
  double height = 0.0;
  double sLeft = 0.0; // chainage at the left edge of the plot
  double zTop = 0.0;  // elevation at its top edge
  double zBottom = 0.0;
  double tickS = 1.0;
  double tickZ = 1.0;

  double X(double s) const { return left + (s - sLeft) * scale; }
  double Y(double z) const { return top + (zTop - z) * scale * exaggeration; }
  double Right() const { return left + width; }
  double Bottom() const { return top + height; }
  double SRight() const { return sLeft + width / scale; }
  std::vector<double> DistanceTicks() const;
  std::vector<double> ElevationTicks() const;
};

struct FrameRequest {
  double plotWidth = 1000.0;    // the widest the plot may be, sheet units
  double maxPlotHeight = 600.0; // the highest; both scales shrink together to keep within it
  double padding = 0.0;         // room beside the outer holes, sheet units
  double exaggeration = 0.0;    // 0: chosen for the proportions of the section
  double scale = 0.0;           // fixed sheet units per metre (a print scale), 0: fit the width
};

// The frame of a section of `extent`, its top left at (left, top).
Frame ChooseFrame(const Extent& extent, const FrameRequest& request, double left, double top);

} // namespace xklink::drawing
