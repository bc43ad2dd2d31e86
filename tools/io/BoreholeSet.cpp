#include "BoreholeSet.h"

#include "Text.h"

#include <utility>

namespace xklink {

DataType::_sZK HoleRecord::ToZK() const {
  DataType::_sZK zk;
  zk.strName = FromUtf8(name, where);
  zk.dTopGC = top;
  zk.dX = x;
  zk.dY = y;
  zk.vecDC.reserve(strata.size());
  for (const auto& stratum : strata) {
    zk.vecDC.push_back(stratum.dc);
  }
  return zk;
}

std::vector<DataType::_sZK> ToZKs(const std::vector<HoleRecord>& holes) {
  std::vector<DataType::_sZK> out;
  out.reserve(holes.size());
  for (const auto& hole : holes) {
    out.push_back(hole.ToZK());
  }
  return out;
}

void MergeRepeatedCodes(BoreholeSet& set) {
  for (auto& hole : set.holes) {
    std::vector<StratumRecord> merged;
    merged.reserve(hole.strata.size());
    for (auto& stratum : hole.strata) {
      if (!merged.empty()) {
        auto& above = merged.back().dc;
        const auto& dc = stratum.dc;
        // Only well-formed strata are joined: joining an upside-down stratum to its neighbour
        // would hide the fault from the validation.
        const bool wellFormed = above.dTopGC >= above.dBotGC && dc.dTopGC >= dc.dBotGC;
        if (wellFormed && above.strName == dc.strName && above.dBotGC == dc.dTopGC &&
            above.dAux == dc.dAux && above.bAux == dc.bAux) {
          above.dBotGC = dc.dBotGC;
          continue;
        }
      }
      merged.push_back(std::move(stratum));
    }
    hole.strata = std::move(merged);
  }
}

} // namespace xklink
