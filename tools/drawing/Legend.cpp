// Reading the legend file that maps stratum codes to colours and descriptions.
#include "Colour.h"
#include "Section.h"
#include "TextMetrics.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace xklink {

namespace {

std::string_view Trim(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
    text.remove_prefix(1);
  }
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
    text.remove_suffix(1);
  }
  return text;
}

std::string Lower(std::string_view text) {
  std::string out;
  for (const char c : text) {
    out += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return out;
}

// Splits one line into fields. A field may be quoted, with "" standing for a quote, so that
// labels can hold commas; blanks around fields are dropped. Returns the reason on failure.
std::optional<std::string> SplitFields(std::string_view line, std::vector<std::string>& fields) {
  fields.clear();
  std::size_t pos = 0;
  while (true) {
    while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) {
      ++pos;
    }
    std::string field;
    if (pos < line.size() && line[pos] == '"') {
      ++pos;
      bool closed = false;
      while (pos < line.size()) {
        if (line[pos] == '"') {
          if (pos + 1 < line.size() && line[pos + 1] == '"') {
            field += '"';
            pos += 2;
            continue;
          }
          ++pos;
          closed = true;
          break;
        }
        field += line[pos++];
      }
      if (!closed) {
        return "field " + std::to_string(fields.size() + 1) + " has no closing quote";
      }
      while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) {
        ++pos;
      }
      if (pos < line.size() && line[pos] != ',') {
        return "field " + std::to_string(fields.size() + 1) + " has text after its closing quote";
      }
    } else {
      const std::size_t comma = line.find(',', pos);
      const std::size_t end = comma == std::string_view::npos ? line.size() : comma;
      field = std::string(Trim(line.substr(pos, end - pos)));
      pos = end;
    }
    fields.push_back(std::move(field));
    if (pos >= line.size()) {
      return std::nullopt;
    }
    ++pos; // the comma
  }
}

} // namespace

Legend ReadLegendCsv(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    throw LegendError(path, 0, "cannot be opened for reading");
  }
  std::string content((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  if (in.bad()) {
    throw LegendError(path, 0, "cannot be read");
  }
  // Spreadsheet programs start UTF-8 CSV files with a byte order mark.
  if (content.rfind("\xEF\xBB\xBF", 0) == 0) {
    content.erase(0, 3);
  }

  Legend legend;
  std::map<std::wstring, std::size_t> definedOn;
  std::vector<std::string> fields;
  bool firstContentLine = true;
  std::size_t lineNumber = 0;
  std::size_t start = 0;
  while (start < content.size()) {
    const std::size_t newline = content.find('\n', start);
    const std::size_t end = newline == std::string::npos ? content.size() : newline;
    std::string_view line(content.data() + start, end - start);
    start = end + 1;
    ++lineNumber;
    if (!line.empty() && line.back() == '\r') {
      line.remove_suffix(1);
    }
    if (Trim(line).empty()) {
      continue;
    }
    if (const std::optional<std::string> reason = SplitFields(line, fields)) {
      throw LegendError(path, lineNumber, *reason);
    }
    const bool header = firstContentLine && fields.size() >= 2 && Lower(fields[0]) == "code" &&
                        (Lower(fields[1]) == "colour" || Lower(fields[1]) == "color");
    firstContentLine = false;
    if (header) {
      continue;
    }
    if (fields.size() < 2 || fields.size() > 3) {
      throw LegendError(path, lineNumber,
                        "expected code,colour,label but found " + std::to_string(fields.size()) +
                            (fields.size() == 1 ? " field" : " fields"));
    }
    if (fields[0].empty()) {
      throw LegendError(path, lineNumber, "the code is empty");
    }
    const std::optional<std::wstring> code = drawing::Utf8ToWide(fields[0]);
    if (!code) {
      throw LegendError(path, lineNumber, "the code is not valid UTF-8");
    }
    const std::optional<drawing::Rgb> colour = drawing::ParseColour(fields[1]);
    if (!colour) {
      throw LegendError(path, lineNumber,
                        "colour '" + drawing::SanitizeUtf8(fields[1]) +
                            "' is neither #rrggbb nor an SVG colour name");
    }
    std::string label = fields.size() > 2 ? fields[2] : std::string{};
    if (!drawing::Utf8ToWide(label)) {
      throw LegendError(path, lineNumber, "the label is not valid UTF-8");
    }
    if (const auto it = definedOn.find(*code); it != definedOn.end()) {
      throw LegendError(path, lineNumber,
                        "code '" + fields[0] + "' is already given on line " +
                            std::to_string(it->second));
    }
    definedOn.emplace(*code, lineNumber);
    legend.emplace(*code, LegendEntry{drawing::ToHex(*colour), std::move(label)});
  }
  return legend;
}

} // namespace xklink
