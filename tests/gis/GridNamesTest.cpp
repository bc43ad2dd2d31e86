// The grids AGS files name, as producers write them, and the EPSG codes given on the command line.
#include "GridNames.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace xklink {
namespace {

TEST(GridNamesTest, NamesOfTheGridsOfTheBritishIslesAndHongKong) {
  const struct {
    const char* name;
    std::optional<int> epsg;
  } cases[] = {
      {"OSGB", 27700},
      {"osgb 36", 27700},
      {"OSGB36 / British National Grid", 27700},
      {"Ordnance Survey Great Britain National Grid", 27700}, // the ABBR text of "OSGB"
      {"Irish Grid", 29903},
      {"ITM", 2157},
      {"Irish_Transverse-Mercator", 2157},
      {"Hong Kong 1980 Grid", 2326},
      {"EPSG:3857", 3857},
      {"OSGB 1936 Lat Long", std::nullopt}, // geographic, not a grid: never guessed
      {"Local site grid", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(EpsgOfGridName(c.name), c.epsg) << c.name;
  }
}

TEST(GridNamesTest, EpsgCodesAreWrittenInFull) {
  EXPECT_EQ(ParseEpsgCode("epsg:27700"), 27700);
  for (const char* bad : {"27700", "EPSG:", "EPSG 27700", "EPSG:27700m", "EPSG:-5", "EPSG:0", "EPS",
                          "EPSG:99999999999"}) {
    EXPECT_THROW(ParseEpsgCode(bad), std::invalid_argument) << bad;
  }
}

} // namespace
} // namespace xklink
