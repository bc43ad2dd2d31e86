#include "OutputFile.h"

#include "Errors.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace xklink {

namespace fs = std::filesystem;

namespace {

constexpr int kCleanupSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGXFSZ};

// The temporary file being written, for the signal handler; a fixed buffer because a handler may
// not allocate.
char g_pendingTemp[4096];
std::atomic<bool> g_hasPendingTemp{false};

void RemovePendingAndReraise(int signal) {
  if (g_hasPendingTemp.load()) {
    ::unlink(g_pendingTemp);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

std::string ErrnoText() {
  return std::strerror(errno);
}

void WriteAll(int fd, std::string_view content, const fs::path& shown) {
  const char* data = content.data();
  std::size_t left = content.size();
  while (left > 0) {
    const ssize_t written = ::write(fd, data, left);
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      throw OutputError(shown, "cannot write: " + ErrnoText());
    }
    data += written;
    left -= static_cast<std::size_t>(written);
  }
}

// The name given, then each target of a chain of symbolic links, to the file it ends at (which
// may not exist yet). Links in the directories above are followed by the system as usual.
std::vector<fs::path> LinkChain(const fs::path& path) {
  std::vector<fs::path> chain{path};
  while (chain.size() <= 40) { // the kernel's own limit
    std::error_code ec;
    if (!fs::is_symlink(fs::symlink_status(chain.back(), ec))) {
      return chain;
    }
    const fs::path next = fs::read_symlink(chain.back(), ec);
    if (ec) {
      throw OutputError(path, "cannot follow the symbolic link: " + ec.message());
    }
    chain.push_back(next.is_absolute() ? next : chain.back().parent_path() / next);
  }
  throw OutputError(path, "too many levels of symbolic links");
}

// Whether the name stands for a stream the tool was given open (/dev/stdout, /dev/fd/3): such a
// name leads, through links, to /proc/self/fd. Replacing the file behind it would lose what the
// shell appended there before; the output is appended, as a write to the stream would be.
bool NamesAnOpenStream(const fs::path& path) {
  for (const fs::path& hop : LinkChain(path)) {
    const std::string text = hop.lexically_normal().string();
    if (text.rfind("/proc/self/fd/", 0) == 0 || text.rfind("/dev/fd/", 0) == 0) {
      return true;
    }
  }
  return false;
}

// A device, a FIFO or an open stream takes the bytes as they come: it cannot be replaced, and a
// temporary file beside it would turn /dev/null into a regular file.
void WriteIntoSpecialFile(const fs::path& path, std::string_view content) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
  if (fd < 0) {
    throw OutputError(path, "cannot open for writing: " + ErrnoText());
  }
  try {
    WriteAll(fd, content, path);
  } catch (...) {
    ::close(fd);
    throw;
  }
  if (::close(fd) != 0) {
    throw OutputError(path, "cannot close: " + ErrnoText());
  }
}

// Creates the temporary file ".xklink-XXXXXX" in `directory` and tells the signal handler about
// it. The name is short and fixed, so that any name the directory takes can be written.
int CreateTemporary(const fs::path& shown, const fs::path& directory, std::string& temp) {
  temp = (directory / ".xklink-XXXXXX").string();
  if (temp.size() >= sizeof g_pendingTemp) {
    throw OutputError(shown, "path too long");
  }
  // No interruption between creating the temporary file and telling the handler about it.
  sigset_t blocked;
  sigset_t previous;
  sigemptyset(&blocked);
  for (const int signal : kCleanupSignals) {
    sigaddset(&blocked, signal);
  }
  sigprocmask(SIG_BLOCK, &blocked, &previous);
  const int fd = ::mkstemp(temp.data());
  if (fd >= 0) {
    std::memcpy(g_pendingTemp, temp.c_str(), temp.size() + 1);
    g_hasPendingTemp.store(true);
  }
  sigprocmask(SIG_SETMASK, &previous, nullptr);
  if (fd < 0) {
    throw OutputError(shown,
                      "cannot create a file in '" + directory.string() + "': " + ErrnoText());
  }
  return fd;
}

