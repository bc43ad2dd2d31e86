// Layout of the sheet: scales, the stated exaggeration, what lies where.
#include "Sheet.h"

#include "SectionFixtures.h"
#include "Text.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <set>

namespace xklink::drawing {
namespace {

using testing::CorrelatedSection;
using testing::LondonSection;
using testing::MakeHole;

std::vector<const Path*> PathsOn(const Sheet& sheet, Layer layer) {
  std::vector<const Path*> out;
  for (const Item& item : sheet.items) {
    if (const auto* path = std::get_if<Path>(&item); path != nullptr && path->layer == layer) {
      out.push_back(path);
    }
  }
  return out;
}

std::vector<const Text*> TextsOn(const Sheet& sheet, Layer layer) {
  std::vector<const Text*> out;
  for (const Item& item : sheet.items) {
    if (const auto* text = std::get_if<Text>(&item); text != nullptr && text->layer == layer) {
      out.push_back(text);
    }
  }
  return out;
}

bool Mentions(const Sheet& sheet, Layer layer, const std::string& part) {
  const std::vector<const Text*> texts = TextsOn(sheet, layer);
  return std::any_of(texts.begin(), texts.end(),
                     [&part](const Text* t) { return t->text.find(part) != std::string::npos; });
}

void ExpectInsideAndFinite(const Sheet& sheet) {
  ASSERT_TRUE(std::isfinite(sheet.width) && std::isfinite(sheet.height));
  for (const Item& item : sheet.items) {
    if (const auto* path = std::get_if<Path>(&item)) {
      for (const Point& p : path->points) {
        ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y));
        EXPECT_GE(p.x, -0.01);
        EXPECT_LE(p.x, sheet.width + 0.01);
        EXPECT_GE(p.y, -0.01);
        EXPECT_LE(p.y, sheet.height + 0.01);
      }
    } else {
      const Text& text = std::get<Text>(item);
      ASSERT_TRUE(std::isfinite(text.at.x) && std::isfinite(text.at.y));
      if (text.rotation != 0.0) {
        continue;
      }
      const double width = TextWidth(text.text, text.size, text.bold);
      const double left = text.anchor == Anchor::Start    ? text.at.x
                          : text.anchor == Anchor::Middle ? text.at.x - 0.5 * width
                                                          : text.at.x - width;
      EXPECT_GE(left, 0.0) << text.text;
      EXPECT_LE(left + width, sheet.width) << text.text;
      EXPECT_GE(text.at.y - text.size, 0.0) << text.text;
      EXPECT_LE(text.at.y, sheet.height) << text.text;
    }
  }
}

TEST(ComposeSheet, StatesTheExaggerationItDraws) {
  const Section section = LondonSection();
  DrawOptions options;
  options.exaggeration = 5.0;
  const Sheet sheet = ComposeSheet(section, {}, options);
  EXPECT_DOUBLE_EQ(sheet.exaggeration, 5.0);
  EXPECT_TRUE(Mentions(sheet, Layer::Title,
                       "Vertical exaggeration \xC3\x97"
                       "5"));
  // Every stratum of every column is its thickness times the horizontal scale times 5 high.
  std::vector<double> thicknesses;
  for (const SectionHole& hole : section.holes) {
    for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
      thicknesses.push_back(stratum.dTopGC - stratum.dBotGC);
    }
  }
  std::vector<const Path*> cells;
  for (const Path* path : PathsOn(sheet, Layer::Boreholes)) {
    if (!path->code.empty()) {
      cells.push_back(path);
    }
  }
  ASSERT_EQ(cells.size(), thicknesses.size());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const double height = cells[i]->points[2].y - cells[i]->points[0].y;
    EXPECT_NEAR(height, thicknesses[i] * sheet.scale * 5.0, 1e-9);
  }
}

TEST(ComposeSheet, ChoosesAndStatesAnExaggerationWhenNoneIsGiven) {
  for (const double given : {0.0, -3.0, std::numeric_limits<double>::quiet_NaN()}) {
    DrawOptions options;
    options.exaggeration = given;
    const Sheet sheet = ComposeSheet(LondonSection(), {}, options);
    EXPECT_GE(sheet.exaggeration, 1.0);
    EXPECT_TRUE(
        Mentions(sheet, Layer::Title,
                 "Vertical exaggeration \xC3\x97" +
                     FormatFixed(sheet.exaggeration,
                                 sheet.exaggeration == std::floor(sheet.exaggeration) ? 0 : 1)));
  }
}

TEST(ComposeSheet, ExtremeExaggerationsAreBoundedAndStated) {
  for (const auto& [asked, drawn] : {std::pair{1e300, 1000.0}, std::pair{1e-300, 0.01}}) {
    DrawOptions options;
    options.exaggeration = asked;
    const Sheet sheet = ComposeSheet(LondonSection(), {}, options);
    EXPECT_DOUBLE_EQ(sheet.exaggeration, drawn);
    ExpectInsideAndFinite(sheet);
  }
}

TEST(ComposeSheet, EverythingLiesOnTheSheet) {
  const Section section = LondonSection();
  for (const double exaggeration : {1.0, 2.5, 20.0}) {
    DrawOptions options;
    options.exaggeration = exaggeration;
    ExpectInsideAndFinite(ComposeSheet(section, {}, options));
  }
}

