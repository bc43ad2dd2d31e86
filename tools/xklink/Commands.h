// The tool's commands. Each registers itself as a subcommand with its options, help and examples;
// its callback does the work and throws on failure (main turns that into exit status 2).
#pragma once

namespace CLI {
class App;
}

namespace xklink {

void AddRegionsCommand(CLI::App& app);
void AddLinesCommand(CLI::App& app);
void AddSectionCommand(CLI::App& app);
void AddCheckCommand(CLI::App& app);

} // namespace xklink
