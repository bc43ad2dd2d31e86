// Running xklink (and the programs that check what it writes: xmllint, ezdxf, poppler) as a child
// process, the way a user or a script does: arguments in, standard output, standard error and the
// exit status out. Every test works in its own temporary directory.
#pragma once

#include "../support/TempDir.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace xktool {

namespace fs = std::filesystem;

inline const std::string kTool = XKLINK_TOOL_PATH;
inline const fs::path kRealData = XKLINK_REAL_DATA_DIR;
// BH1 (A 100-95, B 95-90, C 90-80) and BH2 50 m east (A 101-97, C 97-85): B pinches out.
inline const std::string kOverview = XKLINK_EXAMPLES_DIR "/overview.json";
// Ten holes of the Northern Line Extension at Battersea, AGS 3.1.
inline const std::string kNle = XKLINK_EXAMPLES_DIR "/nle-battersea/21-7-10-NLE.ags";
// Real files, AGS4: the M621 widening at Leeds, and the hundred holes of the DLR City Airport line.
inline const std::string kM621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();
inline const std::string kDlr =
    (kRealData / "dlr-city-airport" / "DLR_City_Airport_Extension.ags").string();

using xktest::ReadFile;
using xktest::TempDir;

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

// A child process (PATH searched) reading /dev/null, its output kept in files, to be waited for. It
// starts with default actions for the signals that end a run and nothing blocked, whatever the test
// runner set: the interruption tests rely on those signals arriving.
class Child {
public:
  explicit Child(const std::vector<std::string>& argv) : m_program(argv.at(0)) {
    std::vector<char*> args;
    for (const std::string& a : argv) {
      args.push_back(const_cast<char*>(a.c_str()));
    }
    args.push_back(nullptr);
    const std::string out = (m_dir / "out").string();
    const std::string err = (m_dir / "err").string();
    m_pid = ::fork();
    if (m_pid == 0) { // only calls that are safe between fork and exec in a threaded program
      sigset_t none;
      sigemptyset(&none);
      ::sigprocmask(SIG_SETMASK, &none, nullptr);
      for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGXFSZ, SIGPIPE}) {
        std::signal(signal, SIG_DFL);
      }
      ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
      ::dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
      ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
      ::execvp(args[0], args.data());
      ::_exit(127);
    }
    if (m_pid < 0) {
      throw std::runtime_error("fork failed");
    }
  }
  void Signal(int signal) const { ::kill(m_pid, signal); }

  RunResult Wait() {
    int status = 0;
    ::waitpid(m_pid, &status, 0);
    RunResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.out = ReadFile(m_dir / "out");
    result.err = ReadFile(m_dir / "err");
    if (result.exitCode == 127 && result.err.empty()) {
      result.err = "cannot start " + m_program + ": scripts/setup installs what the tests run";
    }
    return result;
  }

private:
  std::string m_program;
  TempDir m_dir;
  pid_t m_pid = -1;
};

inline RunResult RunProgram(const std::vector<std::string>& argv) {
  return Child(argv).Wait();
}

// xklink with the given arguments.
inline RunResult RunTool(std::vector<std::string> args) {
  args.insert(args.begin(), kTool);
  return RunProgram(args);
}

// Expects the run to end with the exit status and nothing on standard output, and standard error
// to hold every fragment found and none absent.
inline void ExpectExit(const RunResult& run, int exitCode, const std::vector<std::string>& found,
                       const std::vector<std::string>& absent = {}) {
  EXPECT_EQ(run.exitCode, exitCode) << run.Describe();
  EXPECT_EQ(run.out, "");
  for (const std::string& fragment : found) {
    EXPECT_NE(run.err.find(fragment), std::string::npos) << "missing: " << fragment << "\n"
                                                         << run.err;
  }
  for (const std::string& fragment : absent) {
    EXPECT_EQ(run.err.find(fragment), std::string::npos) << "present: " << fragment << "\n"
                                                         << run.err;
  }
}

// A refusal: exit status 2, its message holding every fragment.
inline void ExpectRefused(const RunResult& run, const std::vector<std::string>& fragments) {
  ExpectExit(run, 2, fragments);
}

} // namespace xktool
