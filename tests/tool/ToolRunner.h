// Running xklink (and the external checkers: xmllint, ezdxf) as a child process, the
// way a user or a script does: arguments in, standard output, standard error and the exit status
// out. Every test works in its own temporary directory.
#pragma once

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace xktool {

namespace fs = std::filesystem;

inline const std::string kTool = XKLINK_TOOL_PATH;
inline const fs::path kExamples = XKLINK_EXAMPLES_DIR;
inline const fs::path kRealData = XKLINK_REAL_DATA_DIR;
// BH1 (A 100-95, B 95-90, C 90-80) and BH2 50 m east (A 101-97, C 97-85): B pinches out.
inline const std::string kOverview = (kExamples / "overview.json").string();
// Ten holes of the Northern Line Extension at Battersea, AGS 3.1.
inline const std::string kNle = (kExamples / "nle-battersea" / "21-7-10-NLE.ags").string();

inline std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void WriteFile(const fs::path& path, const std::string& text) {
  if (!(std::ofstream(path, std::ios::binary) << text)) {
    throw std::runtime_error("cannot write " + path.string());
  }
}

// A fresh directory, removed with everything in it at the end of the test (write permission is
// given back first, in case a test took it away).
class TempDir {
public:
  TempDir() {
    const char* base = std::getenv("TMPDIR");
    std::string pattern =
        std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/xklink-tool-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("mkdtemp failed");
    }
    m_path = pattern;
  }
  ~TempDir() {
    std::error_code ec;
    for (const auto& entry : fs::recursive_directory_iterator(m_path, ec)) {
      if (entry.is_directory(ec)) {
        fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add, ec);
      }
    }
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, ec);
    fs::remove_all(m_path, ec);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  fs::path operator/(const std::string& name) const { return m_path / name; }
  // Writes a file into the directory and returns its path as a string for the command line.
  std::string Write(const std::string& name, const std::string& text) const {
    WriteFile(m_path / name, text);
    return (m_path / name).string();
  }
  // The names of everything in the directory, sorted.
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_path)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

private:
  fs::path m_path;
};

struct RunResult {
  int exitCode = -1; // -1 when the process was ended by a signal
  int signal = 0;    // the signal that ended it, 0 when it exited
  std::string out;
  std::string err;
  // For assertion messages: what the run printed.
  std::string Describe() const {
    return "exit " + std::to_string(exitCode) + ", signal " + std::to_string(signal) +
           "\n--- stdout:\n" + out.substr(0, 2000) + "\n--- stderr:\n" + err.substr(0, 2000);
  }
};

// A child process (PATH searched) whose standard output and error go to files; standard input is
// /dev/null. It starts with default actions for the signals that end a run and nothing blocked,
// whatever the test runner set: the interruption tests rely on those signals arriving.
class Child {
public:
  explicit Child(const std::vector<std::string>& argv) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, m_out.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, m_err.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigset_t defaults;
    sigemptyset(&none);
    sigemptyset(&defaults);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXFSZ, SIGPIPE}) {
      sigaddset(&defaults, signal);
    }
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    std::vector<char*> args;
    for (const std::string& a : argv) {
      args.push_back(const_cast<char*>(a.c_str()));
    }
    args.push_back(nullptr);
    if (::posix_spawnp(&m_pid, args[0], &actions, &attributes, args.data(), environ) != 0) {
      m_pid = -1;
    }
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  ~Child() {
    if (m_pid > 0) {
      ::kill(m_pid, SIGKILL);
      Wait();
    }
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  void Signal(int signal) const {
    if (m_pid > 0) {
      ::kill(m_pid, signal);
    }
  }

  // 127 as the exit code when the program could not be started.
  RunResult Wait() {
    RunResult result;
    if (m_pid <= 0) {
      result.exitCode = 127;
      result.err = "cannot start the program";
      return result;
    }
    int status = 0;
    while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
    }
    m_pid = -1;
    if (WIFEXITED(status)) {
      result.exitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
      result.signal = WTERMSIG(status);
    }
    result.out = ReadFile(m_out);
    result.err = ReadFile(m_err);
    return result;
  }

private:
  TempDir m_dir;
  fs::path m_out = m_dir / "out";
  fs::path m_err = m_dir / "err";
  pid_t m_pid = -1;
};

inline RunResult RunProgram(const std::vector<std::string>& argv) {
  return Child(argv).Wait();
}

// xklink with the given arguments.
inline RunResult RunTool(std::vector<std::string> args) {
  std::vector<std::string> argv{kTool};
  argv.insert(argv.end(), std::make_move_iterator(args.begin()),
              std::make_move_iterator(args.end()));
  return RunProgram(argv);
}

// Expects the run to fail with exit status 2 and nothing on standard output, and its message on
// standard error to hold every fragment.
inline void ExpectRefused(const RunResult& run, const std::vector<std::string>& fragments) {
  EXPECT_EQ(run.exitCode, 2) << run.Describe();
  EXPECT_EQ(run.out, "");
  for (const std::string& fragment : fragments) {
    EXPECT_NE(run.err.find(fragment), std::string::npos) << "missing: " << fragment << "\n"
                                                         << run.err;
  }
}

// Fails the test with a message telling what to install when an external checker is missing.
inline void RequireProgram(const std::string& program, const std::string& package) {
  const RunResult probe = RunProgram({"sh", "-c", "command -v " + program});
  ASSERT_EQ(probe.exitCode, 0) << program << " is not installed: the tool's tests need it to check "
                               << "the output (Debian package " << package
                               << "; scripts/setup installs it)";
}

// xmllint --noout: a real XML parser's verdict on a file.
inline RunResult XmlLint(const fs::path& file) {
  return RunProgram({"xmllint", "--noout", file.string()});
}

} // namespace xktool
