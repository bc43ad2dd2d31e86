// The JSON reader on arbitrary bytes: it either refuses the input with a ParseError or returns a
// set whose validation and, when clean, correlation must run without a fault. nlohmann's parser
// does the syntax; what is ours is the position tracking around it (a counting iterator) and the
// event handler that reads the schema, which must survive any document shape in bounded time:
// deep nesting (refused past the limit), nested objects with keys after their children, duplicate
// keys, huge and special numbers.
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
