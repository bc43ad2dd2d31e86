// Writing the tool's results so that no data is lost and no failure is silent.
//
// An output named with -o is never one of the inputs. A regular file (or a new name) is written
// through a temporary file beside it, renamed into place only once complete and flushed, so that
// an interrupted run or a full disk leaves the previous file intact; a file replaced keeps its
// permissions. Through a symbolic link, the file the link points to is replaced and the link stays.
// Character devices and FIFOs (/dev/null, /dev/stdout, a named pipe) are written straight into,
// never replaced by a regular file; a block device, a socket or a directory is refused. Every write
// and the final flush of standard output are checked.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

// Throws UsageError when `output` names the same file as one of `inputs` (empty names are skipped),
// after following links: writing it would destroy the data being read.
void RequireOutputIsNotAnInput(const std::string& output, const std::vector<std::string>& inputs);

// Writes `content` to `path` as described above. Throws OutputError with a message naming the file
// when the directory is missing or not writable, or a write fails.
void WriteFileAtomically(const std::filesystem::path& path, std::string_view content);

// Writes `content` to standard output; throws OutputError when it is full or closed.
void WriteStandardOutput(std::string_view content);

// Flushes what was written to std::cout; throws OutputError when that fails.
void FlushStandardOutput();

// Makes sure file descriptors 0-2 are open before any file is: were standard output closed, the
// first file opened would take its number and receive the output. A closed stream is replaced by
// /dev/null opened for reading, so that a write to it still fails as it would have.
void ReserveStandardStreams();

// Installs handlers for SIGINT, SIGTERM, SIGHUP and SIGXFSZ (a file size limit reached) that
// remove a temporary file still being written, then let the signal take its usual course.
void InstallInterruptCleanup();

} // namespace xklink
