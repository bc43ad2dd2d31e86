// The text of an AGS file for the passes that read groups beside the holes' reader (the grid,
// the in-situ records): UTF-8 without a byte-order mark, bytes outside UTF-8 read as Windows-1252.
// The holes' reader warns about the encoding once; these passes stay quiet.
#pragma once

#include <string>
#include <string_view>

namespace xklink {

std::string AgsTextAsUtf8(std::string_view raw);

} // namespace xklink
