// xklink: correlated geological cross-sections from borehole logs.
//
// Exit status: 0 on success; 2 on bad input, bad usage or a failed write (standard output
// included), with a message on standard error that names the file, line and field, and when the
// input is too large for the memory of the machine; 1 on an internal fault, a bug to report.
#include "Commands.h"
#include "Diagnostics.h"
#include "Errors.h"
#include "HoleSelection.h"
#include "OutputFile.h"
#include "Section.h"

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <new>

namespace {

// The input file of the command that ran, for a message that has no other place to name.
std::string InputFileOf(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) {
    if (const CLI::Option* file = command->get_option_no_throw("FILE"); file && file->count() > 0) {
      return file->as<std::string>() + ": ";
    }
  }
  return {};
}

} // namespace

int main(int argc, char** argv) {
  xklink::ReserveStandardStreams();
  xklink::InstallInterruptCleanup();
  CLI::App app{"xklink: correlate the strata of boreholes and draw geological cross-sections"};
  app.require_subcommand(1);
  app.footer("Run 'xklink COMMAND --help' for the options and examples of a command.");
  xklink::AddSectionCommand(app);
  xklink::AddLinesCommand(app);
  xklink::AddRegionsCommand(app);
  xklink::AddCheckCommand(app);
  try {
    try {
      app.parse(argc, argv);
    } catch (const xklink::CheckFailed&) {
      xklink::FlushStandardOutput(); // the list of problems must have reached its reader
      return 2;
    }
    xklink::FlushStandardOutput();
    return 0;
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    app.exit(e);
    return 2;
  } catch (const xklink::ParseError& e) { // the tool's own errors, tools/xklink/Errors.h
    std::cerr << "xklink: " << e.what() << '\n';
    return 2;
  } catch (const std::bad_alloc&) {
    // The pairs have been tried one at a time already (PairCorrelation.h).
    std::cerr << "xklink: " << InputFileOf(app)
              << "out of memory: the input is too large for this machine\n";
    return 2;
  } catch (const std::exception& e) {
    std::cerr << "xklink: internal fault: " << e.what()
              << "\nPlease report it with the command line and the input file.\n";
    return 1;
  }
}
