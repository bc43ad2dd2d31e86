// Where a command's text result goes: standard output, or a file written atomically.
#pragma once

#include <string>

namespace xklink {

void Emit(const std::string& content, const std::string& outputPath);

} // namespace xklink
