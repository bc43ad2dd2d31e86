// Output files are complete or not there: a failed or interrupted run leaves the previous file as
// it was and no temporary file behind, and a file that cannot be written is named. An output never
// replaces an input or a special file, and a failed write, standard output included, is an error.
#include "ToolRunner.h"

#include <array>
#include <chrono>
#include <future>
#include <sys/stat.h>
#include <thread>

namespace xktool {
namespace {

// Every refusal exits with status 2 and a message naming the output or the fault, and leaves
// every file as it was: the previous output, the inputs, and no temporary file beside them.
TEST(OutputSafetyTest, RefusedRunsLeaveEveryFileAsItWas) {
  TempDir dir;
  const std::string bad = dir.Write("bad.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100, "strata": [{"code": "A", "top": 100, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100, "strata": []}
]})");
  const std::string svg = dir.Write("out.svg", "previous drawing\n");
  const std::string json = dir.Write("out.json", "previous lines\n");
  const std::string input = dir.Write("holes.json", ReadFile(kOverview));
  const std::string link = (dir / "link.json").string();
  fs::create_symlink(input, link);
  const std::string drawingNamed = dir.Write("holes.svg", ReadFile(kOverview));
  const std::string intervals =
      dir.Write("intervals.csv", "HOLEID,FROM,TO,CODE\nA,0,5,S\nA,5,9,C\nB,0,4,S\nB,4,8,C\n");
  const std::string collars = dir.Write("collars.csv", "HOLEID,X,Y,Z\nA,0,0,10\nB,30,0,11\n");
  const std::string missing = (dir / "missing" / "out.svg").string();
  const std::string inAFile = dir.Write("plain-file", "not a directory\n") + "/out.svg";
  const std::string taken = (dir / "taken.json").string(); // a directory
  fs::create_directory(taken);
  // Permissions do not stop root; /proc takes no new files from anyone.
  const std::string unwritable = "/proc/xklink-tool-test.svg";
  const std::string tool = kTool;
  const struct {
    std::vector<std::string> argv;
    std::vector<std::string> fragments;
  } cases[] = {
      {{tool, "section", kOverview, "--holes", "BH1,BH7", "-o", svg}, {"BH7"}},
      {{tool, "section", kOverview, "--legend", (dir / "none.csv").string(), "-o", svg},
       {"none.csv"}},
      {{tool, "lines", bad, "-o", json}, {"at least two holes"}},
      {{tool, "lines", input, "-o", input}, {"is the input file"}},
      {{tool, "regions", input, "-o", link}, {"is the input file"}},
      {{tool, "lines", link, "-o", input}, {"is the input file"}},
      {{tool, "lines", intervals, "--collars", collars, "-o", collars}, {"is the input file"}},
      {{tool, "section", drawingNamed, "--input-format", "json", "-o", drawingNamed},
       {"is the input file"}},
      {{tool, "section", kOverview, "-o", missing}, {missing, "does not exist"}},
      {{tool, "section", kOverview, "-o", inAFile}, {inAFile, "does not exist"}},
      // The rename onto a directory fails, and the temporary file goes.
      {{tool, "lines", kOverview, "-o", taken}, {taken}},
      {{tool, "lines", kOverview, "-o", unwritable}, {unwritable, "cannot create"}},
      {{"sh", "-c", "exec \"$0\" lines \"$1\" >/dev/full", tool, input},
       {"standard output: cannot write: No space left on device"}},
      {{"sh", "-c", "exec \"$0\" lines \"$1\" >&-", tool, input},
       {"standard output: cannot write"}},
      {{"sh", "-c", "exec \"$0\" check \"$1\" >/dev/full", tool, input},
       {"standard output: cannot write"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.argv));
    ExpectRefused(RunProgram(c.argv), c.fragments);
  }
  EXPECT_EQ(ReadFile(svg), "previous drawing\n");
  EXPECT_EQ(ReadFile(json), "previous lines\n");
  EXPECT_EQ(ReadFile(input), ReadFile(kOverview));
  EXPECT_EQ(ReadFile(drawingNamed), ReadFile(kOverview));
  EXPECT_EQ(ReadFile(collars), "HOLEID,X,Y,Z\nA,0,0,10\nB,30,0,11\n");
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_TRUE(fs::is_empty(taken));
  EXPECT_FALSE(fs::exists(unwritable));
  EXPECT_EQ(dir.Entries(),
            (std::vector<std::string>{"bad.json", "collars.csv", "holes.json", "holes.svg",
                                      "intervals.csv", "link.json", "out.json", "out.svg",
                                      "plain-file", "taken.json"}));
}

