// The DXF of a section, read back by dxflib's own reader.
#include "SectionFixtures.h"
#include "SectionGeometry.h"

#include <algorithm>
#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>

namespace xklink {
namespace {

struct ReadBack : public DL_CreationAdapter {
  explicit ReadBack(const std::string& dxf) {
    std::istringstream in(dxf);
    EXPECT_TRUE(DL_Dxf().in(in, this));
  }
  struct Polyline {
    bool closed = false;
    std::vector<double> xy;
  };
  std::vector<std::string> layers;
  std::multimap<std::string, Polyline> polylines; // layer -> polyline
  Polyline* last = nullptr;
  std::map<std::string, std::size_t> hatches;
  std::multimap<std::string, std::string> texts; // layer -> text

  void addLayer(const DL_LayerData& data) override { layers.push_back(data.name); }
  void addPolyline(const DL_PolylineData& data) override {
    last =
        &polylines.emplace(getAttributes().getLayer(), Polyline{(data.flags & 1) != 0, {}})->second;
  }
  void addVertex(const DL_VertexData& data) override {
    ASSERT_NE(last, nullptr);
    last->xy.insert(last->xy.end(), {data.x, data.y});
  }
  void addHatch(const DL_HatchData&) override { ++hatches[getAttributes().getLayer()]; }
  void addText(const DL_TextData& data) override {
    texts.emplace(getAttributes().getLayer(), data.text);
  }
};

TEST(RenderDxf, SectionLinesAtTheirSectionPositionsAndRegionsOnTheirStratumLayers) {
  const Section section = testing::NleSection();
  DrawOptions options;
  options.exaggeration = 4.0;
  options.title = "Section A";
  const ReadBack dxf(RenderDxf(section, {}, options));
  // Drawing units: x the distance along the section, y the elevation times the exaggeration.
  std::vector<std::vector<double>> expected;
  for (const drawing::LineShape& line : drawing::CollectLineShapes(section)) {
    expected.push_back({line.from.s, line.from.z * 4.0, line.to.s, line.to.z * 4.0});
  }
  std::vector<std::vector<double>> actual;
  for (auto [line, end] = dxf.polylines.equal_range("SECTION-LINES"); line != end; ++line) {
    EXPECT_FALSE(line->second.closed);
    actual.push_back(line->second.xy);
  }
  ASSERT_EQ(actual.size(), testing::LineCount(section));
  std::sort(expected.begin(), expected.end());
  std::sort(actual.begin(), actual.end());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_THAT(actual[i], ::testing::Pointwise(::testing::DoubleNear(1e-6), expected[i])) << i;
  }
  // Each code of the Battersea holes has its layer, with one closed outline and one hatch per leaf.
  std::set<std::string> codes;
  std::size_t hatches = 0;
  std::size_t outlines = 0;
  for (const std::string& layer : dxf.layers) {
    if (layer.rfind("STRATA-", 0) == 0) {
      codes.insert(layer.substr(7));
      hatches += dxf.hatches.contains(layer) ? dxf.hatches.at(layer) : 0;
      for (auto [outline, end] = dxf.polylines.equal_range(layer); outline != end; ++outline) {
        EXPECT_TRUE(outline->second.closed);
        ++outlines;
      }
    }
  }
  EXPECT_EQ(codes, (std::set<std::string>{"TOP", "MG", "ALV", "RTD", "LC", "HAR", "LMG"}));
  EXPECT_EQ(hatches, testing::LeafCount(section));
  EXPECT_EQ(outlines, testing::LeafCount(section));
  const auto [first, last] = dxf.texts.equal_range("TITLE");
  EXPECT_TRUE(std::any_of(first, last, [](const auto& t) { return t.second == "Section A"; }));
  EXPECT_TRUE(std::any_of(first, last, [](const auto& t) {
    return t.second.rfind("Vertical exaggeration \\U+00D74", 0) == 0;
  }));
}

TEST(RenderDxf, LayerNamesAreSafeAndDistinct) {
  const ReadBack dxf(RenderDxf(testing::AwkwardCodes(), {}, {}));
  std::size_t strata = 0;
  for (const std::string& layer : dxf.layers) {
    EXPECT_EQ(layer.find_first_of("<>/\\\":;?*|=`, "), std::string::npos) << layer;
    EXPECT_TRUE(std::all_of(layer.begin(), layer.end(),
                            [](char c) { return static_cast<unsigned char>(c) < 0x80; }));
    strata += layer.rfind("STRATA-", 0) == 0 ? 1u : 0u;
  }
  EXPECT_EQ(strata, 4u);
  EXPECT_EQ(std::set<std::string>(dxf.layers.begin(), dxf.layers.end()).size(), dxf.layers.size());
}

} // namespace
} // namespace xklink
