#include "HolePolicy.h"

#include "HoleSelection.h"
#include "Validation.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace xklink {

namespace {

// How far the log of a hole reaches below its collar.
double LoggedDepth(const HoleRecord& hole) {
  double deepest = hole.top;
  for (const auto& stratum : hole.strata) {
    deepest = std::min(deepest, stratum.dc.dBotGC);
  }
  return hole.top - deepest;
}

// "hole 'BH3' has no strata" -> "has no strata": the left-out warning names the hole already.
std::string WithoutHoleName(const std::string& message, const std::string& hole) {
  const std::string prefix = "hole '" + hole + "' ";
  return message.rfind(prefix, 0) == 0 ? message.substr(prefix.size()) : message;
}

std::string NameList(const std::vector<std::string>& names) {
  constexpr std::size_t kShown = 20;
  std::string out;
  for (std::size_t i = 0; i < names.size() && i < kShown; ++i) {
    out += (i == 0 ? "" : ", ") + names[i];
  }
  if (names.size() > kShown) {
    out += " and " + std::to_string(names.size() - kShown) + " more";
  }
  return out;
}

class Chooser {
public:
  Chooser(const BoreholeSet& set, const HolePolicy& policy, const DiagnosticSink& warnings,
          const DiagnosticSink& errors)
      : m_set(set), m_policy(policy), m_warnings(warnings), m_errors(errors),
        m_everyHole(policy.named.empty()) {}

  ChosenHoles Run() {
    CollectFaults();
    Candidates();
    if (m_everyHole && !m_policy.strict) {
      std::erase_if(m_candidates, [&](const HoleRecord* h) { return LeaveOutIfFaulty(*h); });
      // Holes the reader could not build (geology rows without a location row) are out already.
      for (const auto& [name, fault] : m_faults) {
        if (m_byName.count(name) == 0 && m_excluded.count(name) == 0) {
          LeaveOut(name, fault.first, fault.more);
        }
      }
    }
    GroundLevels();
    SharedPositions();
    Report();
    return Result();
  }

private:
  // The first error of each hole and the count of the others, from the reader and the checks.
  struct Fault {
    Diagnostic first;
    std::size_t more = 0;
  };

  void ForEachDiagnostic(const DiagnosticSink& sink) const {
    for (const Diagnostic& d : m_set.diagnostics) {
      sink(d);
    }
    ValidateHoles(m_set, sink);
  }

  void CollectFaults() {
    // Faults are looked at once here and the diagnostics walked again in Report, rather than kept:
    // a file of a million bad rows must not be held as a million messages.
    ForEachDiagnostic([this](const Diagnostic& d) {
      if (d.severity == Severity::Error && !d.hole.empty()) {
        const auto [it, inserted] = m_faults.try_emplace(d.hole, Fault{d});
        it->second.more += inserted ? 0 : 1;
      }
    });
  }

  bool Known(const std::string& name) const {
    return m_byName.count(name) > 0 || m_set.skipped.count(name) > 0 || m_faults.count(name) > 0;
  }

  void Candidates() {
    for (const auto& hole : m_set.holes) {
      m_byName.try_emplace(hole.name, &hole);
    }
    if (!m_everyHole && !m_policy.excluded.empty()) {
      throw SelectionError("holes to exclude go with a section of every hole, not with holes "
                           "named one by one");
    }
    for (const std::string& name : m_policy.excluded) {
      if (!Known(name)) {
        throw SelectionError(UnknownHoleMessage(m_set, name));
      }
      m_excluded.insert(name);
    }
    if (m_everyHole) {
      for (const auto& hole : m_set.holes) {
        if (m_excluded.count(hole.name) == 0) {
          m_candidates.push_back(&hole);
        }
      }
      return;
    }
    for (const std::size_t i : FindHoles(m_set, m_policy.named)) {
      m_candidates.push_back(&m_set.holes[i]);
      m_named.insert(m_set.holes[i].name);
    }
  }

  // Leaves the hole out for its fault, if it has one.
  bool LeaveOutIfFaulty(const HoleRecord& hole) {
    const auto fault = m_faults.find(hole.name);
    return fault != m_faults.end() && LeaveOut(hole.name, fault->second.first, fault->second.more);
  }

  // Leaves the hole out with one warning at the place of `why`. Always true.
  bool LeaveOut(const std::string& name, const Diagnostic& why, std::size_t more = 0) {
    std::string message = "hole '" + name + "' left out: " + WithoutHoleName(why.message, name);
    if (more > 0) {
      message += " (and " + std::to_string(more) + " more problem" + (more == 1 ? "" : "s") + ")";
    }
    m_leftOut.emplace(name, MakeWarning(why.where, std::move(message), name));
    return true;
  }

  // A problem the policy finds itself: in strict mode, or in a hole the user named, it refuses the
  // section; otherwise the hole is left out.
  bool Problem(const HoleRecord& hole, const SourceRef& where, const std::string& message) {
    const Diagnostic d = MakeError(where, message, hole.name);
    if (m_everyHole && !m_policy.strict) {
      return LeaveOut(hole.name, d);
    }
    m_errors(d);
    return false;
  }

  SourceRef At(const HoleRecord& hole, const std::string& field) const {
    return {hole.where.file, hole.where.line, field};
  }

