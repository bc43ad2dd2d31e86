// The grids AGS files name, as producers write them, and the EPSG codes given on the command line;
// xklink lines as GeoJSON (WGS 84 longitude, latitude) and GeoPackage (the source grid), checked
// against positions that national mapping agencies publish, worked out here without PROJ or GDAL.
#include "GridNames.h"
#include "tool/ToolRunner.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>
#include <regex>

namespace xktool {
namespace {

// "OSGB" is read through the tool below.
TEST(GridNamesTest, NamesOfTheGridsOfTheBritishIslesAndHongKong) {
  const struct {
    const char* name;
    std::optional<int> epsg;
  } cases[] = {
      {"osgb 36", 27700},
      {"OSGB36 / British National Grid", 27700},
      {"Ordnance Survey Great Britain National Grid", 27700}, // the ABBR text of "OSGB"
      {"Irish Grid", 29903},
      {"Irish_Transverse-Mercator", 2157},
      {"ITM", 2157},
      {"Hong Kong 1980 Grid", 2326},
      {"EPSG:3857", 3857},
      {"OSGB 1936 Lat Long", std::nullopt}, // geographic, not a grid: never guessed
      {"Local site grid", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(xklink::EpsgOfGridName(c.name), c.epsg) << c.name;
  }
}

TEST(GridNamesTest, EpsgCodesAreWrittenInFull) {
  EXPECT_EQ(xklink::ParseEpsgCode("epsg:27700"), 27700);
  for (const char* bad : {"27700", "EPSG:", "EPSG 27700", "EPSG:27700m", "EPSG:-5", "EPSG:0", "EPS",
                          "EPSG:99999999999"}) {
    EXPECT_THROW(xklink::ParseEpsgCode(bad), std::invalid_argument) << bad;
  }
}

using json = nlohmann::json;

constexpr double kDegree = std::numbers::pi / 180.0;

struct Geographic {
  double lon = 0.0; // degrees
  double lat = 0.0;
};

// OSGB36 latitude and longitude to WGS 84 with the Ordnance Survey's published seven-parameter
// Helmert transformation (A guide to coordinate systems in Great Britain): Airy 1830 ellipsoid to
// Earth-centred cartesian, the shift, rotation and scale, back to latitude on GRS 80. This is what
// PROJ applies for British National Grid when the OSTN15 grid file is not installed (as with
// Debian's proj-data); OSTN15 would move the point a few metres more.
Geographic Osgb36ToWgs84(double latDeg, double lonDeg) {
  const double phi = latDeg * kDegree;
  const double lambda = lonDeg * kDegree;
  double a = 6377563.396;
  double b = 6356256.909;
  double e2 = (a * a - b * b) / (a * a);
  double nu = a / std::sqrt(1 - e2 * std::sin(phi) * std::sin(phi));
  const double x = nu * std::cos(phi) * std::cos(lambda);
  const double y = nu * std::cos(phi) * std::sin(lambda);
  const double z = (1 - e2) * nu * std::sin(phi);
  const double tx = 446.448, ty = -125.157, tz = 542.060, s = -20.4894e-6;
  const double rx = 0.1502 / 3600 * kDegree, ry = 0.2470 / 3600 * kDegree,
               rz = 0.8421 / 3600 * kDegree;
  const double x2 = tx + (1 + s) * x - rz * y + ry * z;
  const double y2 = ty + rz * x + (1 + s) * y - rx * z;
  const double z2 = tz - ry * x + rx * y + (1 + s) * z;
  a = 6378137.0;
  b = 6356752.314140;
  e2 = (a * a - b * b) / (a * a);
  const double p = std::hypot(x2, y2);
  double lat = std::atan2(z2, p * (1 - e2));
  for (int i = 0; i < 10; ++i) {
    nu = a / std::sqrt(1 - e2 * std::sin(lat) * std::sin(lat));
    lat = std::atan2(z2 + e2 * nu * std::sin(lat), p);
  }
  return {std::atan2(y2, x2) / kDegree, lat / kDegree};
}

double MetresBetween(const Geographic& a, const Geographic& b) {
  const double dLon = (a.lon - b.lon) * kDegree * std::cos(a.lat * kDegree);
  const double dLat = (a.lat - b.lat) * kDegree;
  return 6371000.0 * std::hypot(dLon, dLat);
}

// Two holes 50 m apart, BH1 at (e, n), with the grid named in LOCA_GREF (no column when empty).
std::string TwoHoles(double e, double n, const std::string& grid) {
  const auto loca = [&](const std::string& name, double east, const std::string& level) {
    return "\"DATA\",\"" + name + "\",\"" + std::to_string(east) + "\",\"" + std::to_string(n) +
           "\",\"" + level + "\"" + (grid.empty() ? "" : ",\"" + grid + "\"") + "\n";
  };
  return "\"GROUP\",\"LOCA\"\n\"HEADING\",\"LOCA_ID\",\"LOCA_NATE\",\"LOCA_NATN\",\"LOCA_GL\"" +
         std::string(grid.empty() ? "" : ",\"LOCA_GREF\"") + "\n" + loca("BH1", e, "10.00") +
         loca("BH2", e + 50, "11.00") +
         "\"GROUP\",\"GEOL\"\n"
         "\"HEADING\",\"LOCA_ID\",\"GEOL_TOP\",\"GEOL_BASE\",\"GEOL_GEOL\"\n"
         "\"DATA\",\"BH1\",\"0.00\",\"2.00\",\"CLAY\"\n"
         "\"DATA\",\"BH1\",\"2.00\",\"5.00\",\"SAND\"\n"
         "\"DATA\",\"BH2\",\"0.00\",\"3.00\",\"CLAY\"\n"
         "\"DATA\",\"BH2\",\"3.00\",\"6.50\",\"SAND\"\n";
}

// The point of the Ordnance Survey's worked example of the Transverse Mercator formulae: grid
// E 651409.903 N 313177.270, OSGB36 latitude 52 39 27.2531 N, longitude 1 43 04.5177 E. The
// Helmert shift to WGS 84 is over 100 m there: a grid read without its datum lands far off.
constexpr double kOsE = 651409.903;
constexpr double kOsN = 313177.270;

TEST(GisOutputTest, GeoJsonPlacesTheHoleAtItsPublishedLongitudeAndLatitude) {
  const Geographic expected =
      Osgb36ToWgs84(52 + 39 / 60.0 + 27.2531 / 3600, 1 + 43 / 60.0 + 4.5177 / 3600);
  TempDir dir; // the grid named in LOCA_GREF; --crs is shown by the GeoPackage
  const std::string file = dir.Write("site.ags", TwoHoles(kOsE, kOsN, "OSGB"));
  const RunResult run = RunTool({"lines", file, "--holes", "BH1,BH2", "--format", "geojson"});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  const json features = json::parse(run.out).at("features");
  ASSERT_EQ(features.size(), 2u); // the CLAY/SAND boundary and the base
  for (const json& feature : features) {
    const json& start = feature.at("geometry").at("coordinates").at(0);
    const Geographic got{start.at(0), start.at(1)};
    EXPECT_LT(MetresBetween(got, expected), 1.0) << "lon " << got.lon << " lat " << got.lat;
    EXPECT_GT(start.at(2).get<double>(), 4.0); // the elevation is kept
  }
}

TEST(GisOutputTest, AGridIsNeverGuessed) {
  TempDir dir;
  const std::string none = dir.Write("none.ags", TwoHoles(kOsE, kOsN, ""));
  const std::string local = dir.Write("local.ags", TwoHoles(kOsE, kOsN, "Site grid"));
  std::string mixed = TwoHoles(kOsE, kOsN, "OSGB");
  mixed.replace(mixed.rfind("\"OSGB\""), 6, "\"ITM\"");
  const std::string two = dir.Write("two.ags", mixed);
  ExpectRefused(RunTool({"lines", none, "--format", "geojson"}), {"none.ags", "--crs EPSG:"});
  ExpectRefused(RunTool({"lines", none, "-o", (dir / "x.gpkg").string()}), {"--crs"});
  ExpectRefused(RunTool({"lines", local, "--format", "geojson"}),
                {"local.ags:3: field LOCA_GREF", "'Site grid'", "--crs"});
  ExpectRefused(RunTool({"lines", two, "--format", "geojson"}),
                {"two.ags:4: field LOCA_GREF", "'OSGB'", "'ITM'"});
  ExpectRefused(RunTool({"lines", none, "--format", "geojson", "--crs", "EPSG:99999"}),
                {"--crs: EPSG:99999"});
  EXPECT_EQ(dir.Entries(), (std::vector<std::string>{"local.ags", "none.ags", "two.ags"}));
}

// ogrinfo's summary of one layer: its feature count and the EPSG code of its grid.
std::pair<int, int> LayerSummary(const std::string& file, const std::string& layer) {
  const RunResult run = RunProgram({"ogrinfo", "-ro", "-so", file, layer});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  std::smatch count;
  std::smatch epsg;
  const bool found = std::regex_search(run.out, count, std::regex("Feature Count: (\\d+)"));
  // The last ID of the layer's WKT is that of the coordinate reference system as a whole.
  const std::regex id("ID\\[\"EPSG\",(\\d+)\\]\\]\\s*(Data axis|Geometry Column|$)");
  if (!found || !std::regex_search(run.out, epsg, id)) {
    ADD_FAILURE() << run.Describe();
    return {-1, -1};
  }
  return {std::stoi(count[1]), std::stoi(epsg[1])};
}

TEST(GisOutputTest, GeoPackageReadsBackOnTheSourceGrid) {
  TempDir dir;
  const std::string gpkg = (dir / "lines.gpkg").string();
  const RunResult run = RunTool({"lines", kNle, "--crs", "EPSG:27700", "-o", gpkg});
  ASSERT_EQ(run.exitCode, 0) << run.Describe();
  std::size_t lines = 0;
  for (const json& pair : json::parse(RunTool({"lines", kNle}).out)) {
    lines += pair.at("lines").size();
  }
  EXPECT_EQ(LayerSummary(gpkg, "holes"), std::make_pair(10, 27700));
  EXPECT_EQ(LayerSummary(gpkg, "lines"), std::make_pair(static_cast<int>(lines), 27700));
  // The grid coordinates and ground level as the file gives them.
  const RunResult bh01 =
      RunProgram({"ogrinfo", "-ro", "-q", gpkg, "-sql",
                  "SELECT name, ground_level, depth, ST_X(geom) AS e, ST_Y(geom) AS n FROM holes "
                  "WHERE name = 'BH01'"});
  EXPECT_NE(bh01.out.find("ground_level (Real) = 4.08"), std::string::npos) << bh01.Describe();
  EXPECT_NE(bh01.out.find("e (Real) = 529448.29"), std::string::npos) << bh01.Describe();
  EXPECT_NE(bh01.out.find("n (Real) = 177496.69"), std::string::npos) << bh01.Describe();
}

} // namespace
} // namespace xktool
