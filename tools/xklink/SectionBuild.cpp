#include "SectionBuild.h"

#include "Beneath.h"
#include "Errors.h"
#include "PairCorrelation.h"
#include "SectionHtml.h"
#include "SectionLayout.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

namespace xklink {

SectionHoles HolesNearLine(SectionHoles holes, const drawing::Alignment& line, double buffer,
                           const std::string& file) {
  SectionHoles near;
  near.depthBelowGround = holes.depthBelowGround;
  near.codeDescriptions = std::move(holes.codeDescriptions);
  near.inSitu = std::move(holes.inSitu);
  for (std::size_t i = 0; i < holes.holes.size(); ++i) {
    const DataType::_sZK& hole = holes.holes[i];
    if (std::fabs(line.Project({hole.dX, hole.dY}).offset) <= buffer) {
      near.names.push_back(holes.names[i]);
      near.holes.push_back(hole);
    }
  }
  if (near.holes.size() < 2) {
    throw UsageError("--buffer: " + std::to_string(near.holes.size()) + " hole(s) of " + file +
                     " lie within " + drawing::FormatFixed(buffer, 1) +
                     " m of the section line; a section needs at least two");
  }
  return near;
}

Section CorrelateSection(const SectionHoles& holes, const std::optional<drawing::Alignment>& given,
                         bool fence, unsigned jobs) {
  const drawing::Alignment line = given   ? *given
                                  : fence ? drawing::FenceLine(PlanPositions(holes.holes))
                                          : drawing::BestFitLine(PlanPositions(holes.holes));
  Section section;
  section.alignment = line;
  section.holes = PlaceOnLine(line, holes.names, holes.holes);
  for (SectionHole& hole : section.holes) {
    if (const auto found = holes.inSitu.find(hole.name); found != holes.inSitu.end()) {
      hole.inSitu = found->second;
    }
  }

  // Consecutive holes, then each pair of deeper holes across shallower ones.
  std::vector<std::pair<std::size_t, std::size_t>> pairs;
  for (std::size_t i = 0; i + 1 < section.holes.size(); ++i) {
    pairs.emplace_back(i, i + 1);
  }
  const std::size_t consecutive = pairs.size();
  for (const drawing::BeneathSpan& span : drawing::SpansBeneathShallowHoles(section.holes)) {
    pairs.emplace_back(span.from, span.to);
  }
  std::vector<PairResult> results(pairs.size());
  ForEachPair(pairs.size(), jobs, [&](XKLinkDc::CorrelationContext& context, std::size_t i) {
    results[i] = {};
    context.LinkDcTreeAndLines(section.holes[pairs[i].first].zk, section.holes[pairs[i].second].zk,
                               results[i].root, results[i].lines);
  });
  for (std::size_t i = 0; i < results.size(); ++i) {
    SectionPair pair;
    pair.from = pairs[i].first;
    pair.to = pairs[i].second;
    pair.beneath = i >= consecutive;
    pair.root = std::move(results[i].root);
    pair.lines = std::move(results[i].lines);
    section.pairs.push_back(std::move(pair));
  }
  return section;
}

std::string LowerExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

std::string RenderDrawing(const Section& section, const Legend& legend, const DrawOptions& draw,
                          const std::string& extension, double dpi) {
  if (extension == ".svg") {
    return RenderSvg(section, legend, draw);
  }
  if (extension == ".dxf") {
    return RenderDxf(section, legend, draw);
  }
  if (extension == ".pdf") {
    return SvgToPdf({RenderSvg(section, legend, draw)});
  }
  if (extension == ".png") {
    return SvgToPng(RenderSvg(section, legend, draw), dpi);
  }
  if (extension == ".html") {
    return RenderSectionHtml(section, legend, draw);
  }
  if (extension == ".json") {
    return RenderSectionJson(section, legend, draw);
  }
  throw UsageError("the drawing must be named .svg, .pdf, .png, .dxf, .html or .json, not '" +
                   extension + "'");
}

} // namespace xklink
