// xklink lines: the section lines of every consecutive pair of holes.
#include "Commands.h"
#include "CommonOptions.h"
#include "Emit.h"
#include "JsonOutput.h"
#include "LinesOutput.h"
#include "PairCorrelation.h"

#include <iostream>
#include <memory>

namespace xklink {

void AddLinesCommand(CLI::App& app) {
  struct Options {
    InputOptions input;
    std::string holes;
    std::string format = "json";
    std::string output;
    unsigned jobs = 0;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "lines", "Print the section lines between consecutive holes (JSON, CSV or GeoJSON)");
  AddInputOptions(*command, options->input);
  command->add_option("--holes", options->holes,
                      "Holes of the section in order, as A,B,C (default: every hole, ordered "
                      "along the section's principal direction)");
  command->add_option("--format", options->format, "Output format")
      ->check(CLI::IsMember({"json", "csv", "geojson"}));
  command->add_option("-o,--output", options->output, "Write to this file instead of stdout");
  command->add_option("-j,--jobs", options->jobs,
                      "Pairs correlated at once (default 0: one per core)");
  command->footer("Examples:\n"
                  "  xklink lines examples/overview.json\n"
                  "  xklink lines site.ags --holes BH01,BH02,BH03 --format csv\n"
                  "  xklink lines site.ags --format geojson -o lines.geojson");
  command->callback([options] {
    const SectionHoles section =
        LoadSection(options->input, options->holes, DefaultHoles::AlongSection, std::cerr);
    std::vector<PairResult> results = CorrelateConsecutivePairs(section.holes, options->jobs, false);
    std::vector<PairLines> pairs;
    for (std::size_t i = 0; i < results.size(); ++i) {
      pairs.push_back({section.names[i], section.names[i + 1], std::move(results[i].lines)});
    }
    const std::string text = options->format == "csv"       ? LinesToCsv(pairs)
                             : options->format == "geojson" ? LinesToGeoJson(pairs)
                                                            : LinesToJson(pairs);
    Emit(text, options->output);
  });
}

} // namespace xklink
