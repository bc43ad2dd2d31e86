#include "OutputFile.h"

#include "Errors.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <string>
#include <unistd.h>

namespace xklink {

namespace {

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

std::string ErrnoText() { return std::strerror(errno); }

void WriteAll(int fd, std::string_view content, const std::filesystem::path& shown) {
  const char* data = content.data();
  std::size_t left = content.size();
  while (left > 0) {
    const ssize_t written = ::write(fd, data, left);
    if (written < 0) {
      if (errno == EINTR) {
        continue;
      }
      throw OutputError(shown.string() + ": cannot write: " + ErrnoText());
    }
    data += written;
    left -= static_cast<std::size_t>(written);
  }
}

} // namespace

void InstallInterruptCleanup() {
  std::signal(SIGINT, RemovePendingAndReraise);
  std::signal(SIGTERM, RemovePendingAndReraise);
}

void WriteFileAtomically(const std::filesystem::path& path, std::string_view content) {
  const std::filesystem::path directory =
      path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
  std::error_code ec;
  if (!std::filesystem::is_directory(directory, ec)) {
    throw OutputError(path.string() + ": output directory '" + directory.string() +
                      "' does not exist");
  }
  std::string temp = (directory / ("." + path.filename().string() + ".XXXXXX")).string();
  if (temp.size() >= sizeof g_pendingTemp) {
    throw OutputError(path.string() + ": path too long");
  }
  // No interruption between creating the temporary file and telling the handler about it.
  sigset_t interrupts;
  sigset_t previous;
  sigemptyset(&interrupts);
  sigaddset(&interrupts, SIGINT);
  sigaddset(&interrupts, SIGTERM);
  sigprocmask(SIG_BLOCK, &interrupts, &previous);
  const int fd = ::mkstemp(temp.data());
  if (fd >= 0) {
    std::memcpy(g_pendingTemp, temp.c_str(), temp.size() + 1);
    g_hasPendingTemp.store(true);
  }
  sigprocmask(SIG_SETMASK, &previous, nullptr);
  if (fd < 0) {
    throw OutputError(path.string() + ": cannot create a file in '" + directory.string() +
                      "': " + ErrnoText());
  }
  bool closed = false;
  try {
    WriteAll(fd, content, path);
    if (::fsync(fd) != 0) {
      throw OutputError(path.string() + ": cannot flush: " + ErrnoText());
    }
    // mkstemp creates the file readable by its owner only; outputs are ordinary files.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, static_cast<mode_t>(0666 & ~mask));
    closed = true;
    if (::close(fd) != 0) {
      throw OutputError(path.string() + ": cannot close: " + ErrnoText());
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) {
      throw OutputError(path.string() + ": cannot replace: " + ErrnoText());
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

} // namespace xklink
