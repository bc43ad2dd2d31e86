// The AGS reader (AGS4 and AGS 3.1) on arbitrary bytes: it either refuses the input with a
// ParseError or returns a set whose validation and, when clean, correlation must run without a
// fault. The line-level structure (GROUP/HEADING/UNIT/TYPE/DATA, "**NAME" groups, wrapped heading
// lines, <UNITS> and <CONT> rows), the lenient second pass over badly quoted lines and the
// Windows-1252 fallback are all reached from here.
#include "AgsReader.h"
#include "ReaderFuzzing.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

// The code column the user may name (--code-column); most inputs are read with the default choice,
// some also with a named column, so that both paths see every shape of file.
const char* const kCodeColumns[] = {"GEOL_LEG", "geol_geo2", "GEOL_DESC"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto set =
          fuzz::ReadOrRefuse([&] { return xklink::ReadAgsBoreholes(text, "fuzz.ags", {}); })) {
    fuzz::CheckSet(*set);
  }
  // The size picks the variant: a mutation that only adds or drops a byte switches it.
  if (const std::size_t variant = size % 8; variant >= 1 && variant <= 3) {
    xklink::ReadOptions options;
    options.codeColumn = kCodeColumns[variant - 1];
    if (const auto set = fuzz::ReadOrRefuse(
            [&] { return xklink::ReadAgsBoreholes(text, "fuzz.ags", options); })) {
      fuzz::CheckSet(*set);
    }
  }
  return 0;
}