  void GroundLevels() {
    const bool anyKnown = std::any_of(m_candidates.begin(), m_candidates.end(),
                                      [](const HoleRecord* h) { return h->groundLevelKnown; });
    if (!anyKnown && !m_candidates.empty()) {
      m_depthBelowGround = true;
      const Diagnostic d =
          m_policy.strict
              ? MakeError({m_set.source, 0, m_set.fields.holeTop}, NoGroundLevelMessage())
              : MakeWarning({m_set.source, 0, m_set.fields.holeTop}, NoGroundLevelMessage());
      (d.severity == Severity::Error ? m_errors : m_warnings)(d);
      return;
    }
    std::erase_if(m_candidates, [&](const HoleRecord* h) {
      return !h->groundLevelKnown &&
             Problem(*h, At(*h, m_set.fields.holeTop), MissingGroundLevelMessage(h->name));
    });
  }

  void SharedPositions() {
    const std::vector<std::size_t> same = SamePlanPositionAs(m_candidates);
    if (!m_everyHole) {
      // The user put both in the section; only side by side (CheckSectionSpacing) are they wrong.
      for (std::size_t i = 0; i < same.size(); ++i) {
        if (same[i] != i) {
          m_warnings(SharedPosition(*m_candidates[i], *m_candidates[same[i]], false));
        }
      }
      return;
    }
    // The hole kept at each position: the deepest log, the first in the file on a tie.
    std::vector<std::size_t> kept(same.size());
    for (std::size_t i = 0; i < same.size(); ++i) {
      kept[i] = i;
      std::size_t& best = kept[same[i]];
      if (same[i] != i && LoggedDepth(*m_candidates[i]) > LoggedDepth(*m_candidates[best])) {
        best = i;
      }
    }
    std::vector<const HoleRecord*> out;
    for (std::size_t i = 0; i < same.size(); ++i) {
      const std::size_t keeper = kept[same[i]];
      if (keeper == i) {
        out.push_back(m_candidates[i]);
        continue;
      }
      const Diagnostic d = SharedPosition(*m_candidates[i], *m_candidates[keeper], true);
      if (!Problem(*m_candidates[i], d.where, d.message)) {
        out.push_back(m_candidates[i]);
      }
    }
    m_candidates = std::move(out);
  }

  Diagnostic SharedPosition(const HoleRecord& hole, const HoleRecord& other, bool keepsOther) {
    const std::string message =
        "hole '" + hole.name + "' stands at the same plan position as '" + other.name + "' (line " +
        std::to_string(other.where.line) + ")" +
        (keepsOther ? ", whose log goes deeper: a section takes one hole of a position"
                    : ": a section can take only one of them");
    return MakeWarning(At(hole, m_set.fields.holeX), message, hole.name);
  }

  // Routes every diagnostic: those of holes out of the section are dropped (a left-out hole gets
  // its one warning instead), those of holes in it keep their severity, and rows that the reader
  // ignored are warnings unless the policy is strict.
  void Report() {
    ForEachDiagnostic([this](const Diagnostic& d) {
      if (!d.hole.empty()) {
        if (m_excluded.count(d.hole) > 0 || m_leftOut.count(d.hole) > 0 ||
            (!m_everyHole && m_named.count(d.hole) == 0)) {
          return;
        }
        (d.severity == Severity::Error ? m_errors : m_warnings)(d);
        return;
      }
      if (d.severity == Severity::Error && !m_policy.strict) {
        m_warnings(MakeWarning(d.where, d.message));
      } else {
        (d.severity == Severity::Error ? m_errors : m_warnings)(d);
      }
    });
    // In file order, the holes of the location table first.
    std::vector<std::string> names;
    for (const auto& hole : m_set.holes) {
      if (const auto it = m_leftOut.find(hole.name); it != m_leftOut.end()) {
        m_warnings(it->second);
        names.push_back(hole.name);
      }
    }
    for (const auto& [name, warning] : m_leftOut) {
      if (m_byName.count(name) == 0) {
        m_warnings(warning);
        names.push_back(name);
      }
    }
    if (!names.empty()) {
      m_warnings(MakeWarning({m_set.source, 0, {}},
                             std::to_string(names.size()) + " of " +
                                 std::to_string(m_set.holes.size()) +
                                 " holes left out of the section: " + NameList(names)));
    }
    m_leftOutNames = std::move(names);
  }

  ChosenHoles Result() {
    ChosenHoles out;
    out.depthBelowGround = m_depthBelowGround;
    out.leftOut = std::move(m_leftOutNames);
    for (const HoleRecord* hole : m_candidates) {
      out.holes.push_back(*hole);
    }
    if (m_everyHole && out.holes.size() < 2) {
      std::string message =
          "a section needs at least two holes, the file has " + std::to_string(m_set.holes.size());
      if (m_set.holes.size() >= 2) {
        message += " but only " + std::to_string(out.holes.size()) + " can be used";
      }
      m_errors(MakeError({m_set.source, 0, {}}, message));
    }
    return out;
  }

  const BoreholeSet& m_set;
  const HolePolicy& m_policy;
  const DiagnosticSink& m_warnings;
  const DiagnosticSink& m_errors;
  const bool m_everyHole;
  std::map<std::string, Fault> m_faults;
  std::map<std::string, const HoleRecord*> m_byName; // the first hole of each name
  std::set<std::string> m_excluded;
  std::set<std::string> m_named;
  std::vector<const HoleRecord*> m_candidates;
  std::map<std::string, Diagnostic> m_leftOut; // hole -> its one warning
  std::vector<std::string> m_leftOutNames;
  bool m_depthBelowGround = false;
};

} // namespace

ChosenHoles ChooseHoles(const BoreholeSet& set, const HolePolicy& policy,
                        const DiagnosticSink& warnings, const DiagnosticSink& errors) {
  return Chooser(set, policy, warnings, errors).Run();
}

} // namespace xklink
