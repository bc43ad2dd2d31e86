// xklink lines: the section lines of every consecutive pair of holes.
#include "Commands.h"
#include "CommonOptions.h"
#include "Emit.h"
#include "GisOutput.h"
#include "JsonOutput.h"
#include "LinesOutput.h"
#include "OutputFile.h"
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
    std::string crs;
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
  command->add_option("-o,--output", options->output,
                      "Write to this file instead of stdout (a .gpkg file: GeoPackage of the holes "
                      "and lines on the file's grid)");
  command->add_option("--crs", options->crs,
                      "Grid of the coordinates as EPSG:NNNN, for GeoJSON (written as WGS 84 "
                      "longitude, latitude) and GeoPackage (default: the grid the file names, AGS "
                      "LOCA_GREF)");
  command->add_option("-j,--jobs", options->jobs,
                      "Pairs correlated at once (default 0: one per core)");
  command->footer("Examples:\n"
                  "  xklink lines examples/overview.json\n"
                  "  xklink lines site.ags --holes BH01,BH02,BH03 --format csv\n"
                  "  xklink lines site.ags --format geojson -o lines.geojson\n"
                  "  xklink lines site.csv --crs EPSG:27700 -o lines.gpkg");
  command->callback([options] {
    RequireOutputIsNotAnInput(options->output, {options->input.file, options->input.collars});
    const bool geoPackage = IsGeoPackagePath(options->output);
    const int grid =
        geoPackage || options->format == "geojson" ? ResolveGrid(options->input, options->crs) : 0;
    const SectionHoles section =
        LoadSection(options->input, options->holes, DefaultHoles::AlongSection, std::cerr);
    std::vector<PairResult> results =
        CorrelateConsecutivePairs(section.holes, options->jobs, false);
    std::vector<PairLines> pairs;
    for (std::size_t i = 0; i < results.size(); ++i) {
      pairs.push_back({section.names[i], section.names[i + 1], std::move(results[i].lines)});
    }
    if (geoPackage) {
      WriteFileAtomically(options->output, LinesToGeoPackage(section, pairs, grid));
      return;
    }
    if (options->format == "geojson") {
      LinesToWgs84(pairs, grid);
    }
    const std::string text = options->format == "csv"       ? LinesToCsv(pairs)
                             : options->format == "geojson" ? LinesToGeoJson(pairs)
                                                            : LinesToJson(pairs);
    Emit(text, options->output);
  });
}

} // namespace xklink
