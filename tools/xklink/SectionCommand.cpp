// xklink section: the drawn cross-section, as SVG or DXF.
#include "Commands.h"
#include "CommonOptions.h"
#include "Errors.h"
#include "OutputFile.h"
#include "PairCorrelation.h"
#include "SectionLayout.h"

#include "Colour.h"
#include "Section.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>

namespace xklink {

namespace {

std::string LowerExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

} // namespace

void AddSectionCommand(CLI::App& app) {
  struct Options {
    InputOptions input;
    std::string holes;
    std::string output;
    double exaggeration = 0.0;
    std::string legend;
    std::string title;
    unsigned jobs = 0;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("section", "Draw the cross-section through the holes as SVG or DXF");
  AddInputOptions(*command, options->input);
  command->add_option("-o,--output", options->output, "Drawing to write: NAME.svg or NAME.dxf")
      ->required();
  command->add_option("--holes", options->holes,
                      "Holes of the section in order, as A,B,C (default: every hole, ordered "
                      "along the section's principal direction)");
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
                  "  xklink section site.ags --holes BH01,BH02,BH03 --exaggeration 10 "
                  "--legend legend.csv -o a-a.dxf");
  command->callback([options] {
    RequireOutputIsNotAnInput(options->output,
                              {options->input.file, options->input.collars, options->legend});
    const std::string extension = LowerExtension(options->output);
    if (extension != ".svg" && extension != ".dxf") {
      throw UsageError("--output: the drawing must be named .svg or .dxf, not '" +
                       options->output + "'");
    }
    // The legend is read before the correlation: a bad legend line should not cost a long run.
    const Legend legend = options->legend.empty() ? Legend{} : ReadLegendCsv(options->legend);
    const SectionHoles holes =
        LoadSection(options->input, options->holes, DefaultHoles::AlongSection, std::cerr);
    std::vector<PairResult> results = CorrelateConsecutivePairs(holes.holes, options->jobs, true);
    const std::vector<double> chainage = Chainages(holes.holes);

    Section section;
    section.title = options->title;
    for (std::size_t i = 0; i < holes.holes.size(); ++i) {
      section.holes.push_back({holes.names[i], chainage[i], holes.holes[i]});
    }
    for (std::size_t i = 0; i < results.size(); ++i) {
      SectionPair pair;
      pair.from = i;
      pair.to = i + 1;
      pair.root = std::move(results[i].root);
      pair.lines = std::move(results[i].lines);
      section.pairs.push_back(std::move(pair));
    }
    DrawOptions draw;
    draw.exaggeration = options->exaggeration;
    draw.title = options->title;
    draw.depthBelowGround = holes.depthBelowGround;
    const Legend colours = drawing::SectionLegend(legend, section, holes.codeDescriptions);
    const std::string drawing = extension == ".svg" ? RenderSvg(section, colours, draw)
                                                    : RenderDxf(section, colours, draw);
    WriteFileAtomically(options->output, drawing);
  });
}

} // namespace xklink
