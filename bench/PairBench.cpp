// Typical pairs: what an engineer waits for when redrawing a section interactively. Each
// iteration correlates one pair into section lines, cycling through the fixture.
#include "Fixtures.h"

#include "reference/ReferenceCorrelation.h"

#include <benchmark/benchmark.h>

namespace {

template <class Correlate>
void RunPairs(benchmark::State& state, const std::vector<bench::HolePair>& pairs,
              Correlate correlate) {
  if (pairs.empty()) {
    state.SkipWithError("fixture not available (real data missing)");
    return;
  }
  std::vector<DataType::_sLinkLine> lines;
  std::size_t next = 0;
  for (auto _ : state) {
    const bench::HolePair& pair = pairs[next];
    next = next + 1 == pairs.size() ? 0 : next + 1;
    lines.clear();
    correlate(pair.first, pair.second, lines);
    benchmark::DoNotOptimize(lines.data());
  }
  state.SetItemsProcessed(state.iterations());
}

void TypicalReal_Library(benchmark::State& state) {
  RunPairs(state, bench::RealPairs(), LinkDcLine);
}
void TypicalReal_Plain(benchmark::State& state) {
  RunPairs(state, bench::RealPairs(), reference::ReferenceLinkDcLine);
}
void TypicalRandom_Library(benchmark::State& state) {
  RunPairs(state, bench::RandomTypicalPairs(), LinkDcLine);
}
void TypicalRandom_Plain(benchmark::State& state) {
  RunPairs(state, bench::RandomTypicalPairs(), reference::ReferenceLinkDcLine);
}

} // namespace

BENCHMARK(TypicalReal_Library)->Unit(benchmark::kMicrosecond);
BENCHMARK(TypicalReal_Plain)->Unit(benchmark::kMicrosecond);
BENCHMARK(TypicalRandom_Library)->Unit(benchmark::kMicrosecond);
BENCHMARK(TypicalRandom_Plain)->Unit(benchmark::kMicrosecond);