TEST(ComposeSheet, OneFillPerLeafAndOnePolylinePerLine) {
  const Section section = LondonSection();
  const Sheet sheet = ComposeSheet(section, {}, {});
  EXPECT_EQ(PathsOn(sheet, Layer::Strata).size(), testing::LeafCount(section));
  EXPECT_EQ(PathsOn(sheet, Layer::SectionLines).size(), testing::LineCount(section));
  // The ground joins the five collars.
  const std::vector<const Path*> ground = PathsOn(sheet, Layer::Ground);
  ASSERT_EQ(ground.size(), 1u);
  EXPECT_EQ(ground[0]->points.size(), 5u);
}

TEST(ComposeSheet, NamesOfCloseHolesDoNotOverlap) {
  std::vector<std::pair<std::string, DataType::_sZK>> holes;
  for (int i = 0; i < 4; ++i) {
    const double x = i < 3 ? 3.0 * i : 300.0;
    holes.push_back({"BH-" + std::to_string(1000 + i),
                     MakeHole(L"", x, 0.0, {{L"A", 10.0, 4.0}, {L"B", 4.0, -2.0}})});
  }
  const Sheet sheet = ComposeSheet(CorrelatedSection("close", holes), {}, {});
  struct Span {
    double left, right, top, bottom;
  };
  std::vector<Span> names;
  for (const Text* text : TextsOn(sheet, Layer::BoreholeLabels)) {
    if (text->bold) {
      const double half = 0.5 * TextWidth(text->text, text->size, true);
      names.push_back({text->at.x - half, text->at.x + half, text->at.y - text->size, text->at.y});
    }
  }
  ASSERT_EQ(names.size(), 4u);
  for (std::size_t i = 0; i < names.size(); ++i) {
    for (std::size_t j = i + 1; j < names.size(); ++j) {
      const bool apart = names[i].right <= names[j].left || names[j].right <= names[i].left ||
                         names[i].bottom <= names[j].top || names[j].bottom <= names[i].top;
      EXPECT_TRUE(apart) << i << " and " << j;
    }
  }
  ExpectInsideAndFinite(sheet);
}

TEST(ComposeSheet, LegendListsEachCodeOnceFromTheTopDown) {
  Legend legend;
  legend[L"LC"] = {"#123456", "London Clay Formation"};
  const Sheet sheet = ComposeSheet(LondonSection(), legend, {});
  std::vector<std::string> codes;
  for (const Text* text : TextsOn(sheet, Layer::Legend)) {
    if (text->bold && text->text != "Legend") {
      codes.push_back(text->text);
    }
  }
  const std::set<std::string> unique(codes.begin(), codes.end());
  EXPECT_EQ(unique, (std::set<std::string>{"MG", "ALV", "PEAT", "RTD", "LC", "CLST", "LMG"}));
  EXPECT_EQ(unique.size(), codes.size());
  EXPECT_EQ(codes.front(), "MG");
  EXPECT_EQ(codes.back(), "LMG");
  EXPECT_TRUE(Mentions(sheet, Layer::Legend, "London Clay Formation"));
  bool swatch = false;
  for (const Path* path : PathsOn(sheet, Layer::Legend)) {
    swatch = swatch || (path->code == L"LC" && path->fill == Rgb{0x12, 0x34, 0x56});
  }
  EXPECT_TRUE(swatch);
}

TEST(ComposeSheet, DirectionsOfTheEndsFollowThePlan) {
  // The London holes run north-east: the left end lies south-west.
  const Sheet sheet = ComposeSheet(LondonSection(), {}, {});
  std::vector<std::string> ends;
  for (const Text* text : TextsOn(sheet, Layer::Axes)) {
    if (text->bold && text->rotation == 0.0 && text->text.size() <= 3) {
      ends.push_back(text->text);
    }
  }
  EXPECT_EQ(ends, (std::vector<std::string>{"WSW", "ENE"}));
}

TEST(ComposeSheet, TallSectionsAreShrunkToThePage) {
  const Section deep =
      CorrelatedSection("deep", {{"A", MakeHole(L"A", 0.0, 0.0, {{L"A", 0.0, -150.0}})},
                                 {"B", MakeHole(L"B", 5.0, 0.0, {{L"A", 0.0, -160.0}})}});
  DrawOptions options;
  options.exaggeration = 1.0;
  const Sheet sheet = ComposeSheet(deep, {}, options);
  EXPECT_LE(sheet.height, 0.62 * options.sheetWidth + 200.0);
  EXPECT_DOUBLE_EQ(sheet.exaggeration, 1.0);
  ExpectInsideAndFinite(sheet);
}

TEST(ComposeSheet, UndrawableInputLeavesNoTrace) {
  Section section = LondonSection();
  section.holes[4].chainage = std::numeric_limits<double>::quiet_NaN();
  section.holes[2].zk.vecDC[1].dBotGC = std::numeric_limits<double>::infinity();
  section.pairs[0].root.vecChild[0].ptBot[1].z = -std::numeric_limits<double>::infinity();
  const Sheet sheet = ComposeSheet(section, {}, {});
  ExpectInsideAndFinite(sheet);
  EXPECT_FALSE(Mentions(sheet, Layer::BoreholeLabels, "BH5"));

  ExpectInsideAndFinite(ComposeSheet(Section{}, {}, {}));
}

} // namespace
} // namespace xklink::drawing
