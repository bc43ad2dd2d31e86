// xklink check: every problem of a borehole file, before a section is drawn from it.
#include "Commands.h"
#include "CommonOptions.h"
#include "Errors.h"

#include <iostream>
#include <memory>

namespace xklink {

void AddCheckCommand(CLI::App& app) {
  auto options = std::make_shared<InputOptions>();
  CLI::App* command = app.add_subcommand(
      "check", "Read and validate a borehole file and list every problem found");
  AddInputOptions(*command, *options);
  command->footer("Exit status 0 when the file is clean, 2 when it has errors or warnings.\n"
                  "Examples:\n"
                  "  xklink check site.ags\n"
                  "  xklink check intervals.csv --collars collars.csv");
  command->callback([options] {
    std::size_t errors = 0;
    const std::vector<std::string> problems = CheckFile(*options, errors);
    for (const std::string& problem : problems) {
      std::cout << problem << '\n';
    }
    std::cout << options->file << ": " << errors << " error(s), " << problems.size() - errors
              << " warning(s)\n";
    if (!problems.empty()) {
      throw CheckFailed{};
    }
  });
}

} // namespace xklink
