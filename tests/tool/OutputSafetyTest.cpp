// Output files are complete or not there: a failed or interrupted run leaves the previous file as
// it was and no temporary file behind, and a file that cannot be written is named.
#include "ToolRunner.h"

#include <chrono>
#include <thread>

namespace xktool {
namespace {

const std::string kNoStrata = R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100, "strata": [{"code": "A", "top": 100, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100, "strata": []}
]})";

TEST(OutputSafetyTest, FailedRunLeavesTheExistingFileIntact) {
  TempDir dir;
  const std::string bad = dir.Write("bad.json", kNoStrata);
  const std::string svg = dir.Write("out.svg", "previous drawing\n");
  const std::string json = dir.Write("out.json", "previous lines\n");
  const std::vector<std::vector<std::string>> runs = {
      {"section", bad, "-o", svg},
      {"section", kOverview, "--holes", "BH1,BH7", "-o", svg},
      {"section", kOverview, "--legend", (dir / "no-legend.csv").string(), "-o", svg},
      {"lines", bad, "-o", json},
      {"lines", kOverview, "--holes", "BH1", "-o", json},
      {"regions", bad, "-o", json}};
  for (const auto& args : runs) {
    SCOPED_TRACE(::testing::PrintToString(args));
    ExpectRefused(RunTool(args), {});
  }
  EXPECT_EQ(ReadFile(svg), "previous drawing\n");
  EXPECT_EQ(ReadFile(json), "previous lines\n");
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"bad.json", "out.json", "out.svg"}));
}

TEST(OutputSafetyTest, SuccessfulRunReplacesTheWholeFile) {
  TempDir dir;
  // Longer than the new content: nothing of it may remain at the end.
  const std::string out = dir.Write("lines.json", std::string(20000, 'x'));
  const mode_t previous = ::umask(022);
  const RunResult run = RunTool({"lines", kOverview, "-o", out});
  ::umask(previous);
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(ReadFile(out), RunTool({"lines", kOverview}).out);
  // An ordinary file for others to read, not the owner-only mode of a temporary file.
  struct stat info {};
  ASSERT_EQ(::stat(out.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);
  EXPECT_EQ(dir.Entries(), std::vector<std::string>{"lines.json"});
}

TEST(OutputSafetyTest, MissingDirectoryOrADirectoryInTheWayIsNamed) {
  TempDir dir;
  const std::string notADirectory = dir.Write("plain-file", "not a directory\n");
  for (const fs::path& target :
       {dir / "missing" / "out.svg", fs::path(notADirectory) / "out.svg"}) {
    ExpectRefused(RunTool({"section", kOverview, "-o", target.string()}),
                  {target.string(), "does not exist"});
  }
  // An output path that is a directory: the rename fails, and the temporary file goes.
  fs::create_directory(dir / "taken.json");
  ExpectRefused(RunTool({"lines", kOverview, "-o", (dir / "taken.json").string()}),
                {(dir / "taken.json").string()});
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"plain-file", "taken.json"}));
  EXPECT_TRUE(fs::is_empty(dir / "taken.json"));
}

TEST(OutputSafetyTest, UnwritableOutputDirectoryIsNamed) {
  TempDir dir;
  fs::path target;
  if (::geteuid() != 0) {
    fs::create_directory(dir / "read-only");
    fs::permissions(dir / "read-only", static_cast<fs::perms>(0555));
    target = dir / "read-only" / "section.svg";
  } else {
    // Permissions do not stop root; /proc takes no new files from anyone.
    target = "/proc/xklink-tool-test.svg";
  }
  for (const std::string command : {"section", "lines"}) {
    ExpectRefused(RunTool({command, kOverview, "-o", target.string()}),
                  {target.string(), "cannot create"});
    EXPECT_FALSE(fs::exists(target));
  }
}

// `holes` holes of `strata` thin strata each, six codes cycling with offsets so that every pair has
// pinch-outs to work out: enough for a run that can be caught half-way.
std::string LargeInput(int holes, int strata) {
  std::string text = "{\"boreholes\": [\n";
  for (int h = 0; h < holes; ++h) {
    const double collar = 100.0 + (h % 7) * 0.5;
    double z = collar;
    text += std::string(h > 0 ? ",\n" : "") + "{\"name\": \"H" + std::to_string(h) +
            "\", \"x\": " + std::to_string(h * 25) + ", \"y\": " + std::to_string((h % 4) * 3) +
            ", \"top\": " + std::to_string(collar) + ", \"strata\": [";
    for (int s = 0; s < strata; ++s) {
      const double base = z - 0.25 - ((h * 13 + s * 7) % 5) * 0.125;
      text += std::string(s > 0 ? ", " : "") + "{\"code\": \"S" + std::to_string((s + h % 3) % 6) +
              "\", \"top\": " + std::to_string(z) + ", \"bottom\": " + std::to_string(base) + "}";
      z = base;
    }
    text += "]}";
  }
  return text + "\n]}\n";
}

TEST(OutputSafetyTest, InterruptedRunLeavesTheOldFileOrACompleteNewOne) {
  RequireProgram("xmllint", "libxml2-utils");
  TempDir dir;
  const std::string input = dir.Write("big.json", LargeInput(24, 150));
  const fs::path out = dir / "section.svg";
  const std::vector<std::string> args{kTool, "section", input, "-o", out.string(), "--jobs", "2"};

  // The complete drawing, and how long it takes to make.
  const auto start = std::chrono::steady_clock::now();
  const RunResult whole = RunProgram(args);
  const auto duration = std::chrono::steady_clock::now() - start;
  ASSERT_EQ(whole.exitCode, 0) << whole.Describe();
  const std::string complete = ReadFile(out);
  ASSERT_EQ(XmlLint(out).exitCode, 0);

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
    const int signal = attempt % 2 == 0 ? SIGTERM : SIGINT;
    // After eight halvings, a few probes just before the replacement, where the write is, as start-
    // up times vary by more than the write takes.
    const double at = attempt == 0  ? 0.0
                      : attempt < 9 ? (before + after) / 2
                                    : after - (attempt - 8) * 0.004;
    SCOPED_TRACE("signal " + std::to_string(signal) + " at " + std::to_string(at));
    WriteFile(out, old);
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
    EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"big.json", "section.svg"}));
    if (attempt < 9) {
      (now == old ? before : after) = at;
    }
  }
  EXPECT_GT(interrupted, 0) << "no run was caught: the input is too small to interrupt";
}

} // namespace
} // namespace xktool
