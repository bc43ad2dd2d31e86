#include "HoleHeaders.h"

#include "TextMetrics.h"

#include <algorithm>
#include <cmath>

namespace xklink::drawing {

namespace {

constexpr double kNameSize = 12.5;
constexpr double kDetailSize = 10.0;
constexpr double kLineStep = 13.0; // between the lines of a block
constexpr double kGap = 6.0;       // between blocks, and below the band
constexpr Rgb kLeader{0x8c, 0x8c, 0x8c};

double Size(std::size_t line) {
  return line == 0 ? kNameSize : kDetailSize;
}

// The block's extent across the sheet and up it (level or upright).
double BlockWidth(const HoleHeader& h) {
  if (h.upright) {
    return kLineStep * static_cast<double>(h.lines.size());
  }
  double widest = 0.0;
  for (std::size_t i = 0; i < h.lines.size(); ++i) {
    widest = std::max(widest, TextWidth(h.lines[i], Size(i), i == 0));
  }
  return widest;
}

double BlockHeight(const HoleHeader& h) {
  if (!h.upright) {
    return kLineStep * static_cast<double>(h.lines.size()) + 2.0;
  }
  double longest = 0.0;
  for (std::size_t i = 0; i < h.lines.size(); ++i) {
    longest = std::max(longest, TextWidth(h.lines[i], Size(i), i == 0));
  }
  return longest + 4.0;
}

std::string OffsetText(double offset) {
  if (std::fabs(offset) < 0.05) {
    return "on line";
  }
  return FormatFixed(std::fabs(offset), std::fabs(offset) < 10.0 ? 1 : 0) + " m " +
         (offset > 0.0 ? "R" : "L");
}

// Spreads the blocks of one tier along [minX, maxX] so that none overlaps the next, each as near
// its hole as the others allow: runs of touching blocks move as one, centred on their holes (the
// least squares of the shifts). False when the tier cannot hold its blocks.
bool Spread(std::vector<HoleHeader*>& tier, double minX, double maxX) {
  double total = 0.0;
  for (const HoleHeader* h : tier) {
    total += BlockWidth(*h) + kGap;
  }
  if (total > maxX - minX) {
    return false;
  }
  struct Run {
    std::size_t first;
    std::size_t count;
    double width;  // of the blocks side by side
    double offset; // sum of (hole x - block's distance from the run's left edge to its centre)
    double left;
  };
  std::vector<Run> runs;
  for (std::size_t i = 0; i < tier.size(); ++i) {
    const double w = BlockWidth(*tier[i]) + kGap;
    Run run{i, 1, w, tier[i]->x - 0.5 * w, 0.0};
    run.left = run.offset;
    // Merge with the runs before while they overlap: the merged run sits at the mean position.
    while (!runs.empty() && runs.back().left + runs.back().width > run.left) {
      Run prev = runs.back();
      runs.pop_back();
      prev.offset += run.offset - prev.width * static_cast<double>(run.count);
      prev.count += run.count;
      prev.width += run.width;
      prev.left = prev.offset / static_cast<double>(prev.count);
      run = prev;
    }
    runs.push_back(run);
  }
  // Keep within the band, pushing runs back from either end.
  double limit = maxX;
  for (auto it = runs.rbegin(); it != runs.rend(); ++it) {
    it->left = std::min(it->left, limit - it->width);
    limit = it->left;
  }
  limit = minX;
  for (Run& run : runs) {
    run.left = std::max(run.left, limit);
    limit = run.left + run.width;
  }
  for (const Run& run : runs) {
    double x = run.left;
    for (std::size_t k = run.first; k < run.first + run.count; ++k) {
      const double w = BlockWidth(*tier[k]) + kGap;
      tier[k]->centre = x + 0.5 * w;
      x += w;
    }
  }
  return true;
}

// The holes taken in turn into `tiers` tiers, each tier spread on its own.
bool Place(std::vector<HoleHeader>& headers, double minX, double maxX, bool upright, int tiers) {
  std::vector<std::vector<HoleHeader*>> byTier(static_cast<std::size_t>(tiers));
  for (std::size_t i = 0; i < headers.size(); ++i) {
    headers[i].upright = upright;
    headers[i].centre = headers[i].x; // where it stays if no arrangement fits
    headers[i].tier = static_cast<int>(i % static_cast<std::size_t>(tiers));
    byTier[static_cast<std::size_t>(headers[i].tier)].push_back(&headers[i]);
  }
  return std::all_of(byTier.begin(), byTier.end(),
                     [&](std::vector<HoleHeader*>& tier) { return Spread(tier, minX, maxX); });
}

} // namespace

std::string HoleName(const SectionHole& hole) {
  if (!hole.name.empty()) {
    return SanitizeUtf8(hole.name);
  }
  return WideToUtf8(hole.zk.strName);
}

HeaderBand PlaceHoleHeaders(const Section& section, const std::vector<std::size_t>& holes,
                            const Frame& frame, double minX, double maxX, bool groundLevels) {
  HeaderBand band;
  const bool showOffsets = section.alignment && section.alignment->Kind() != AlignmentKind::Fence;
  for (const std::size_t i : holes) {
    const SectionHole& hole = section.holes[i];
    HoleHeader h;
    h.hole = i;
    h.x = frame.X(hole.chainage);
    h.lines = {HoleName(hole)};
    if (groundLevels) {
      h.lines.push_back("GL " + Signed(hole.zk.dTopGC, 2));
    }
    if (showOffsets) {
      h.lines.push_back(OffsetText(hole.offset));
    }
    band.headers.push_back(std::move(h));
  }
  // Level names read best, in one row; then upright, in one row, then in more; names alone,
  // upright, fit the most. The first arrangement that fits is taken.
  struct Arrangement {
    bool upright;
    bool detail;
    int tiers;
  };
  static constexpr Arrangement kArrangements[] = {
      {false, true, 1}, {true, true, 1},  {false, true, 2}, {true, true, 2},  {true, false, 1},
      {true, false, 2}, {true, false, 3}, {true, false, 4}, {true, false, 6}, {true, false, 8}};
  const std::vector<HoleHeader> full = band.headers;
  for (const Arrangement& a : kArrangements) {
    band.headers = full;
    if (!a.detail) {
      for (HoleHeader& h : band.headers) {
        h.lines.resize(1);
      }
    }
    if (Place(band.headers, minX, maxX, a.upright, a.tiers)) {
      break;
    }
  }
  int tiers = 0;
  for (const HoleHeader& h : band.headers) {
    tiers = std::max(tiers, h.tier + 1);
  }
  double tierHeight = 0.0;
  for (const HoleHeader& h : band.headers) {
    tierHeight = std::max(tierHeight, BlockHeight(h) + kGap);
  }
  band.height = tiers * tierHeight + kGap;
  return band;
}

void DrawHoleHeaders(Canvas& canvas, const Section& section, const HeaderBand& band,
                     const Frame& frame) {
  double tierHeight = 0.0;
  for (const HoleHeader& h : band.headers) {
    tierHeight = std::max(tierHeight, BlockHeight(h) + kGap);
  }
  for (const HoleHeader& h : band.headers) {
    const double bottom = frame.top - kGap - h.tier * tierHeight; // of the block's tier
    const double blockTop = bottom - BlockHeight(h);
    const double collar = frame.Y(section.holes[h.hole].zk.dTopGC);
    // The leader: from under the block straight down to the collar, bent over where the block
    // had to move in from the sheet's edge.
    Path leader{Layer::BoreholeLabels,
                {},
                {{h.centre, bottom}, {h.x, frame.top}, {h.x, collar}},
                false,
                std::nullopt,
                kLeader,
                0.6};
    canvas.Add(std::move(leader));
    for (std::size_t i = 0; i < h.lines.size(); ++i) {
      Text t = canvas.MakeText(Layer::BoreholeLabels, {}, h.lines[i], Size(i), Anchor::Middle,
                               i == 0, i == 0 ? kInk : kMuted);
      if (h.upright) {
        // Read from below, as a drawing's upright text is; the lines stand side by side.
        const double n = static_cast<double>(h.lines.size());
        t.at = {h.centre - 0.5 * kLineStep * (n - 1.0) + kLineStep * static_cast<double>(i) +
                    0.35 * Size(i),
                0.5 * (blockTop + bottom)};
        t.rotation = 90.0;
      } else {
        t.at = {h.centre, blockTop + kLineStep * static_cast<double>(i + 1) - 2.0};
      }
      canvas.AddText(std::move(t));
    }
  }
}

} // namespace xklink::drawing
