// Writing an output file so that it is either complete or not there at all.
#pragma once

#include <filesystem>
#include <string_view>

namespace xklink {

// Writes `content` to `path` through a temporary file beside it, renamed into place only once it
// is complete and flushed: an interrupted run or a full disk leaves the previous file intact.
// Throws OutputError with a message naming the file when the directory is missing or not
// writable.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view content);

// Installs SIGINT/SIGTERM handlers that remove a temporary file still being written, then let the
// signal take its usual course.
void InstallInterruptCleanup();

} // namespace xklink
