// Reading and validating AGS files, in MB/s of input: the largest real file of the tests, and a
// generated AGS4 file of about 200 MB (written to a temporary file, never committed) whose holes
// look like a real site's, to show that reading stays linear and its memory a small multiple of
// the size. The counters give the throughput (bytes_per_second) and, for the generated file, the
// peak resident memory of the process against the file's size.
#include "ReadBoreholes.h"
#include "Validation.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;

// Holes of 30 strata each, four kinds of description (one with doubled quotes, one with a comma),
// until the file reaches `bytes`.
fs::path WriteGeneratedAgs(std::size_t bytes) {
  const fs::path path = fs::temp_directory_path() / "xklink-read-bench.ags";
  std::ofstream out(path, std::ios::binary);
  out << "\"GROUP\",\"PROJ\"\r\n\"HEADING\",\"PROJ_ID\",\"PROJ_NAME\"\r\n\"UNIT\",\"\",\"\"\r\n"
         "\"TYPE\",\"ID\",\"X\"\r\n\"DATA\",\"P1\",\"Generated\"\r\n\r\n";
  constexpr std::size_t kStrata = 30;
  constexpr std::size_t kBytesPerHole = 3150; // GEOL rows and the LOCA row of one hole
  const std::size_t holes = bytes / kBytesPerHole + 2;
  out << "\"GROUP\",\"LOCA\"\r\n\"HEADING\",\"LOCA_ID\",\"LOCA_TYPE\",\"LOCA_NATE\",\"LOCA_NATN\","
         "\"LOCA_GL\",\"LOCA_FDEP\"\r\n\"UNIT\",\"\",\"\",\"m\",\"m\",\"m\",\"m\"\r\n\"TYPE\","
         "\"ID\","
         "\"PA\",\"2DP\",\"2DP\",\"2DP\",\"2DP\"\r\n";
  char line[256];
  for (std::size_t i = 0; i < holes; ++i) {
    std::snprintf(line, sizeof line,
                  "\"DATA\",\"BH%zu\",\"CP\",\"%.2f\",\"%.2f\",\"%.2f\",\"30.00\"\r\n", i,
                  1000.0 + 10.0 * static_cast<double>(i), 2000.0 + 3.0 * static_cast<double>(i),
                  10.0 + 0.37 * static_cast<double>(i % 7));
    out << line;
  }
  out << "\r\n\"GROUP\",\"GEOL\"\r\n\"HEADING\",\"LOCA_ID\",\"GEOL_TOP\",\"GEOL_BASE\",\"GEOL_"
         "DESC\","
         "\"GEOL_LEG\",\"GEOL_GEOL\",\"GEOL_GEO2\"\r\n\"UNIT\",\"\",\"m\",\"m\",\"\",\"\",\"\","
         "\"\"\r\n"
         "\"TYPE\",\"ID\",\"2DP\",\"2DP\",\"X\",\"PA\",\"X\",\"X\"\r\n";
  const char* const descriptions[] = {
      "Firm brown sandy CLAY with occasional fine gravel of flint",
      "Dense grey \"\"silty\"\" fine to coarse GRAVEL",
      "MADE GROUND: brick, concrete, ash",
      "Weak white CHALK recovered as gravel",
  };
  for (std::size_t i = 0; i < holes; ++i) {
    for (std::size_t k = 0; k < kStrata; ++k) {
      std::snprintf(line, sizeof line,
                    "\"DATA\",\"BH%zu\",\"%zu.00\",\"%zu.00\",\"%s\",\"%zu\",\"U%zu\",\"\"\r\n", i,
                    k, k + 1, descriptions[(k + i) % 4], 201 + k % 4, k % 5);
      out << line;
    }
  }
  return path;
}

double PeakResidentMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0; // kilobytes on Linux
}

// Reads the file and, when `validate`, checks the holes as every command does before drawing.
void Read(benchmark::State& state, const fs::path& path, bool validate) {
  if (!fs::exists(path)) {
    state.SkipWithError("fixture not available");
    return;
  }
  const auto bytes = static_cast<std::int64_t>(fs::file_size(path));
  std::size_t holes = 0;
  for (auto _ : state) {
    const auto set = xklink::ReadBoreholes(path, xklink::Format::Ags);
    holes = set.holes.size();
    if (validate) {
      const auto diagnostics = xklink::ValidateBoreholes(set);
      benchmark::DoNotOptimize(diagnostics.data());
    }
  }
  state.SetBytesProcessed(bytes * static_cast<std::int64_t>(state.iterations()));
  state.counters["holes"] = static_cast<double>(holes);
  state.counters["size_MB"] = static_cast<double>(bytes) / 1e6;
  state.counters["peak_rss_MB"] = PeakResidentMegabytes();
}

const fs::path kRealFile =
    fs::path(XKLINKDC_REAL_DATA) / "dlr-city-airport/DLR_City_Airport_Extension.ags";

// The largest real file of the tests: about 100 locations of the DLR City Airport extension.
void Read_RealFile(benchmark::State& state) {
  Read(state, kRealFile, false);
}
void ReadAndValidate_RealFile(benchmark::State& state) {
  Read(state, kRealFile, true);
}

// The generated file, removed when the benchmarks end.
struct GeneratedFile {
  fs::path path = WriteGeneratedAgs(200'000'000);
  ~GeneratedFile() {
    std::error_code ignored;
    fs::remove(path, ignored);
  }
};

const fs::path& Generated() {
  static const GeneratedFile file;
  return file.path;
}

// A generated file of 200 MB, 60,000 holes: linear reading and bounded memory at the scale of a
// whole project. Reading alone first, so that its peak memory is that of reading.
void Read_Generated200MB(benchmark::State& state) {
  Read(state, Generated(), false);
}
void ReadAndValidate_Generated200MB(benchmark::State& state) {
  Read(state, Generated(), true);
}

} // namespace

BENCHMARK(Read_RealFile)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAndValidate_RealFile)->Unit(benchmark::kMillisecond);
BENCHMARK(Read_Generated200MB)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(ReadAndValidate_Generated200MB)->Unit(benchmark::kMillisecond)->Iterations(2);
