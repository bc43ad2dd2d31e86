#include "AgsText.h"

#include "Text.h"

namespace xklink {

std::string AgsTextAsUtf8(std::string_view raw) {
  const std::string_view bare = StripUtf8Bom(raw);
  return FindInvalidUtf8(bare) ? Windows1252FallbackToUtf8(bare) : std::string(bare);
}

} // namespace xklink
