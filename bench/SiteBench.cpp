// A site: every consecutive pair of the largest real file, as `xklink section` runs it.
#include "Fixtures.h"

#include "reference/ReferenceCorrelation.h"

#include <benchmark/benchmark.h>

namespace {

template <class Correlate> void RunSite(benchmark::State& state, Correlate correlate) {
  const std::vector<bench::HolePair>& pairs = bench::SitePairs();
  if (pairs.empty()) {
    state.SkipWithError("fixture not available (real data missing)");
    return;
  }
  std::vector<DataType::_sLinkLine> lines;
  for (auto _ : state) {
    for (const bench::HolePair& pair : pairs) {
      lines.clear();
      correlate(pair.first, pair.second, lines);
      benchmark::DoNotOptimize(lines.data());
    }
  }
  state.counters["pairs"] = static_cast<double>(pairs.size());
}

void Site_Library(benchmark::State& state) { RunSite(state, LinkDcLine); }
void Site_Plain(benchmark::State& state) { RunSite(state, reference::ReferenceLinkDcLine); }

} // namespace

BENCHMARK(Site_Library)->Unit(benchmark::kMicrosecond);
BENCHMARK(Site_Plain)->Unit(benchmark::kMicrosecond);
