// Mapping of region corners and line ends into the section plane, and the regions that are filled.
#include "SectionGeometry.h"

#include "SectionFixtures.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace xklink::drawing {
namespace {

using testing::MakeHole;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

SectionHole HoleAt(double x, double y, double chainage) {
  return {"H", chainage, MakeHole(L"H", x, y, {{L"A", 10.0, 0.0}})};
}

TEST(MapToSection, DistanceFromTheFirstHoleScaledToTheChainagesOfThePair) {
  const SectionHole a = HoleAt(10.0, 20.0, 100.0); // 50 in plan from b (3-4-5)
  const SectionHole b = HoleAt(40.0, 60.0, 150.0);
  const SectionHole c = HoleAt(0.0, 0.0, 0.0); // 50 in plan from d, 80 along the section
  const SectionHole d = HoleAt(50.0, 0.0, 80.0);
  struct Case {
    const char* what;
    const SectionHole& from;
    SectionHole to;
    CXk3DPoint p;
    std::optional<double> s; // none: refused
  };
  const Case cases[] = {
      {"first hole", a, b, CXk3DPoint(10.0, 20.0, 7.5), 100.0},
      {"second hole", a, b, CXk3DPoint(40.0, 60.0, -3.0), 150.0},
      {"40 % in plan", a, b, CXk3DPoint(22.0, 36.0, 1.0), 120.0},
      {"bent line stretched", c, d, CXk3DPoint(25.0, 0.0, 0.0), 40.0},
      {"distance, not projection", c, d, CXk3DPoint(0.0, 10.0, 0.0), 16.0},
      {"NaN x", c, d, CXk3DPoint(kNaN, 0.0, 0.0), std::nullopt},
      {"infinite y", c, d, CXk3DPoint(0.0, kInf, 0.0), std::nullopt},
      {"infinite z", c, d, CXk3DPoint(0.0, 0.0, -kInf), std::nullopt},
      {"holes at one place", c, HoleAt(0.0, 0.0, 10.0), CXk3DPoint(0.0, 0.0, 1.0), std::nullopt},
      {"NaN chainage", c, HoleAt(50.0, 0.0, kNaN), CXk3DPoint(0.0, 0.0, 1.0), std::nullopt},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.what);
    const std::optional<SectionPoint> p = MapToSection(k.from, k.to, k.p);
    ASSERT_EQ(p.has_value(), k.s.has_value());
    if (p) {
      EXPECT_NEAR(p->s, *k.s, 1e-12);
      EXPECT_DOUBLE_EQ(p->z, k.p.z);
    }
  }
}

TEST(CollectRegionShapes, LensOfTheSecondHoleKeepsItsCornersAndFollowsItsHost) {
  const std::vector<RegionShape> shapes = CollectRegionShapes(testing::LensOfSecondHole());
  ASSERT_EQ(shapes.size(), 2u);
  const RegionShape& lens = shapes[1];
  EXPECT_EQ(lens.code, L"SAND");
  EXPECT_EQ(lens.kind, 1);
  // Corners 0 and 3 (ptTop[0], ptBot[0]) stand on the east hole, at the top and bottom of the
  // sand; the tip (1 and 2) lies inside the pair, nearer east, at the sand's mid elevation.
  const double sEast = 50.0; // (30, 40) from (0, 0)
  EXPECT_NEAR(lens.polygon[0].s, sEast, 1e-9);
  EXPECT_NEAR(lens.polygon[3].s, sEast, 1e-9);
  EXPECT_DOUBLE_EQ(lens.polygon[0].z, 6.0);
  EXPECT_DOUBLE_EQ(lens.polygon[3].z, 4.0);
  EXPECT_DOUBLE_EQ(lens.polygon[1].s, lens.polygon[2].s);
  EXPECT_GT(lens.polygon[1].s, 25.0);
  EXPECT_LT(lens.polygon[1].s, sEast);
  EXPECT_DOUBLE_EQ(lens.polygon[1].z, 5.0);
}

} // namespace
} // namespace xklink::drawing
