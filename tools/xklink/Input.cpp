#include "Input.h"

#include "Errors.h"
#include "HolePolicy.h"
#include "HoleSelection.h"
#include "ReadBoreholes.h"
#include "SectionLayout.h"
#include "Validation.h"
#include "WorkLimit.h"

#include <algorithm>
#include <ostream>
#include <set>
#include <sstream>
#include <stdexcept>

namespace xklink {

namespace {

BoreholeSet ReadInput(const InputOptions& options) {
  const std::filesystem::path path(options.file);
  Format format = Format::Json;
  try {
    format = options.format.empty() ? DetectFormat(path) : FormatFromName(options.format);
  } catch (const std::invalid_argument& e) {
    throw UsageError(std::string("--input-format: ") + e.what());
  }
  ReadOptions read;
  if (!options.collars.empty()) {
    if (format != Format::Csv) {
      throw UsageError("--collars: a collar table goes with a CSV interval file, not with " +
                       FormatName(format));
    }
    read.collarFile = options.collars;
  }
  if (!options.depths.empty()) {
    read.depthMode = options.depths == "depth" ? DepthMode::Depths : DepthMode::Elevations;
  }
  if (!options.codeColumn.empty()) {
    read.codeColumn = options.codeColumn;
  }
  read.mergeRepeats = options.mergeRepeats;
  read.inSitu = options.inSitu;
  return ReadBoreholes(path, format, read);
}

std::vector<std::string> SplitOption(const std::string& list) {
  return list.empty() ? std::vector<std::string>{} : SplitHoleList(list);
}

} // namespace

SectionHoles LoadSection(const InputOptions& options, const std::string& holeList,
                         DefaultHoles defaults, std::ostream& warnings) {
  BoreholeSet all = ReadInput(options);
  HolePolicy policy;
  policy.named = SplitOption(holeList);
  policy.excluded = SplitOption(options.exclude);
  policy.strict = options.strict;

  CappedReport warningReport(warnings);
  std::ostringstream errorText;
  CappedReport errorReport(errorText);
  ChosenHoles chosen = ChooseHoles(
      all, policy, [&](const Diagnostic& d) { warningReport.Add(d); },
      [&](const Diagnostic& d) { errorReport.Add(d); });
  if (policy.named.empty() && defaults == DefaultHoles::FirstTwo && chosen.holes.size() > 2) {
    chosen.holes.resize(2);
  } else if (policy.named.empty() && defaults == DefaultHoles::AlongSection) {
    std::vector<HoleRecord> ordered;
    for (const std::size_t i : OrderAlongPrincipalDirection(ToZKs(chosen.holes))) {
      ordered.push_back(std::move(chosen.holes[i]));
    }
    chosen.holes = std::move(ordered);
  }
  if (errorReport.Count(Severity::Error) == 0) {
    for (const Diagnostic& d : CheckSectionSpacing(chosen.holes)) {
      errorReport.Add(d);
    }
  }
  warningReport.Finish();
  if (errorReport.Count(Severity::Error) > 0) {
    errorReport.Finish();
    std::string errors = errorText.str();
    errors.pop_back(); // the last newline; main ends the message
    throw InputError(errors);
  }

  RequireWorkWithinLimit(chosen.holes);
  SectionHoles section;
  section.depthBelowGround = chosen.depthBelowGround;
  section.codeDescriptions = all.codeDescriptions;
  section.inSitu = std::move(all.inSitu);
  for (const HoleRecord& hole : chosen.holes) {
    section.names.push_back(hole.name);
    section.holes.push_back(hole.ToZK());
  }
  return section;
}

CheckCounts CheckFile(const InputOptions& options, std::ostream& out) {
  BoreholeSet set = ReadInput(options);
  std::set<std::string> excluded;
  for (const std::string& name : SplitOption(options.exclude)) {
    if (std::none_of(set.holes.begin(), set.holes.end(),
                     [&](const HoleRecord& h) { return h.name == name; })) {
      throw SelectionError(UnknownHoleMessage(set, name));
    }
    excluded.insert(name);
  }
  std::erase_if(set.holes, [&](const HoleRecord& h) { return excluded.count(h.name) > 0; });
  std::erase_if(set.diagnostics, [&](const Diagnostic& d) { return excluded.count(d.hole) > 0; });

  CappedReport report(out);
  ValidateBoreholes(set, [&](const Diagnostic& d) { report.Add(d); });
  report.Finish();
  return {report.Count(Severity::Error), report.Count(Severity::Warning)};
}

} // namespace xklink
