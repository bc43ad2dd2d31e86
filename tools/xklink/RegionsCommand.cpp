// xklink regions: the region tree of one pair of holes.
#include "Commands.h"
#include "CommonOptions.h"
#include "Emit.h"
#include "Errors.h"
#include "JsonOutput.h"
#include "OutputFile.h"

#include <iostream>
#include <memory>

namespace xklink {

void AddRegionsCommand(CLI::App& app) {
  struct Options {
    InputOptions input;
    std::string holes;
    std::string output;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "regions", "Print the region tree of the correlation of two holes as JSON");
  AddInputOptions(*command, options->input);
  command->add_option("--holes", options->holes,
                      "The two holes to correlate, as NAME1,NAME2 (default: the first two)");
  command->add_option("-o,--output", options->output, "Write to this file instead of stdout");
  command->footer("Examples:\n"
                  "  xklink regions examples/overview.json\n"
                  "  xklink regions site.ags --holes BH01,BH02 -o tree.json");
  command->callback([options] {
    RequireOutputIsNotAnInput(options->output, {options->input.file, options->input.collars});
    const SectionHoles section =
        LoadSection(options->input, options->holes, DefaultHoles::FirstTwo, std::cerr);
    if (section.holes.size() != 2) {
      throw UsageError("--holes: regions correlates exactly two holes");
    }
    DataType::_sLinkRegion root;
    XKLinkDc::CorrelationContext context;
    context.LinkDc(section.holes[0], section.holes[1], root);
    Emit(RegionToJson(root), options->output);
  });
}

} // namespace xklink