// A regular file is replaced as a whole, keeping its mode; through a symbolic link the file it
// points to is replaced and the link stays. Devices and FIFOs are written into, never replaced by
// a regular file, and a name for the standard output the tool was given writes to it.
TEST(OutputSafetyTest, SuccessfulRunsWriteWholeFilesThroughLinksAndIntoSpecialFiles) {
  TempDir dir;
  TempDir elsewhere;
  const std::string expected = RunTool({"lines", kOverview}).out;
  // Longer than the new content: nothing of it may remain at the end.
  const std::string replaced = dir.Write("lines.json", std::string(20000, 'x'));
  fs::permissions(replaced, static_cast<fs::perms>(0640));
  // A name as long as a directory takes (255 bytes): the temporary file beside it must fit too.
  const std::string created = (dir / (std::string(250, 'n') + ".json")).string();
  ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0600), 0);
  fs::create_symlink(elsewhere / "target.json", dir / "dangling.json");
  fs::create_symlink(elsewhere.Write("old.json", "old lines\n"), dir / "existing.json");
  // What the reader of the FIFO receives.
  auto piped = std::async(std::launch::async, [&] { return ReadFile(dir / "pipe"); });
  const mode_t previous = ::umask(022);
  for (const std::string& out :
       {replaced, created, std::string("/dev/null"), (dir / "pipe").string(),
        (dir / "dangling.json").string(), (dir / "existing.json").string()}) {
    SCOPED_TRACE(out);
    const RunResult run = RunTool({"lines", kOverview, "-o", out});
    EXPECT_EQ(run.exitCode, 0) << run.Describe();
    EXPECT_EQ(run.out, "");
  }
  ::umask(previous);
  EXPECT_EQ(ReadFile(replaced), expected);
  EXPECT_EQ(ReadFile(created), expected);
  // The file replaced keeps its mode; a new one is an ordinary file for others to read, not the
  // owner-only mode of a temporary file.
  EXPECT_EQ(fs::status(replaced).permissions(), static_cast<fs::perms>(0640));
  EXPECT_EQ(fs::status(created).permissions(), static_cast<fs::perms>(0644));
  EXPECT_EQ(piped.get(), expected);
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_fifo(dir / "pipe"));
  EXPECT_EQ(ReadFile(elsewhere / "target.json"), expected);
  EXPECT_EQ(ReadFile(elsewhere / "old.json"), expected);
  EXPECT_EQ(elsewhere.Entries(), (std::vector<std::string>{"old.json", "target.json"}));
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"dangling.json", "existing.json", "lines.json",
                                                     fs::path(created).filename(), "pipe"}));
  const RunResult stream = RunTool({"lines", kOverview, "-o", "/dev/stdout"});
  EXPECT_EQ(stream.exitCode, 0) << stream.Describe();
  EXPECT_EQ(stream.out, expected);
}

TEST(OutputSafetyTest, InterruptedRunLeavesTheOldFileOrACompleteNewOne) {
  TempDir dir;
  // The DLR City Airport file: a hundred holes, long enough a run to be caught half-way.
  const fs::path out = dir / "section.svg";
  const std::vector<std::string> args{kTool, "section", kDlr, "-o", out.string(), "--jobs", "2"};

  // The complete drawing, and how long it takes to make.
  const auto start = std::chrono::steady_clock::now();
  const RunResult whole = RunProgram(args);
  const auto duration = std::chrono::steady_clock::now() - start;
  ASSERT_EQ(whole.exitCode, 0) << whole.Describe();
  const std::string complete = ReadFile(out);
  ASSERT_EQ(RunProgram({"xmllint", "--noout", out.string()}).exitCode, 0);

  // The first signal comes at once, before the handlers may be in place; the others close in on
  // the moment the file is replaced (a run that left the old file was caught before it, one that
  // left the new file after it), so that the last ones land while the file is being written.
  const std::string old = "old drawing\n";
  double before = 0.0; // fractions of the run's duration
  double after = 1.0;
  int interrupted = 0;
  const auto probing = std::chrono::steady_clock::now();
  for (int attempt = 0; attempt < 14; ++attempt) {
    // A slow build (sanitizers) stops after a coarse search; the plain build searches finely.
    if (attempt >= 4 && std::chrono::steady_clock::now() - probing > std::chrono::seconds(4)) {
      break;
    }
    const int signal = std::array{SIGTERM, SIGINT, SIGHUP}[static_cast<std::size_t>(attempt % 3)];
    // After eight halvings, a few probes just before the replacement, where the write is, as start-
    // up times vary by more than the write takes.
    const double at = attempt == 0  ? 0.0
                      : attempt < 9 ? (before + after) / 2
                                    : after - (attempt - 8) * 0.004;
    SCOPED_TRACE("signal " + std::to_string(signal) + " at " + std::to_string(at));
    dir.Write("section.svg", old);
    Child child(args);
    std::this_thread::sleep_for(
        std::chrono::duration_cast<std::chrono::microseconds>(duration * at));
    child.Signal(signal);
    const RunResult run = child.Wait();
    if (run.signal != 0) {
      // The tool cleans up, then dies of the signal it got, as a shell expects.
      EXPECT_EQ(run.signal, signal);
      ++interrupted;
    } else {
      EXPECT_EQ(run.exitCode, 0) << run.Describe();
    }
    const std::string now = ReadFile(out);
    // The drawing is the same on every run, so a new file must be the one xmllint passed above.
    EXPECT_TRUE(now == old || now == complete)
        << "neither the old file nor the complete drawing: " << now.size() << " bytes";
    EXPECT_EQ(dir.Entries(), std::vector<std::string>{"section.svg"});
    if (attempt < 9) {
      (now == old ? before : after) = at;
    }
  }
  EXPECT_GT(interrupted, 0) << "no run was caught: the input is too small to interrupt";
}

// A file size limit reached while writing (SIGXFSZ) ends the run as an interruption does.
TEST(OutputSafetyTest, FileSizeLimitLeavesTheOldFile) {
  TempDir dir;
  const std::string out = dir.Write("lines.json", "old lines\n");
  // ulimit -f counts blocks of 512 bytes; the lines of the NLE holes take several kilobytes.
  const RunResult run =
      RunProgram({"sh", "-c", "ulimit -f 1 && exec \"$@\"", "sh", kTool, "lines", kNle, "-o", out});
  EXPECT_EQ(run.signal, SIGXFSZ) << run.Describe();
  EXPECT_EQ(ReadFile(out), "old lines\n");
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"lines.json"});
}

} // namespace
} // namespace xktool
