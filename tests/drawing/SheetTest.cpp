// Layout of the sheet: the stated exaggeration is the drawn one, and everything lies on the sheet.
#include "Sheet.h"

#include "SectionFixtures.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace xklink::drawing {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Every point of every path, and the box the layout gives every text (upright ones too), is finite
// and on the sheet.
void ExpectInsideAndFinite(const Sheet& sheet) {
  ASSERT_TRUE(std::isfinite(sheet.width) && std::isfinite(sheet.height));
  for (const Item& item : sheet.items) {
    const auto* path = std::get_if<Path>(&item);
    std::vector<Point> points = path ? path->points : std::vector<Point>{};
    if (!path) {
      const Box box = TextBox(std::get<Text>(item));
      points = {{box.left, box.top}, {box.right, box.bottom}};
    }
    for (const Point& p : points) {
      ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y));
      EXPECT_TRUE(p.x >= -0.01 && p.x <= sheet.width + 0.01 && p.y >= -0.01 &&
                  p.y <= sheet.height + 0.01)
          << (path ? "path" : std::get<Text>(item).text) << " at " << p.x << "," << p.y;
    }
  }
}

TEST(ComposeSheet, DrawsTheExaggerationItStatesWithEverythingOnTheSheet) {
  const struct {
    double asked;
    double least; // of the drawn exaggeration; when chosen, at least 1
    double most;
  } cases[] = {{5.0, 5.0, 5.0},         {1.0, 1.0, 1.0},     {20.0, 20.0, 20.0},
               {0.0, 1.0, 1000.0},      {-3.0, 1.0, 1000.0}, {kNaN, 1.0, 1000.0},
               {1e300, 1000.0, 1000.0}, {1e-300, 0.01, 0.01}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.asked);
    const Section section = testing::NleSection();
    DrawOptions options;
    options.exaggeration = c.asked;
    const Sheet sheet = ComposeSheet(section, {}, options);
    const double e = sheet.exaggeration;
    EXPECT_GE(e, c.least);
    EXPECT_LE(e, c.most);
    // Every stratum cell is its thickness times the horizontal scale times the exaggeration high.
    std::vector<const Path*> cells;
    for (const Item& item : sheet.items) {
      if (const auto* p = std::get_if<Path>(&item);
          p && p->layer == Layer::Boreholes && !p->code.empty()) {
        cells.push_back(p);
      }
    }
    auto cell = cells.begin();
    for (const SectionHole& hole : section.holes) {
      for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
        ASSERT_NE(cell, cells.end());
        const double height = (stratum.dTopGC - stratum.dBotGC) * sheet.scale * e;
        EXPECT_NEAR((*cell)->points[2].y - (*cell)->points[0].y, height, 1e-9 * (1.0 + height));
        ++cell;
      }
    }
    EXPECT_EQ(cell, cells.end());
    ExpectInsideAndFinite(sheet);
  }
}

TEST(ComposeSheet, AwkwardInputStaysOnTheSheet) {
  Section broken = testing::NleSection();
  broken.holes[4].chainage = kNaN;
  broken.holes[2].zk.vecDC[1].dBotGC = kInf;
  broken.pairs[0].root.vecChild[0].ptBot[1].z = -kInf;
  const std::pair<const char*, Section> cases[] = {
      {"deep holes",
       testing::CorrelatedSection(
           "deep", {{"A", testing::MakeHole(L"A", 0.0, 0.0, {{L"A", 0.0, -150.0}})},
                    {"B", testing::MakeHole(L"B", 5.0, 0.0, {{L"A", 0.0, -160.0}})}})},
      {"non-finite input", broken},
      {"empty", Section{}}};
  for (const auto& [what, section] : cases) {
    SCOPED_TRACE(what);
    const Sheet sheet = ComposeSheet(section, {}, {});
    EXPECT_GE(sheet.exaggeration, 1.0); // a deep, narrow section is drawn at least true to scale
    ExpectInsideAndFinite(sheet);
  }
  // The hole at no chainage is left off the sheet, name and all.
  for (const Item& item : ComposeSheet(broken, {}, {}).items) {
    if (const auto* text = std::get_if<Text>(&item)) {
      EXPECT_EQ(text->text.find("BH05"), std::string::npos) << text->text;
    }
  }
}

} // namespace
} // namespace xklink::drawing
