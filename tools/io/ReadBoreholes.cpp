#include "ReadBoreholes.h"

#include "AgsGroups.h"
#include "AgsInSitu.h"
#include "AgsReader.h"
#include "CsvReader.h"
#include "JsonReader.h"
#include "Numbers.h"
#include "SourceFile.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

namespace xklink {

namespace {

std::string Lower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return out;
}

std::optional<Format> FormatFromContent(std::string_view text) {
  if (DetectAgsEdition(text)) {
    return Format::Ags;
  }
  const auto first = text.find_first_not_of(" \t\r\n");
  if (first == std::string_view::npos) {
    return std::nullopt;
  }
  const auto line = text.substr(first, text.find_first_of("\r\n", first) - first);
  if (line.front() == '{') {
    return Format::Json;
  }
  if (line.find(',') != std::string_view::npos) {
    return Format::Csv;
  }
  return std::nullopt;
}

} // namespace

Format FormatFromName(std::string_view name) {
  const std::string lower = Lower(name);
  if (lower == "json") {
    return Format::Json;
  }
  if (lower == "ags") {
    return Format::Ags;
  }
  if (lower == "csv") {
    return Format::Csv;
  }
  throw std::invalid_argument("unknown input format '" + std::string(name) +
                              "': expected json, ags or csv");
}

std::string FormatName(Format format) {
  switch (format) {
  case Format::Json:
    return "json";
  case Format::Ags:
    return "ags";
  case Format::Csv:
    return "csv";
  }
  return "?";
}

Format DetectFormat(const std::filesystem::path& file) {
  const std::string extension = Lower(file.extension().string());
  if (extension == ".json") {
    return Format::Json;
  }
  if (extension == ".ags") {
    return Format::Ags;
  }
  if (extension == ".csv") {
    return Format::Csv;
  }
  const std::string text = ReadSourceFile(file);
  if (const auto format = FormatFromContent(text)) {
    return *format;
  }
  if (text.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw ParseError({DisplayName(file), 0, {}}, "empty file");
  }
  throw ParseError({DisplayName(file), 0, {}},
                   "cannot tell the format from the name or the content; give it (json, ags or "
                   "csv)");
}

BoreholeSet ReadBoreholes(const std::filesystem::path& file, Format format,
                          const ReadOptions& options) {
  if (options.collarFile && format != Format::Csv) {
    throw std::invalid_argument("a collar file goes with a CSV interval table, not with " +
                                FormatName(format) + " input");
  }
  std::string text = ReadSourceFile(file);
  const std::string name = DisplayName(file);
  BoreholeSet set;
  switch (format) {
  case Format::Json:
    set = ReadJsonBoreholes(text, name, options);
    break;
  case Format::Ags: {
    // The in-situ pass reads its own copy: the reader of the holes takes the text over.
    std::vector<Diagnostic> inSituNotes;
    InSituData inSitu = options.inSitu ? ReadAgsInSitu(text, name, inSituNotes) : InSituData{};
    set = ReadAgsBoreholes(std::move(text), name, options);
    set.inSitu = std::move(inSitu);
    for (Diagnostic& note : inSituNotes) {
      const bool told =
          std::any_of(set.diagnostics.begin(), set.diagnostics.end(), [&](const auto& d) {
            return d.where.line == note.where.line && d.message == note.message;
          });
      if (!told) {
        set.diagnostics.push_back(std::move(note));
      }
    }
    break;
  }
  case Format::Csv:
    set = ReadCsvBoreholes(text, name, options);
    break;
  }
  if (options.mergeRepeats) {
    MergeRepeatedCodes(set);
  }
  return set;
}

} // namespace xklink
