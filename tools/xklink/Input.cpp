#include "Input.h"

#include "Errors.h"
#include "SectionLayout.h"
#include "WorkLimit.h"

#include "HoleSelection.h"
#include "ReadBoreholes.h"
#include "Validation.h"

#include <ostream>
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
  read.mergeRepeats = options.mergeRepeats;
  return ReadBoreholes(path, format, read);
}

std::vector<std::string> DefaultNames(const BoreholeSet& set, DefaultHoles defaults) {
  std::vector<std::string> names;
  if (defaults == DefaultHoles::FirstTwo) {
    for (std::size_t i = 0; i < set.holes.size() && i < 2; ++i) {
      names.push_back(set.holes[i].name);
    }
    return names;
  }
  for (const std::size_t i : OrderAlongPrincipalDirection(ToZKs(set.holes))) {
    names.push_back(set.holes[i].name);
  }
  return names;
}

} // namespace

SectionHoles LoadSection(const InputOptions& options, const std::string& holeList,
                         DefaultHoles defaults, std::ostream& warnings) {
  const BoreholeSet all = ReadInput(options);
  const std::vector<std::string> names =
      holeList.empty() ? DefaultNames(all, defaults) : SplitHoleList(holeList);
  if (names.size() < 2) {
    throw SelectionError(options.file + ": a section needs at least two holes, the file has " +
                         std::to_string(all.holes.size()));
  }
  const BoreholeSet chosen = SelectHoles(all, names);

  std::vector<Diagnostic> diagnostics = ValidateBoreholes(chosen);
  for (Diagnostic& d : CheckSectionSpacing(chosen.holes)) {
    diagnostics.push_back(std::move(d));
  }
  std::string errors;
  for (const Diagnostic& d : diagnostics) {
    if (d.severity == Severity::Error) {
      errors += (errors.empty() ? "" : "\n") + d.ToString();
    } else {
      warnings << d.ToString() << '\n';
    }
  }
  if (!errors.empty()) {
    throw InputError(errors);
  }

  SectionHoles section;
  for (const HoleRecord& hole : chosen.holes) {
    section.names.push_back(hole.name);
    section.holes.push_back(hole.ToZK());
  }
  RequireWorkWithinLimit(section.names, section.holes);
  return section;
}

std::vector<std::string> CheckFile(const InputOptions& options, std::size_t& errors) {
  const BoreholeSet set = ReadInput(options);
  std::vector<std::string> problems;
  errors = 0;
  for (const Diagnostic& d : ValidateBoreholes(set)) {
    problems.push_back(d.ToString());
    errors += d.severity == Severity::Error ? 1 : 0;
  }
  return problems;
}

} // namespace xklink
