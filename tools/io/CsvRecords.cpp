#include "CsvRecords.h"

#include "Numbers.h"
#include "SourceFile.h"

#include <csv.h>
#include <new>
#include <utility>

namespace xklink {

namespace {

// libcsv's parser state, freed on every path out.
class CsvParser {
public:
  explicit CsvParser(unsigned char options) {
    if (csv_init(&m_parser, options) != 0) {
      throw std::bad_alloc();
    }
  }
  ~CsvParser() { csv_free(&m_parser); }
  CsvParser(const CsvParser&) = delete;
  CsvParser& operator=(const CsvParser&) = delete;

  csv_parser* Get() { return &m_parser; }

private:
  csv_parser m_parser{};
};

// What libcsv's callbacks collect. A record is reported when its line break is read, so the line it
// started on is remembered separately.
struct Collector {
  std::vector<CsvRecord> records;
  std::vector<std::string> fields;
  std::size_t currentLine = 0;
  std::size_t recordStartLine = 0; // 0 while no record is open
};

void OnField(void* data, std::size_t size, void* context) {
  auto* collector = static_cast<Collector*>(context);
  collector->fields.emplace_back(data == nullptr ? ""
                                                 : std::string(static_cast<char*>(data), size));
}

void OnRecordEnd(int /*terminator*/, void* context) {
  auto* collector = static_cast<Collector*>(context);
  const auto line =
      collector->recordStartLine != 0 ? collector->recordStartLine : collector->currentLine;
  collector->records.push_back({line, std::move(collector->fields)});
  collector->fields.clear();
  collector->recordStartLine = 0;
}

constexpr unsigned char kStrict = CSV_STRICT | CSV_STRICT_FINI;

const char* const kQuoteAdvice =
    "a quote inside an unquoted field or text after a closing quote (write a quote inside a "
    "quoted field as \"\")";

// Parses `text` as one chunk; returns false when libcsv stops at bad quoting.
bool ParseChunk(CsvParser& parser, std::string_view text, Collector& collector,
                std::size_t& stoppedAt) {
  stoppedAt = csv_parse(parser.Get(), text.data(), text.size(), OnField, OnRecordEnd, &collector);
  return stoppedAt == text.size();
}

} // namespace

std::vector<CsvRecord> ReadCsvRecords(std::string_view text, const std::string& file) {
  CsvParser parser(kStrict);
  Collector collector;
  std::size_t stoppedAt = 0;
  // Fed line by line so that each record knows the line it starts on.
  for (const auto& line : SplitLines(text)) {
    collector.currentLine = line.number;
    if (collector.recordStartLine == 0 && !IsNullField(line.text)) {
      collector.recordStartLine = line.number;
    }
    if (!ParseChunk(parser, line.text, collector, stoppedAt)) {
      throw ParseError({file, line.number, {}}, "bad quoting at column " +
                                                    std::to_string(stoppedAt + 1) + ": " +
                                                    kQuoteAdvice);
    }
    if (!ParseChunk(parser, "\n", collector, stoppedAt)) {
      throw ParseError({file, line.number, {}},
                       "bad quoting at the end of the line: " + std::string(kQuoteAdvice));
    }
  }
  if (csv_fini(parser.Get(), OnField, OnRecordEnd, &collector) != 0) {
    throw ParseError({file, collector.recordStartLine, {}},
                     "a quoted field opened in this record is never closed");
  }
  return std::move(collector.records);
}

} // namespace xklink
