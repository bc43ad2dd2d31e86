#include "Input.h"

#include "Errors.h"
#include "SectionLayout.h"
#include "WorkLimit.h"

#include "HoleSelection.h"
#include "ReadBoreholes.h"
#include "Validation.h"

#include <algorithm>
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
  if (!options.codeColumn.empty()) {
    read.codeColumn = options.codeColumn;
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
  // A list of one name is refused by SelectHoles, which says how many were named.
  if (holeList.empty() && names.size() < 2) {
    throw SelectionError(options.file + ": a section needs at least two holes, the file has " +
                         std::to_string(all.holes.size()));
  }

  // The whole file is validated before holes are picked from it, and its problems are kept for the
  // holes asked for and for the file as a whole. A second hole of a name is then reported with its
  // line, instead of the first of the two being picked; and a hole that the reader could not build
  // (GEOL rows without a LOCA row) stops a section that names it or takes every hole, instead of
  // dropping out of it silently. Problems of holes left out of the section do not stop it.
  const bool everyHole = holeList.empty() && defaults == DefaultHoles::AlongSection;
  std::vector<Diagnostic> diagnostics;
  for (Diagnostic& d : ValidateBoreholes(all)) {
    if (everyHole || d.hole.empty() ||
        std::find(names.begin(), names.end(), d.hole) != names.end()) {
      diagnostics.push_back(std::move(d));
    }
  }
  BoreholeSet chosen;
  if (!HasErrors(diagnostics)) {
    chosen = SelectHoles(all, names);
    for (Diagnostic& d : CheckSectionSpacing(chosen.holes)) {
      diagnostics.push_back(std::move(d));
    }
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
