// The benchmark program: Google Benchmark's console output, then the figures that matter side by
// side: the library against the plain implementation measured in the same run, the batch on one
// and on two threads, and how long logs grow with the number of equal-code pairs.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

struct Measured {
  double seconds = 0.0; // CPU time per iteration (wall time for runs measured in real time)
  double pairs = 0.0;   // equal-code pairs, where the benchmark counts them
};

double Seconds(double time, benchmark::TimeUnit unit) {
  switch (unit) {
  case benchmark::kNanosecond:
    return time * 1e-9;
  case benchmark::kMicrosecond:
    return time * 1e-6;
  case benchmark::kMillisecond:
    return time * 1e-3;
  case benchmark::kSecond:
    return time;
  }
  return time;
}

// Records every run under "Function/argument" while the console reporter prints it.
class SummaryReporter : public benchmark::ConsoleReporter {
public:
  // Colours only on a terminal, as Google Benchmark's own main does.
  SummaryReporter() : ConsoleReporter(isatty(fileno(stdout)) ? OO_Color : OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    benchmark::ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) {
        continue;
      }
      std::string key = run.run_name.function_name;
      if (!run.run_name.args.empty()) {
        key += "/" + run.run_name.args;
      }
      const bool wall = !run.run_name.time_type.empty();
      Measured& m = measured[key];
      m.seconds = Seconds(wall ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime(), run.time_unit);
      const auto pairs = run.counters.find("equal_code_pairs");
      m.pairs = pairs == run.counters.end() ? 0.0 : pairs->second.value;
    }
  }

  std::map<std::string, Measured> measured;
};

std::string Time(double seconds) {
  char text[32];
  if (seconds < 1e-3) {
    std::snprintf(text, sizeof text, "%.2f us", seconds * 1e6);
  } else if (seconds < 1.0) {
    std::snprintf(text, sizeof text, "%.2f ms", seconds * 1e3);
  } else {
    std::snprintf(text, sizeof text, "%.2f s", seconds);
  }
  return text;
}

void PrintSummary(const std::map<std::string, Measured>& m) {
  const auto find = [&m](const std::string& key) -> const Measured* {
    const auto it = m.find(key);
    return it == m.end() ? nullptr : &it->second;
  };
  std::printf("\nLibrary against the plain implementation, same run:\n");
  const struct {
    const char* label;
    const char* library;
    const char* plain;
  } rows[] = {
      {"typical pair, real", "TypicalReal_Library", "TypicalReal_Plain"},
      {"typical pair, random", "TypicalRandom_Library", "TypicalRandom_Plain"},
      {"site, every consecutive pair", "Site_Library", "Site_Plain"},
      {"long logs, 250 strata", "LongLog_Library/250", "LongLog_Plain/250"},
      {"long logs, 500 strata", "LongLog_Library/500", "LongLog_Plain/500"},
  };
  for (const auto& row : rows) {
    const Measured* library = find(row.library);
    const Measured* plain = find(row.plain);
    if (library != nullptr && plain != nullptr) {
      std::printf("  %-30s %12s   plain %12s   %7.1fx\n", row.label, Time(library->seconds).c_str(),
                  Time(plain->seconds).c_str(), plain->seconds / library->seconds);
    }
  }
  const Measured* one = find("Batch_Context/1");
  const Measured* two = find("Batch_Context/2");
  if (one != nullptr && two != nullptr) {
    std::printf("Batch: 1 thread %s, 2 threads %s: %.2fx\n", Time(one->seconds).c_str(),
                Time(two->seconds).c_str(), one->seconds / two->seconds);
  }
  const Measured* small = find("LongLog_Library/1000");
  const Measured* large = find("LongLog_Library/10000");
  if (small != nullptr && large != nullptr && small->pairs > 1 && large->pairs > 1) {
    const double growth = large->pairs / small->pairs;
    const double nLogN = growth * std::log(large->pairs) / std::log(small->pairs);
    std::printf("Long logs, 1,000 to 10,000 strata: %.0fx the time for %.0fx the equal-code pairs "
                "(n log n: %.0fx)\n",
                large->seconds / small->seconds, growth, nLogN);
  }
}

} // namespace

int main(int argc, char** argv) {
  // Machine-readable output (--benchmark_format=json or csv) stays as Google Benchmark writes it.
  bool console = true;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    console = console && (argument.rfind("--benchmark_format=", 0) != 0 ||
                          argument == "--benchmark_format=console");
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  if (!console) {
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
  }
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  PrintSummary(reporter.measured);
  return 0;
}
