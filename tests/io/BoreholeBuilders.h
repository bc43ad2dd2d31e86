// Borehole sets built in code, with places as a JSON file would give them.
#pragma once

#include "BoreholeSet.h"

#include <string>
#include <vector>

namespace xklink::testing {

struct Bed {
  std::wstring code;
  double top;
  double bottom;
};

// A hole whose record starts on `line` of "set.json" and whose strata follow one per line.
inline HoleRecord MakeHole(const std::string& name, double x, double y, double top,
                           const std::vector<Bed>& beds, std::size_t line) {
  HoleRecord hole;
  hole.name = name;
  hole.x = x;
  hole.y = y;
  hole.top = top;
  hole.where = {"set.json", line, "name"};
  for (std::size_t i = 0; i < beds.size(); ++i) {
    StratumRecord stratum;
    stratum.dc.strName = beds[i].code;
    stratum.dc.dTopGC = beds[i].top;
    stratum.dc.dBotGC = beds[i].bottom;
    stratum.where = {"set.json", line + 1 + i, "code"};
    hole.strata.push_back(stratum);
  }
  return hole;
}

inline BoreholeSet MakeSet(std::vector<HoleRecord> holes) {
  BoreholeSet set;
  set.source = "set.json";
  set.holes = std::move(holes);
  return set;
}

} // namespace xklink::testing
