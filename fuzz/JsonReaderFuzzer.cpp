// The JSON reader on arbitrary bytes: it either refuses the input with a ParseError or returns a
// set whose validation and, when clean, correlation must run without a fault. nlohmann's parser
// does the syntax; what is ours is the position tracking around it (a counting iterator, a SAX
// builder keyed by JSON pointer paths) and the schema, which must survive any document shape:
// deep nesting, duplicate keys, keys with '/' and '~', huge and special numbers.
#include "JsonReader.h"
#include "ReaderFuzzing.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto set =
      fuzz::ReadOrRefuse([&] { return xklink::ReadJsonBoreholes(text, "fuzz.json", {}); });
  if (set) {
    fuzz::CheckSet(*set);
  }
  return 0;
}
