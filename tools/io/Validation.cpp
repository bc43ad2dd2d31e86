#include "Validation.h"

#include "Numbers.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace xklink {

namespace {

class SetValidator {
public:
  explicit SetValidator(const BoreholeSet& set) : m_set(set), m_out(set.diagnostics) {}

  std::vector<Diagnostic> Run() {
    for (const auto& hole : m_set.holes) {
      CheckHole(hole);
    }
    CheckNames();
    CheckCount();
    CheckSharedPositions();
    return std::move(m_out);
  }

private:
  SourceRef At(const SourceRef& where, const std::string& field) const {
    return {where.file, where.line, field};
  }

  void Error(SourceRef where, std::string message, const std::string& hole) {
    m_out.push_back(MakeError(std::move(where), std::move(message), hole));
  }
  void Warning(SourceRef where, std::string message, const std::string& hole) {
    m_out.push_back(MakeWarning(std::move(where), std::move(message), hole));
  }

  bool Finite(double value, const SourceRef& where, const std::string& field,
              const std::string& hole) {
    if (std::isfinite(value)) {
      return true;
    }
    Error(At(where, field), "not a finite number: " + FormatNumber(value), hole);
    return false;
  }

  void CheckHole(const HoleRecord& hole) {
    const auto& names = m_set.fields;
    Finite(hole.x, hole.where, names.holeX, hole.name);
    Finite(hole.y, hole.where, names.holeY, hole.name);
    const bool collarKnown = Finite(hole.top, hole.where, names.holeTop, hole.name);
    if (hole.strata.empty()) {
      Error(hole.where, "hole '" + hole.name + "' has no strata", hole.name);
      return;
    }
    const StratumRecord* above = nullptr; // the last stratum with finite values
    for (const auto& stratum : hole.strata) {
      const bool topFinite = Finite(stratum.dc.dTopGC, stratum.where, names.stratumTop, hole.name);
      const bool baseFinite =
          Finite(stratum.dc.dBotGC, stratum.where, names.stratumBottom, hole.name);
      if (!topFinite || !baseFinite) {
        continue;
      }
      CheckStratum(hole, stratum);
      if (above == nullptr && collarKnown) {
        CheckAgainstCollar(hole, stratum);
      } else if (above != nullptr) {
        CheckSequence(hole, *above, stratum);
      }
      above = &stratum;
    }
  }

  void CheckStratum(const HoleRecord& hole, const StratumRecord& stratum) {
    const double top = stratum.dc.dTopGC;
    const double base = stratum.dc.dBotGC;
    const auto where = At(stratum.where, m_set.fields.stratumTop);
    if (top < base) {
      Error(where,
            "top elevation " + FormatMetres(top) + " is below the base elevation " +
                FormatMetres(base) + ": the stratum is upside down",
            hole.name);
    } else if (top == base) {
      Warning(where,
              "top and base are both at elevation " + FormatMetres(top) +
                  ": the stratum has no thickness",
              hole.name);
    }
  }

  void CheckAgainstCollar(const HoleRecord& hole, const StratumRecord& first) {
    const double top = first.dc.dTopGC;
    const auto where = At(first.where, m_set.fields.stratumTop);
    if (top > hole.top) {
      Error(where,
            "the first stratum starts at elevation " + FormatMetres(top) +
                ", above the collar of hole '" + hole.name + "' at " + FormatMetres(hole.top),
            hole.name);
    } else if (top < hole.top) {
      Warning(where,
              "the log starts " + FormatMetres(hole.top - top) + " below the collar of hole '" +
                  hole.name + "': nothing is logged above elevation " + FormatMetres(top),
              hole.name);
    }
  }

  void CheckSequence(const HoleRecord& hole, const StratumRecord& above,
                     const StratumRecord& stratum) {
    const auto where = At(stratum.where, m_set.fields.stratumTop);
    const std::string aboveLine = "the stratum on line " + std::to_string(above.where.line);
    const double top = stratum.dc.dTopGC;
    if (top > above.dc.dTopGC) {
      Error(where,
            "strata not in downward order: top elevation " + FormatMetres(top) +
                " lies above the top " + FormatMetres(above.dc.dTopGC) + " of " + aboveLine,
            hole.name);
    } else if (top > above.dc.dBotGC) {
      Error(where,
            "overlaps " + aboveLine + " by " + FormatMetres(top - above.dc.dBotGC) +
                ": top elevation " + FormatMetres(top) + " lies above its base " +
                FormatMetres(above.dc.dBotGC),
            hole.name);
    } else if (top < above.dc.dBotGC) {
      Warning(where,
              "gap of " + FormatMetres(above.dc.dBotGC - top) + " below " + aboveLine +
                  ": nothing is logged between elevations " + FormatMetres(above.dc.dBotGC) +
                  " and " + FormatMetres(top),
              hole.name);
    }
  }

  void CheckNames() {
    std::map<std::string, const HoleRecord*> first;
    for (const auto& hole : m_set.holes) {
      const auto [it, inserted] = first.emplace(hole.name, &hole);
      if (!inserted) {
        Error(hole.where,
              "duplicate hole name '" + hole.name + "' (first at line " +
                  std::to_string(it->second->where.line) + ")",
              hole.name);
      }
    }
  }

  void CheckCount() {
    if (m_set.holes.size() < 2) {
      Error({m_set.source, 0, {}},
            std::to_string(m_set.holes.size()) + (m_set.holes.size() == 1 ? " hole" : " holes") +
                " to correlate: a section needs at least two",
            {});
    }
  }

  void CheckSharedPositions() {
    for (std::size_t i = 0; i < m_set.holes.size(); ++i) {
      const auto& hole = m_set.holes[i];
      for (std::size_t k = 0; k < i; ++k) {
        const auto& earlier = m_set.holes[k];
        if (std::hypot(hole.x - earlier.x, hole.y - earlier.y) < kSamePlanPositionTolerance) {
          Warning(At(hole.where, m_set.fields.holeX),
                  "hole '" + hole.name + "' stands at the same plan position as '" + earlier.name +
                      "' (line " + std::to_string(earlier.where.line) +
                      "): a section can take only one of them",
                  hole.name);
          break;
        }
      }
    }
  }

  const BoreholeSet& m_set;
  std::vector<Diagnostic> m_out;
};

} // namespace

std::vector<Diagnostic> ValidateBoreholes(const BoreholeSet& set) {
  return SetValidator(set).Run();
}

std::vector<Diagnostic> CheckSectionSpacing(const std::vector<HoleRecord>& section) {
  std::vector<Diagnostic> out;
  for (std::size_t i = 1; i < section.size(); ++i) {
    const auto& from = section[i - 1];
    const auto& to = section[i];
    if (std::hypot(to.x - from.x, to.y - from.y) < kSamePlanPositionTolerance) {
      out.push_back(MakeError(
          to.where,
          "holes '" + from.name + "' and '" + to.name + "' stand at the same plan position (" +
              FormatMetres(to.x) + ", " + FormatMetres(to.y) +
              "): the section between them has no length; leave one of them out",
          to.name));
    }
  }
  return out;
}

} // namespace xklink
