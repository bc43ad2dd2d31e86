#include "HoleSelection.h"

#include "Numbers.h"

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace xklink {

namespace {

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

} // namespace

std::string UnknownHoleMessage(const BoreholeSet& set, const std::string& name) {
  std::string message = "no hole '" + name + "' in " + set.source;
  if (const auto skipped = set.skipped.find(name); skipped != set.skipped.end()) {
    return message + ": it was left out (" + skipped->second + ")";
  }
  const auto similar = std::find_if(set.holes.begin(), set.holes.end(), [&](const HoleRecord& h) {
    return SameIgnoringCase(h.name, name);
  });
  if (similar != set.holes.end()) {
    return message + "; did you mean '" + similar->name + "'?";
  }
  return message;
}

std::vector<std::string> SplitHoleList(std::string_view list) {
  std::vector<std::string> names;
  std::size_t start = 0;
  while (true) {
    const auto comma = list.find(',', start);
    const auto name = TrimSpaces(list.substr(
        start, comma == std::string_view::npos ? std::string_view::npos : comma - start));
    if (name.empty()) {
      throw SelectionError("empty hole name in the list '" + std::string(list) + "'");
    }
    names.emplace_back(name);
    if (comma == std::string_view::npos) {
      return names;
    }
    start = comma + 1;
  }
}

std::vector<std::size_t> FindHoles(const BoreholeSet& set, const std::vector<std::string>& names) {
  if (names.size() < 2) {
    throw SelectionError("a section needs at least two holes; " + std::to_string(names.size()) +
                         (names.size() == 1 ? " was" : " were") + " named");
  }
  std::map<std::string, std::size_t> index; // the first hole of each name
  for (std::size_t i = 0; i < set.holes.size(); ++i) {
    index.try_emplace(set.holes[i].name, i);
  }
  std::set<std::string> chosen;
  std::vector<std::size_t> out;
  for (const auto& name : names) {
    if (!chosen.insert(name).second) {
      throw SelectionError("hole '" + name + "' is named twice");
    }
    const auto hole = index.find(name);
    if (hole == index.end()) {
      throw SelectionError(UnknownHoleMessage(set, name));
    }
    out.push_back(hole->second);
  }
  return out;
}

BoreholeSet SelectHoles(const BoreholeSet& set, const std::vector<std::string>& names) {
  BoreholeSet selected;
  selected.source = set.source;
  selected.fields = set.fields;
  selected.skipped = set.skipped;
  for (const std::size_t i : FindHoles(set, names)) {
    selected.holes.push_back(set.holes[i]);
  }
  const std::set<std::string> chosen(names.begin(), names.end());
  std::copy_if(set.diagnostics.begin(), set.diagnostics.end(),
               std::back_inserter(selected.diagnostics),
               [&](const Diagnostic& d) { return d.hole.empty() || chosen.count(d.hole) > 0; });
  return selected;
}

} // namespace xklink
