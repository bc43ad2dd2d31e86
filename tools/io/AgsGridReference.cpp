#include "AgsGridReference.h"

#include "AgsGroups.h"
#include "AgsText.h"
#include "Numbers.h"

#include <vector>

namespace xklink {

std::optional<GridReference> ReadAgsGridReference(std::string_view raw, const std::string& file) {
  const std::string text = AgsTextAsUtf8(raw);
  const AgsEdition edition = DetectAgsEdition(text).value_or(AgsEdition::Ags4);
  const std::string group = edition == AgsEdition::Ags3 ? "HOLE" : "LOCA";
  const std::string heading = group + "_GREF";
  std::vector<Diagnostic> ignored; // the reader of the holes reports the problems of the group
  const AgsFile ags = ReadAgsGroups(text, file, {group}, ignored);
  const auto found = ags.groups.find(group);
  if (found == ags.groups.end()) {
    return std::nullopt;
  }
  const auto column = found->second.Column(heading);
  if (!column) {
    return std::nullopt;
  }
  std::optional<GridReference> grid;
  const AgsGroup& rows = found->second;
  for (std::size_t row = 0; row < rows.RowCount(); ++row) {
    const std::string name(TrimSpaces(rows.Cell(row, *column)));
    const std::size_t line = rows.rowLines[row];
    if (IsNullField(name)) {
      continue;
    }
    if (!grid) {
      grid = GridReference{name, {file, line, heading}};
    } else if (name != grid->name) {
      throw ParseError({file, line, heading}, "the holes are on two grids, '" + grid->name +
                                                  "' (line " + std::to_string(grid->where.line) +
                                                  ") and '" + name +
                                                  "'; convert them to one grid first");
    }
  }
  return grid;
}

} // namespace xklink
