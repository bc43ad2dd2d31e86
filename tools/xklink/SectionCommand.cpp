// xklink section: the drawn cross-section, as SVG, DXF, an interactive page or the laid-out section
// as JSON.
#include "Beneath.h"
#include "Colour.h"
#include "Commands.h"
#include "CommonOptions.h"
#include "Errors.h"
#include "LineFile.h"
#include "OutputFile.h"
#include "PairCorrelation.h"
#include "Section.h"
#include "SectionHtml.h"
#include "SectionLayout.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

namespace xklink {

namespace {

std::string LowerExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

struct Options {
  InputOptions input;
  std::string holes;
  std::string output;
  double exaggeration = 0.0;
  std::string legend;
  std::string title;
  std::string line;
  std::string lineFile;
  double buffer = -1.0;
  unsigned jobs = 0;
};

std::optional<drawing::Alignment> GivenLine(const Options& options) {
  if (!options.line.empty() && !options.lineFile.empty()) {
    throw UsageError("--line and --line-file: give the section line one way, not both");
  }
  std::vector<drawing::PlanPoint> vertices;
  if (!options.line.empty()) {
    try {
      vertices = drawing::ParseVertexList(options.line);
    } catch (const std::invalid_argument& e) {
      throw UsageError(std::string("--line: ") + e.what());
    }
  } else if (!options.lineFile.empty()) {
    vertices = ReadLineFile(options.lineFile);
  } else {
    return std::nullopt;
  }
  try {
    return drawing::Alignment(vertices, drawing::AlignmentKind::Given);
  } catch (const std::invalid_argument& e) {
    throw UsageError(std::string(options.line.empty() ? "--line-file" : "--line") + ": " +
                     e.what());
  }
}

// The holes of the section: those named, or every usable hole of the file (as the hole policy
// chooses them); with a line and a buffer, of those only the ones within the buffer of the line.
SectionHoles ChooseSectionHoles(const Options& options,
                                const std::optional<drawing::Alignment>& given) {
  SectionHoles holes =
      LoadSection(options.input, options.holes, DefaultHoles::AlongSection, std::cerr);
  if (!given || options.buffer < 0.0 || !options.holes.empty()) {
    return holes;
  }
  SectionHoles near;
  near.depthBelowGround = holes.depthBelowGround;
  near.codeDescriptions = holes.codeDescriptions;
  near.inSitu = std::move(holes.inSitu);
  for (std::size_t i = 0; i < holes.holes.size(); ++i) {
    const DataType::_sZK& hole = holes.holes[i];
    if (std::fabs(given->Project({hole.dX, hole.dY}).offset) <= options.buffer) {
      near.names.push_back(holes.names[i]);
      near.holes.push_back(hole);
    }
  }
  if (near.holes.size() < 2) {
    throw UsageError("--buffer: " + std::to_string(near.holes.size()) + " hole(s) of " +
                     options.input.file + " lie within " + drawing::FormatFixed(options.buffer, 1) +
                     " m of the section line; a section needs at least two");
  }
  return near;
}

Section BuildSection(const Options& options, bool& depthBelowGround,
                     std::map<std::string, std::string>& codeDescriptions) {
  const std::optional<drawing::Alignment> given = GivenLine(options);
  if (options.buffer >= 0.0 && !given) {
    throw UsageError("--buffer: the holes near a line need the line: give --line or --line-file");
  }
  const SectionHoles holes = ChooseSectionHoles(options, given);
  depthBelowGround = holes.depthBelowGround;
  codeDescriptions = holes.codeDescriptions;
  const drawing::Alignment line = given ? *given
                                  : options.holes.empty()
                                      ? drawing::BestFitLine(PlanPositions(holes.holes))
                                      : drawing::FenceLine(PlanPositions(holes.holes));
  Section section;
  section.title = options.title;
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
  std::vector<DataType::_sZK> zks;
  for (const SectionHole& hole : section.holes) {
    zks.push_back(hole.zk);
  }
  std::vector<PairResult> results(pairs.size());
  ForEachPair(pairs.size(), options.jobs,
              [&](XKLinkDc::CorrelationContext& context, std::size_t i) {
                results[i] = {};
                context.LinkDcTreeAndLines(zks[pairs[i].first], zks[pairs[i].second],
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

} // namespace

void AddSectionCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "section", "Draw the cross-section through the holes as SVG or DXF, or lay it out as JSON");
  AddInputOptions(*command, options->input);
  command
      ->add_option("-o,--output", options->output,
                   "File to write: NAME.svg, NAME.dxf, NAME.html (to explore in a browser) or "
                   "NAME.json (the laid-out section)")
      ->required();
  command->add_option("--holes", options->holes,
                      "Holes of the section, as A,B,C: without a line, a fence through them in "
                      "that order (default: every hole, on their best-fit line)");
  command->add_option("--line", options->line,
                      "Section line as E1,N1,E2,N2[,...]: chainage along it, holes projected "
                      "square onto it");
  command->add_option("--line-file", options->lineFile,
                      "Section line from a GeoJSON LineString or a CSV of easting,northing");
  command
      ->add_option("--buffer", options->buffer,
                   "Take the holes within this many metres of the line (default: every hole)")
      ->check(CLI::NonNegativeNumber);
  // The bounds the drawing holds to: beyond them a section is squashed into a line or its
  // coordinates overflow. A value outside is refused rather than quietly drawn as another.
  command
      ->add_option("--exaggeration", options->exaggeration,
                   "Vertical exaggeration, 0.01 to 1000 (default 0: chosen so the section is "
                   "legible)")
      ->check(CLI::Validator(
          [](std::string& text) {
            double value = 0.0;
            if (CLI::detail::lexical_cast(text, value) &&
                (value == 0.0 || (value >= 0.01 && value <= 1000.0))) {
              return std::string();
            }
            return "must be from 0.01 to 1000, or 0 to have it chosen; not " + text;
          },
          "0.01..1000"));
  command->add_option("--legend", options->legend,
                      "CSV of code,colour,label lines giving the colours and descriptions");
  command->add_option("--title", options->title, "Title of the sheet");
  command->add_option("-j,--jobs", options->jobs,
                      "Pairs correlated at once (default 0: one per core)");
  command->footer("Examples:\n"
                  "  xklink section examples/nle-battersea/21-7-10-NLE.ags -o section.svg\n"
                  "  xklink section site.ags -o section.html   (to explore in a browser)\n"
                  "  xklink section site.ags --holes BH01,BH02,BH03 --exaggeration 10 "
                  "--legend legend.csv -o a-a.dxf\n"
                  "  xklink section site.ags --line 427700,431150,430450,431800 --buffer 50 "
                  "-o a-a.json");
  command->callback([options] {
    RequireOutputIsNotAnInput(options->output, {options->input.file, options->input.collars,
                                                options->legend, options->lineFile});
    const std::string extension = LowerExtension(options->output);
    if (extension != ".svg" && extension != ".dxf" && extension != ".html" &&
        extension != ".json") {
      throw UsageError("--output: the drawing must be named .svg, .dxf, .html or .json, not '" +
                       options->output + "'");
    }
    // The legend is read before the correlation: a bad legend line should not cost a long run.
    const Legend legend = options->legend.empty() ? Legend{} : ReadLegendCsv(options->legend);
    bool depthBelowGround = false;
    std::map<std::string, std::string> codeDescriptions;
    options->input.inSitu = true; // water and tests are drawn beside the logs in every form
    const Section section = BuildSection(*options, depthBelowGround, codeDescriptions);
    DrawOptions draw;
    draw.exaggeration = options->exaggeration;
    draw.title = options->title;
    draw.depthBelowGround = depthBelowGround;
    const Legend colours = drawing::SectionLegend(legend, section, codeDescriptions);
    const std::string drawing = extension == ".svg"    ? RenderSvg(section, colours, draw)
                                : extension == ".dxf"  ? RenderDxf(section, colours, draw)
                                : extension == ".html" ? RenderSectionHtml(section, colours, draw)
                                                       : RenderSectionJson(section, colours, draw);
    WriteFileAtomically(options->output, drawing);
  });
}

} // namespace xklink
