#include "Fixtures.h"

#include "support/RandomBoreholes.h"

#include "ReadBoreholes.h"

#include <filesystem>
#include <map>

namespace bench {

namespace {

std::vector<HolePair> ConsecutivePairs(const std::vector<DataType::_sZK>& holes) {
  std::vector<HolePair> pairs;
  for (std::size_t i = 1; i < holes.size(); ++i) {
    if (!holes[i - 1].vecDC.empty() && !holes[i].vecDC.empty()) {
      pairs.emplace_back(holes[i - 1], holes[i]);
    }
  }
  return pairs;
}

std::vector<DataType::_sZK> ReadReal(const std::string& relative) {
  const std::filesystem::path path = std::filesystem::path(XKLINKDC_REAL_DATA) / relative;
  if (!std::filesystem::exists(path)) {
    return {};
  }
  const xklink::BoreholeSet set = xklink::ReadBoreholes(path, xklink::Format::Ags);
  return xklink::ToZKs(set.holes);
}

xktest::RandomBoreholeOptions TypicalOptions(std::mt19937_64& rng) {
  xktest::RandomBoreholeOptions opt;
  opt.minStrata = 10;
  opt.maxStrata = 30;
  opt.codeCount = xktest::UniformInt(rng, 4, 8);
  return opt;
}

std::vector<HolePair> RandomPairs(std::size_t count, uint64_t seed) {
  std::mt19937_64 rng(seed);
  std::vector<HolePair> pairs;
  pairs.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const xktest::RandomBoreholeOptions opt = TypicalOptions(rng);
    pairs.push_back(xktest::RandomBoreholePair(rng, opt, 0.0, 0.1));
  }
  return pairs;
}

} // namespace

const std::vector<HolePair>& RealPairs() {
  static const std::vector<HolePair> pairs = [] {
    std::vector<HolePair> all;
    for (const char* file : {"nle-battersea/21-7-10-NLE.ags", "m621-widening/M621_Widening.ags",
                             "dlr-woolwich/DLR_Woolwich_Extension.ags"}) {
      for (HolePair& pair : ConsecutivePairs(ReadReal(file))) {
        // Holes at one plan position (a borehole and its re-drill) are not a section.
        if (pair.first.dX != pair.second.dX || pair.first.dY != pair.second.dY) {
          all.push_back(std::move(pair));
        }
      }
    }
    return all;
  }();
  return pairs;
}

const std::vector<HolePair>& RandomTypicalPairs() {
  static const std::vector<HolePair> pairs = RandomPairs(256, 20261122);
  return pairs;
}

const HolePair& LongLogPair(int strata) {
  static std::map<int, HolePair> cache;
  auto it = cache.find(strata);
  if (it == cache.end()) {
    std::mt19937_64 rng(static_cast<uint64_t>(strata) * 7919u);
    DataType::_sZK west = xktest::LongLog(rng, strata, 6, L"WEST");
    DataType::_sZK east = xktest::LongLog(rng, strata, 6, L"EAST");
    west.dX = 0.0;
    east.dX = 25.0;
    it = cache.emplace(strata, HolePair{std::move(west), std::move(east)}).first;
  }
  return it->second;
}

const std::vector<HolePair>& SitePairs() {
  static const std::vector<HolePair> pairs =
      ConsecutivePairs(ReadReal("dlr-woolwich/DLR_Woolwich_Extension.ags"));
  return pairs;
}

const std::vector<HolePair>& BatchPairs() {
  static const std::vector<HolePair> pairs = RandomPairs(100000, 7);
  return pairs;
}

} // namespace bench
