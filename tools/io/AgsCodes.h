// What counts as the code of a stratum in an AGS GEOL row.
//
// Producers fill different code columns (GEOL_GEOL, GEOL_LEG, GEOL_GEO2), some fill none, and many
// write a placeholder where they have no code. A placeholder drawn as a unit would correlate every
// uncoded stratum with every other, so it counts as no code. When a hole has no codes at all, the
// description still names the soil or rock: BS 5930 writes the principal soil or rock name in
// capitals ("Firm brown sandy CLAY", "MADE GROUND: brick and ash"), which is what an engineer would
// draw the stratum as.
#pragma once

#include <string>
#include <string_view>

namespace xklink {

// True for "", "-", "--", "?", "N/A" and the like (any case, spaces around): no code.
bool IsPlaceholderCode(std::string_view code);

// The principal soil or rock name of a description: its first run of words in capitals (two or
// more capital letters and no small ones, joined by spaces, '/' or "and"), punctuation and
// brackets around it dropped. "Firm brown sandy CLAY" gives "CLAY", "Dense SAND and GRAVEL" gives
// "SAND and GRAVEL", "MADE GROUND: ash" gives "MADE GROUND"; empty when no word is in capitals.
std::string PrincipalName(std::string_view description);

} // namespace xklink
