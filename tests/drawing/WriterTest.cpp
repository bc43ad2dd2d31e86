// The SVG and the DXF of a section, read back by a real XML parser (libxml2) and by dxflib's own
// reader. Non-finite input is kept off the sheet that both writers draw from (SheetTest).
#include "SectionFixtures.h"
#include "SectionGeometry.h"

#include <algorithm>
#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <map>
#include <memory>
#include <set>
#include <sstream>

namespace xklink {
namespace {

// The text content (or attribute value) of every node that `xpath` selects in the parsed SVG, in
// document order, with the SVG namespace as prefix "s"; a document that does not parse fails.
std::vector<std::string> Values(const std::string& svg, const std::string& xpath) {
  const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(
      xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "section.svg", nullptr,
                    XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
      xmlFreeDoc);
  EXPECT_NE(doc, nullptr) << "not well-formed";
  const std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> context(
      doc ? xmlXPathNewContext(doc.get()) : nullptr, xmlXPathFreeContext);
  std::vector<std::string> values;
  if (!context) {
    return values;
  }
  xmlXPathRegisterNs(context.get(), BAD_CAST "s", BAD_CAST "http://www.w3.org/2000/svg");
  const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
      xmlXPathEvalExpression(BAD_CAST xpath.c_str(), context.get()), xmlXPathFreeObject);
  for (int i = 0; result && result->nodesetval && i < result->nodesetval->nodeNr; ++i) {
    xmlChar* content = xmlNodeGetContent(result->nodesetval->nodeTab[i]);
    values.emplace_back(reinterpret_cast<const char*>(content));
    xmlFree(content);
  }
  return values;
}

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

// The section lines and the leaf regions of every pair, each of which the drawing fills.
struct Counts {
  std::size_t lines = 0;
  std::size_t leaves = 0;
};
Counts CountsOf(const Section& section) {
  Counts counts;
  for (const SectionPair& pair : section.pairs) {
    counts.lines += pair.lines.size();
    drawing::ForEachLeafRegion(pair.root, [&](const DataType::_sLinkRegion&) { ++counts.leaves; });
  }
  return counts;
}

const char* const kStrata = "//s:g[@class='strata']/s:polygon/s:title";
const char* const kHoleNames = "//s:g[@class='borehole-labels']/s:text[@font-weight='bold']";

TEST(RenderSvgAndDxf, OneShapePerRegionAndSectionLinesAtTheirSectionPositions) {
  const Section section = testing::NleSection();
  const Counts counts = CountsOf(section);
  const std::string svg = RenderSvg(section, {}, {});
  EXPECT_EQ(Values(svg, kStrata).size(), counts.leaves);
  EXPECT_EQ(Values(svg, "//s:g[@class='section-lines']/s:polyline").size(), counts.lines);
  EXPECT_EQ(Values(svg, kHoleNames),
            (std::vector<std::string>{"BH01", "BH02", "BH03", "BH04", "BH05"}));
  EXPECT_EQ(Values(svg, "//s:g[@class='borehole-labels']/s:text[. = 'GL 4.08']").size(), 1u);
  // A lens in a line is drawn after its host.
  EXPECT_EQ(Values(RenderSvg(testing::LensOfSecondHole(), {}, {}), kStrata),
            (std::vector<std::string>{"CLAY", "SAND"}));

  DrawOptions options;
  options.exaggeration = 4.0;
  options.title = "Section A";
  const ReadBack dxf(RenderDxf(section, {}, options));
  // Drawing units: x the distance along the section, y the elevation times the exaggeration.
  std::vector<::testing::Matcher<std::vector<double>>> expected;
  for (const drawing::LineShape& line : drawing::CollectLineShapes(section)) {
    expected.push_back(::testing::Pointwise(
        ::testing::DoubleNear(1e-6),
        std::vector<double>{line.from.s, line.from.z * 4.0, line.to.s, line.to.z * 4.0}));
  }
  std::vector<std::vector<double>> actual;
  for (auto [line, end] = dxf.polylines.equal_range("SECTION-LINES"); line != end; ++line) {
    EXPECT_FALSE(line->second.closed);
    actual.push_back(line->second.xy);
  }
  ASSERT_EQ(actual.size(), counts.lines);
  EXPECT_THAT(actual, ::testing::UnorderedElementsAreArray(expected));
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
  EXPECT_EQ(hatches, counts.leaves);
  EXPECT_EQ(outlines, counts.leaves);
  const auto [first, last] = dxf.texts.equal_range("TITLE");
  EXPECT_TRUE(std::any_of(first, last, [](const auto& t) { return t.second == "Section A"; }));
  EXPECT_TRUE(std::any_of(first, last, [](const auto& t) {
    return t.second.rfind("Vertical exaggeration \\U+00D74", 0) == 0;
  }));
}

TEST(RenderSvgAndDxf, EscapedInSvgAndSafeDistinctLayerNamesInDxf) {
  const Section section = testing::AwkwardCodes();
  const std::string svg = RenderSvg(section, {}, {});
  EXPECT_EQ(Values(svg, "/s:svg/s:title"), (std::vector<std::string>{"Cut & <fill> \"A\""}));
  EXPECT_EQ(Values(svg, kHoleNames), (std::vector<std::string>{"BH<1>&", "BH2 \xC3\x9C"}));
  EXPECT_EQ(Values(svg, kStrata),
            (std::vector<std::string>{"A/B", "A:B", "<C>&\"Q\" 'R'",
                                      "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F"}));

  const ReadBack dxf(RenderDxf(section, {}, {}));
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
