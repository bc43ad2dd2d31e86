#include "SheetFrame.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

std::vector<double> Frame::DistanceTicks() const {
  std::vector<double> ticks;
  const double first = std::ceil(sLeft / tickS - 1e-9);
  const double last = std::floor(SRight() / tickS + 1e-9);
  for (double i = first; i <= last; i += 1.0) {
    ticks.push_back(i * tickS);
  }
  return ticks;
}

std::vector<double> Frame::ElevationTicks() const {
  std::vector<double> ticks;
  const double first = std::ceil(zBottom / tickZ - 1e-9);
  const double last = std::floor(zTop / tickZ + 1e-9);
  for (double i = first; i <= last; i += 1.0) {
    ticks.push_back(i * tickZ);
  }
  return ticks;
}

Frame ChooseFrame(const Extent& given, const FrameRequest& request, double left, double top) {
  Extent extent = given;
  const bool usable = !extent.empty && std::isfinite(extent.sMax - extent.sMin) &&
                      std::isfinite(extent.zMax - extent.zMin);
  if (!usable) {
    extent = Extent{};
    extent.Add(0.0, 0.0);
    extent.Add(100.0, 10.0);
  }
  const double height = extent.zMax > extent.zMin ? extent.zMax - extent.zMin : 1.0;
  const double length = extent.sMax > extent.sMin ? extent.sMax - extent.sMin : height;
  Frame frame;
  frame.left = left;
  frame.top = top;
  // An exaggeration beyond these bounds would squash the section into a line or overflow the
  // coordinates; the sheet states the value that it actually draws.
  const bool asked = std::isfinite(request.exaggeration) && request.exaggeration > 0.0;
  frame.exaggeration =
      asked ? std::clamp(request.exaggeration, 0.01, 1000.0) : ChooseExaggeration(length, height);
  const bool fixed = std::isfinite(request.scale) && request.scale > 0.0;
  frame.scale = fixed ? request.scale : (request.plotWidth - 2.0 * request.padding) / length;
  for (int attempt = 0; attempt < 4; ++attempt) {
    const double v = frame.scale * frame.exaggeration;
    frame.tickZ = NiceStep(44.0 / v);
    // The frame ends at half steps: whole steps could leave almost a step of empty sheet.
    const double half = 0.5 * frame.tickZ;
    frame.zTop = std::ceil((extent.zMax + 10.0 / v) / half) * half;
    frame.zBottom = std::floor((extent.zMin - 14.0 / v) / half) * half;
    frame.height = (frame.zTop - frame.zBottom) * v;
    if (fixed || frame.height <= request.maxPlotHeight * 1.02 || attempt == 3) {
      break;
    }
    // Too tall for the page at this exaggeration: shrink both scales together.
    frame.scale *= request.maxPlotHeight / frame.height;
  }
  frame.width = fixed ? request.plotWidth
                      : std::min(request.plotWidth, length * frame.scale + 2.0 * request.padding);
  frame.tickS = NiceStep(90.0 / frame.scale);
  frame.sLeft = extent.sMin - request.padding / frame.scale;
  return frame;
}

} // namespace xklink::drawing
