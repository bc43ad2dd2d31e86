// The batch: 100,000 typical pairs through the re-entrant entry, each thread with its own
// correlation context, on one and on two threads.
#include "Fixtures.h"

#include <benchmark/benchmark.h>

#include <thread>

namespace {

void Batch_Context(benchmark::State& state) {
  const std::vector<bench::HolePair>& pairs = bench::BatchPairs();
  const auto threads = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    std::vector<std::jthread> workers;
    for (std::size_t t = 0; t < threads; ++t) {
      workers.emplace_back([&pairs, t, threads] {
        XKLinkDc::CorrelationContext context;
        std::vector<DataType::_sLinkLine> lines;
        for (std::size_t i = t; i < pairs.size(); i += threads) {
          lines.clear();
          context.LinkDcLine(pairs[i].first, pairs[i].second, lines);
          benchmark::DoNotOptimize(lines.data());
        }
      });
    }
  }
  state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(pairs.size()));
}

} // namespace

BENCHMARK(Batch_Context)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);
