// The drillhole CSV reader on arbitrary bytes: it either refuses the input with a ParseError or
// returns a set whose validation and, when clean, correlation must run without a fault.
//
// Both forms are reached: without a separator the input is the single table; with one (the first
// NUL or form-feed byte, neither of which a text table may hold) the bytes before it are the collar
// table and those after it the interval table. The reader takes the collar table only as a path,
// so it is written to a file of this process in /tmp.
#include "CsvReader.h"
#include "ReaderFuzzing.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

// One file per process, so that parallel fuzzing jobs do not overwrite each other's collars;
// removed at a normal exit.
class CollarFile {
public:
  CollarFile()
      : m_path(std::filesystem::temp_directory_path() /
               ("xklinkdc-fuzz-collar-" + std::to_string(getpid()) + ".csv")) {}
  ~CollarFile() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }
  CollarFile(const CollarFile&) = delete;
  CollarFile& operator=(const CollarFile&) = delete;

  const std::filesystem::path& Write(std::string_view bytes) const {
    std::ofstream out(m_path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return m_path;
  }

private:
  std::filesystem::path m_path;
};

// The options a user may give (--depths, --elevations, --code-column); the size picks one, so that
// a mutation that only adds or drops a byte switches it. Most inputs get the defaults, the path
// every file without options takes.
xklink::ReadOptions OptionsFor(std::size_t size) {
  xklink::ReadOptions options;
  switch (size % 8) {
  case 1:
    options.depthMode = xklink::DepthMode::Depths;
    break;
  case 2:
    options.depthMode = xklink::DepthMode::Elevations;
    break;
  case 3:
    options.codeColumn = "Lith (code)";
    break;
  default:
    break;
  }
  return options;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const CollarFile collar;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  xklink::ReadOptions options = OptionsFor(size);
  std::string_view intervals = input;
  if (const auto separator = input.find_first_of(std::string_view("\0\f", 2));
      separator != std::string_view::npos) {
    options.collarFile = collar.Write(input.substr(0, separator));
    intervals = input.substr(separator + 1);
  }
  if (const auto set = fuzz::ReadOrRefuse(
          [&] { return xklink::ReadCsvBoreholes(intervals, "fuzz.csv", options); })) {
    fuzz::CheckSet(*set);
  }
  return 0;
}