// Replaces (or creates) the regular file `target` as a whole; `shown` is the name the user gave.
void ReplaceRegularFile(const fs::path& shown, const fs::path& target, std::string_view content) {
  const fs::path directory = target.has_parent_path() ? target.parent_path() : fs::path(".");
  std::error_code ec;
  if (!fs::is_directory(directory, ec)) {
    throw OutputError(shown, "output directory '" + directory.string() + "' does not exist");
  }
  // The permissions of the file replaced, or those of a new file: mkstemp makes it owner-only.
  mode_t mode = 0;
  struct stat existing {};
  if (::stat(target.c_str(), &existing) == 0) {
    mode = existing.st_mode & 07777;
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode = static_cast<mode_t>(0666 & ~mask);
  }
  std::string temp;
  const int fd = CreateTemporary(shown, directory, temp);
  bool closed = false;
  try {
    WriteAll(fd, content, shown);
    if (::fsync(fd) != 0) {
      throw OutputError(shown, "cannot flush: " + ErrnoText());
    }
    ::fchmod(fd, mode);
    closed = true;
    if (::close(fd) != 0) {
      throw OutputError(shown, "cannot close: " + ErrnoText());
    }
    if (std::rename(temp.c_str(), target.c_str()) != 0) {
      throw OutputError(shown, "cannot replace: " + ErrnoText());
    }
  } catch (...) {
    if (!closed) {
      ::close(fd);
    }
    ::unlink(temp.c_str());
    g_hasPendingTemp.store(false);
    throw;
  }
  g_hasPendingTemp.store(false);
}

} // namespace

void RequireOutputIsNotAnInput(const std::string& output, const std::vector<std::string>& inputs) {
  if (output.empty() || output == "-") {
    return;
  }
  for (const std::string& input : inputs) {
    std::error_code ec; // false, with an error, when either does not exist
    if (!input.empty() && fs::equivalent(output, input, ec)) {
      throw UsageError("--output: '" + output + "' is the input file '" + input +
                       "'; writing it would destroy the data being read");
    }
  }
}

void WriteFileAtomically(const fs::path& path, std::string_view content) {
  struct stat info {};
  if (::stat(path.c_str(), &info) == 0) { // through any links, /proc's magic ones included
    if (S_ISCHR(info.st_mode) || S_ISFIFO(info.st_mode) || NamesAnOpenStream(path)) {
      WriteIntoSpecialFile(path, content);
      return;
    }
    if (S_ISDIR(info.st_mode)) {
      throw OutputError(path, "is a directory");
    }
    if (!S_ISREG(info.st_mode)) {
      throw OutputError(path, "is neither a regular file, a character device nor a FIFO");
    }
  }
  // Through links, the file at the end is replaced and the links stay.
  ReplaceRegularFile(path, LinkChain(path).back(), content);
}

void WriteStandardOutput(std::string_view content) {
  FlushStandardOutput(); // anything written through std::cout goes first
  WriteAll(STDOUT_FILENO, content, "standard output");
}

void FlushStandardOutput() {
  errno = 0;
  if (!std::cout.flush()) {
    throw OutputError("standard output",
                      errno == 0 ? "cannot write" : "cannot write: " + ErrnoText());
  }
}

void ReserveStandardStreams() {
  for (int fd = 0; fd <= 2; ++fd) {
    if (::fcntl(fd, F_GETFD) < 0 && errno == EBADF) {
      // open returns the lowest free number, which is this one.
      if (const int opened = ::open("/dev/null", O_RDONLY); opened > 2) {
        ::close(opened);
      }
    }
  }
}

void InstallInterruptCleanup() {
  for (const int signal : kCleanupSignals) {
    std::signal(signal, RemovePendingAndReraise);
  }
}

} // namespace xklink
