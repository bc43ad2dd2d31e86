// Long logs: thousands of thin layers of six codes. The plain implementation compares every
// equal-code pair with every other, so it is measured only on short logs; the library is measured
// up to 10,000 strata to show how it grows with the number of equal-code pairs.
#include "Fixtures.h"
#include "reference/ReferenceCorrelation.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// Pairs of strata with equal codes at the root: the size of the problem.
double EqualCodePairs(const bench::HolePair& pair) {
  double count = 0;
  for (const auto& a : pair.first.vecDC) {
    for (const auto& b : pair.second.vecDC) {
      count += a.strName == b.strName ? 1 : 0;
    }
  }
  return count;
}

long StatusKilobytes(const char* key) {
  FILE* status = std::fopen("/proc/self/status", "r");
  if (status == nullptr) {
    return -1;
  }
  char line[256];
  long value = -1;
  while (std::fgets(line, sizeof line, status) != nullptr) {
    if (std::strncmp(line, key, std::strlen(key)) == 0) {
      value = std::strtol(line + std::strlen(key), nullptr, 10);
    }
  }
  std::fclose(status);
  return value;
}

// Peak memory that one correlation of the pair adds to the process, in MiB: measured in a forked
// child, after returning the free heap to the system and resetting the peak, so that neither the
// benchmark's own allocations nor memory left over from earlier runs count. The child correlates
// on a fresh context: the module-wide state keeps the working storage of the timed runs.
double PeakMegabytes(const bench::HolePair& pair) {
  int channel[2];
  if (pipe(channel) != 0) {
    return -1;
  }
  const pid_t child = fork();
  if (child == 0) {
    close(channel[0]);
    malloc_trim(0);
    if (FILE* clear = std::fopen("/proc/self/clear_refs", "w")) {
      std::fputs("5", clear); // resets VmHWM to the current resident size
      std::fclose(clear);
    }
    const long before = StatusKilobytes("VmRSS:");
    std::vector<DataType::_sLinkLine> lines;
    XKLinkDc::CorrelationContext context;
    context.LinkDcLine(pair.first, pair.second, lines);
    const long peak = StatusKilobytes("VmHWM:") - before;
    const ssize_t written = write(channel[1], &peak, sizeof peak);
    _exit(written == sizeof peak ? 0 : 1);
  }
  close(channel[1]);
  long peak = -1;
  if (read(channel[0], &peak, sizeof peak) != sizeof peak) {
    peak = -1;
  }
  close(channel[0]);
  waitpid(child, nullptr, 0);
  return static_cast<double>(peak) / 1024.0;
}

template <class Correlate> void RunLongLog(benchmark::State& state, Correlate correlate) {
  const bench::HolePair& pair = bench::LongLogPair(static_cast<int>(state.range(0)));
  std::vector<DataType::_sLinkLine> lines;
  for (auto _ : state) {
    lines.clear();
    correlate(pair.first, pair.second, lines);
    benchmark::DoNotOptimize(lines.data());
  }
  const double pairs = EqualCodePairs(pair);
  state.counters["equal_code_pairs"] = pairs;
  state.SetComplexityN(static_cast<int64_t>(pairs));
}

void LongLog_Library(benchmark::State& state) {
  RunLongLog(state, LinkDcLine);
  state.counters["peak_MiB"] = PeakMegabytes(bench::LongLogPair(static_cast<int>(state.range(0))));
}
void LongLog_Plain(benchmark::State& state) {
  RunLongLog(state, reference::ReferenceLinkDcLine);
}

// Two logs of `strata` beds that share no code, lifted by 1e7 (a survey datum far from sea
// level): every bed pinches out, two lines each, and merging the lines must cost about what it
// costs at ordinary elevations, not grow with the square of their number. `lift` 0 is the same
// at ordinary elevations.
bench::HolePair UnsharedLogs(int strata, double lift) {
  bench::HolePair pair;
  for (DataType::_sZK* zk : {&pair.first, &pair.second}) {
    const bool west = zk == &pair.first;
    zk->dX = west ? 0.0 : 25.0;
    zk->dTopGC = lift + 100.0;
    for (int k = 0; k < strata; ++k) {
      DataType::_sZKDC dc;
      dc.strName = (west ? L"W" : L"E") + std::to_wstring(k);
      dc.dTopGC = lift + 100.0 - 0.25 * k - (west ? 0.0 : 0.125);
      dc.dBotGC = dc.dTopGC - 0.25;
      zk->vecDC.push_back(dc);
    }
  }
  return pair;
}

void UnsharedLines_Library(benchmark::State& state) {
  const bench::HolePair pair = UnsharedLogs(20000, static_cast<double>(state.range(0)));
  std::vector<DataType::_sLinkLine> lines;
  for (auto _ : state) {
    lines.clear();
    LinkDcLine(pair.first, pair.second, lines);
    benchmark::DoNotOptimize(lines.data());
  }
}

// A sequence that repeats upwards as it came down (C0 C1 ... Cn Cn ... C1 C0) in a log beside a
// hole of one bed: every code an envelope of the ones inside it, fused one at a time and closed
// again one level further in. Before the fusing of long run lists kept its search up to date, 4,000
// strata took 11.6 s and 10,000 took 205 s.
bench::HolePair NestedEnvelopes(int strata) {
  bench::HolePair pair;
  pair.first.dTopGC = 100.0;
  for (int k = 0; k < strata; ++k) {
    DataType::_sZKDC dc;
    dc.strName = L"C" + std::to_wstring(std::min(k, strata - 1 - k));
    dc.dTopGC = 100.0 - 0.01 * k;
    dc.dBotGC = dc.dTopGC - 0.01;
    pair.first.vecDC.push_back(dc);
  }
  pair.second.dX = 50.0;
  pair.second.dTopGC = 100.0;
  pair.second.vecDC = {pair.first.vecDC.front()};
  return pair;
}

void NestedEnvelopes_Library(benchmark::State& state) {
  const bench::HolePair pair = NestedEnvelopes(static_cast<int>(state.range(0)));
  std::vector<DataType::_sLinkLine> lines;
  for (auto _ : state) {
    lines.clear();
    LinkDcLine(pair.first, pair.second, lines);
    benchmark::DoNotOptimize(lines.data());
  }
}

} // namespace

BENCHMARK(NestedEnvelopes_Library)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);

BENCHMARK(LongLog_Library)
    ->Arg(250)
    ->Arg(500)
    ->Arg(1000)
    ->Arg(2000)
    ->Arg(4000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);
BENCHMARK(UnsharedLines_Library)->Arg(0)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(LongLog_Plain)->Arg(250)->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(1);
