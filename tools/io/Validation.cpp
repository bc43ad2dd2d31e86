#include "Validation.h"

#include "Numbers.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <unordered_map>

namespace xklink {

namespace {

class SetValidator {
public:
  SetValidator(const BoreholeSet& set, const DiagnosticSink& sink) : m_set(set), m_sink(sink) {}

  void Holes() {
    for (const auto& hole : m_set.holes) {
      CheckHole(hole);
    }
    CheckNames();
  }

  void Set() {
    CheckCount();
    CheckGroundLevels();
    CheckSharedPositions();
  }

private:
  SourceRef At(const SourceRef& where, const std::string& field) const {
    return {where.file, where.line, field};
  }

  void Error(SourceRef where, std::string message, const std::string& hole) {
    m_sink(MakeError(std::move(where), std::move(message), hole));
  }
  void Warning(SourceRef where, std::string message, const std::string& hole) {
    m_sink(MakeWarning(std::move(where), std::move(message), hole));
  }

  // False, with an error, for a value that is not finite or lies beyond `limit` in magnitude.
  bool Usable(double value, double limit, const char* what, const SourceRef& where,
              const std::string& field, const std::string& hole) {
    if (!std::isfinite(value)) {
      Error(At(where, field), "not a finite number: " + FormatNumber(value), hole);
      return false;
    }
    if (std::fabs(value) > limit) {
      Error(At(where, field),
            std::string(what) + " " + FormatNumber(value) + " lies beyond ±" + FormatMetres(limit) +
                " m: no borehole can have it",
            hole);
      return false;
    }
    return true;
  }

  void CheckHole(const HoleRecord& hole) {
    const auto& names = m_set.fields;
    Usable(hole.x, kMaxCoordinate, "coordinate", hole.where, names.holeX, hole.name);
    Usable(hole.y, kMaxCoordinate, "coordinate", hole.where, names.holeY, hole.name);
    const bool collarKnown =
        Usable(hole.top, kMaxElevation, "elevation", hole.where, names.holeTop, hole.name);
    if (hole.strata.empty()) {
      Error(hole.where, "hole '" + hole.name + "' has no strata", hole.name);
      return;
    }
    const StratumRecord* above = nullptr; // the last stratum with usable values
    for (const auto& stratum : hole.strata) {
      const bool topUsable = Usable(stratum.dc.dTopGC, kMaxElevation, "elevation", stratum.where,
                                    names.stratumTop, hole.name);
      const bool baseUsable = Usable(stratum.dc.dBotGC, kMaxElevation, "elevation", stratum.where,
                                     names.stratumBottom, hole.name);
      if (!topUsable || !baseUsable) {
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

  // Said as the section takes it: one warning when no hole has a ground level, one per hole when
  // only some lack it.
  void CheckGroundLevels() {
    const auto known = std::count_if(m_set.holes.begin(), m_set.holes.end(),
                                     [](const HoleRecord& h) { return h.groundLevelKnown; });
    if (known == 0 && !m_set.holes.empty()) {
      Warning({m_set.source, 0, m_set.fields.holeTop}, NoGroundLevelMessage(), {});
      return;
    }
    for (const auto& hole : m_set.holes) {
      if (!hole.groundLevelKnown) {
        Warning(At(hole.where, m_set.fields.holeTop), MissingGroundLevelMessage(hole.name),
                hole.name);
      }
    }
  }

  void CheckSharedPositions() {
    std::vector<const HoleRecord*> holes;
    holes.reserve(m_set.holes.size());
    for (const auto& hole : m_set.holes) {
      holes.push_back(&hole);
    }
    const std::vector<std::size_t> same = SamePlanPositionAs(holes);
    for (std::size_t i = 0; i < holes.size(); ++i) {
      if (same[i] != i) {
        const auto& earlier = *holes[same[i]];
        Warning(At(holes[i]->where, m_set.fields.holeX),
                "hole '" + holes[i]->name + "' stands at the same plan position as '" +
                    earlier.name + "' (line " + std::to_string(earlier.where.line) +
                    "): a section can take only one of them",
                holes[i]->name);
      }
    }
  }

  const BoreholeSet& m_set;
  const DiagnosticSink& m_sink;
};

struct CellHash {
  std::size_t operator()(const std::pair<std::int64_t, std::int64_t>& cell) const {
    const auto x = static_cast<std::uint64_t>(cell.first);
    const auto y = static_cast<std::uint64_t>(cell.second);
    return static_cast<std::size_t>(x * 0x9E3779B97F4A7C15ull ^ (y + 0x632BE59BD9B4E019ull));
  }
};

} // namespace

std::string NoGroundLevelMessage() {
  return "no hole has a ground level: the section is drawn in depth below ground";
}

std::string MissingGroundLevelMessage(const std::string& hole) {
  return "hole '" + hole + "' has no ground level, unlike other holes of the file";
}

void ValidateHoles(const BoreholeSet& set, const DiagnosticSink& sink) {
  SetValidator(set, sink).Holes();
}

void ValidateBoreholes(const BoreholeSet& set, const DiagnosticSink& sink) {
  for (const Diagnostic& d : set.diagnostics) {
    sink(d);
  }
  SetValidator validator(set, sink);
  validator.Holes();
  validator.Set();
}

std::vector<Diagnostic> ValidateBoreholes(const BoreholeSet& set) {
  std::vector<Diagnostic> out;
  ValidateBoreholes(set, [&out](const Diagnostic& d) { out.push_back(d); });
  return out;
}

std::vector<std::size_t> SamePlanPositionAs(const std::vector<const HoleRecord*>& holes) {
  // Only the first hole of each position enters the grid. Holes kept there are at least a
  // tolerance apart, so a cell holds a handful at most, and each hole looks at nine cells.
  using Cell = std::pair<std::int64_t, std::int64_t>;
  std::unordered_map<Cell, std::vector<std::size_t>, CellHash> grid;
  std::vector<std::size_t> out(holes.size());
  for (std::size_t i = 0; i < holes.size(); ++i) {
    out[i] = i;
    const HoleRecord& hole = *holes[i];
    if (!(std::fabs(hole.x) <= kMaxCoordinate && std::fabs(hole.y) <= kMaxCoordinate)) {
      continue; // not a position (NaN fails the test too); the validation reports it
    }
    const Cell cell{static_cast<std::int64_t>(std::floor(hole.x / kSamePlanPositionTolerance)),
                    static_cast<std::int64_t>(std::floor(hole.y / kSamePlanPositionTolerance))};
    for (std::int64_t dx = -1; dx <= 1; ++dx) {
      for (std::int64_t dy = -1; dy <= 1; ++dy) {
        const auto found = grid.find({cell.first + dx, cell.second + dy});
        if (found == grid.end()) {
          continue;
        }
        for (const std::size_t k : found->second) {
          const HoleRecord& earlier = *holes[k];
          if (std::hypot(hole.x - earlier.x, hole.y - earlier.y) < kSamePlanPositionTolerance) {
            out[i] = std::min(out[i] == i ? k : out[i], k);
          }
        }
      }
    }
    if (out[i] == i) {
      grid[cell].push_back(i);
    }
  }
  return out;
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
