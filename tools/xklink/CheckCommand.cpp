// xklink check: every problem of a borehole file, before a section is drawn from it.
#include "Commands.h"
#include "CommonOptions.h"
#include "Errors.h"

#include <iostream>
#include <memory>

namespace xklink {

void AddCheckCommand(CLI::App& app) {
  auto options = std::make_shared<InputOptions>();
  CLI::App* command =
      app.add_subcommand("check", "Read and validate a borehole file and list every problem found");
  AddInputOptions(*command, *options);
  command->footer(
      "Exit status 0 when the file has no errors (warnings alone pass, unless --strict), "
      "2 when it has.\n"
      "Examples:\n"
      "  xklink check site.ags\n"
      "  xklink check intervals.csv --collars collars.csv");
  command->callback([options] {
    const CheckCounts counts = CheckFile(*options, std::cout);
    std::cout << options->file << ": " << counts.errors << " error(s), " << counts.warnings
              << " warning(s)\n";
    if (counts.errors > 0 || (options->strict && counts.warnings > 0)) {
      throw CheckFailed{};
    }
  });
}

} // namespace xklink
