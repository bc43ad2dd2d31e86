// xklink: correlated geological cross-sections from borehole logs.
//
// Exit status: 0 on success; 2 on bad input, bad usage or a failed write, with a message on
// standard error that names the file, line and field; 1 on an internal fault.
#include "Commands.h"
#include "Errors.h"
#include "OutputFile.h"

#include "Diagnostics.h"
#include "Section.h"

#include <CLI/CLI.hpp>

#include <exception>
#include <iostream>
#include <new>

int main(int argc, char** argv) {
  xklink::InstallInterruptCleanup();
  CLI::App app{"xklink: correlate the strata of boreholes and draw geological cross-sections"};
  app.require_subcommand(1);
  app.footer("Run 'xklink COMMAND --help' for the options and examples of a command.");
  xklink::AddSectionCommand(app);
  xklink::AddLinesCommand(app);
  xklink::AddRegionsCommand(app);
  xklink::AddCheckCommand(app);
  try {
    app.parse(argc, argv);
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
  } catch (const xklink::CheckFailed&) {
    return 2;
  } catch (const std::bad_alloc&) {
    std::cerr << "xklink: out of memory: the input is too large for this machine\n";
    return 2;
  } catch (const std::exception& e) {
    std::cerr << "xklink: " << e.what() << '\n';
    return 2;
  }
}
