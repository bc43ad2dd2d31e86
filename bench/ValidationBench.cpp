// The checks of a site file with very many holes: 150,000 holes along two survey lines, one in a
// hundred re-drilled beside its first hole. Holes in a line share their easting, which is what
// made a check that sorted by easting, or compared every pair, slow (60 s for this file).
#include "HolePolicy.h"
#include "Validation.h"

#include <benchmark/benchmark.h>

namespace {

const xklink::BoreholeSet& ManyHoles() {
  static const xklink::BoreholeSet set = [] {
    xklink::BoreholeSet out;
    out.source = "many.json";
    for (int i = 0; i < 150000; ++i) {
      xklink::HoleRecord hole;
      hole.name = "H" + std::to_string(i);
      hole.x = i % 2 == 0 ? 1000.0 : 2000.0;
      hole.y = 0.5 * i;
      hole.top = 10.0;
      hole.where = {out.source, static_cast<std::size_t>(i + 1), "name"};
      for (const double base : {5.0, 1.0}) {
        xklink::StratumRecord stratum;
        stratum.dc.strName = base > 2.0 ? L"A" : L"B";
        stratum.dc.dTopGC = hole.strata.empty() ? 10.0 : hole.strata.back().dc.dBotGC;
        stratum.dc.dBotGC = base;
        stratum.where = hole.where;
        hole.strata.push_back(stratum);
      }
      out.holes.push_back(hole);
      if (i % 100 == 0) {
        hole.name += "A";
        hole.x += 0.0002;
        out.holes.push_back(hole);
      }
    }
    return out;
  }();
  return set;
}

void Validation_ManyHoles(benchmark::State& state) {
  std::size_t count = 0;
  for (auto _ : state) {
    xklink::ValidateBoreholes(ManyHoles(), [&count](const xklink::Diagnostic&) { ++count; });
  }
  benchmark::DoNotOptimize(count);
  state.counters["holes"] = static_cast<double>(ManyHoles().holes.size());
}

void HolePolicy_ManyHoles(benchmark::State& state) {
  std::size_t count = 0;
  const xklink::DiagnosticSink sink = [&count](const xklink::Diagnostic&) { ++count; };
  for (auto _ : state) {
    benchmark::DoNotOptimize(xklink::ChooseHoles(ManyHoles(), {}, sink, sink).holes.size());
  }
  benchmark::DoNotOptimize(count);
}

} // namespace

BENCHMARK(Validation_ManyHoles)->Unit(benchmark::kMillisecond);
BENCHMARK(HolePolicy_ManyHoles)->Unit(benchmark::kMillisecond);
