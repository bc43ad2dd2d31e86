// The SVG of a section, checked by a real XML parser (libxml2) and rendered by rsvg-convert.
#include "SectionFixtures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <limits>
#include <memory>
#include <regex>

namespace xklink {
namespace {

using testing::LondonSection;
using testing::MakeHole;

// A parsed document with XPath over the SVG namespace (prefix "s").
class SvgDocument {
public:
  explicit SvgDocument(const std::string& svg)
      : m_doc(xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "section.svg", nullptr,
                            XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
              xmlFreeDoc),
        m_context(m_doc ? xmlXPathNewContext(m_doc.get()) : nullptr, xmlXPathFreeContext) {
    if (m_context) {
      xmlXPathRegisterNs(m_context.get(), BAD_CAST "s", BAD_CAST "http://www.w3.org/2000/svg");
    }
  }
  bool Valid() const { return m_context != nullptr; }

  // The text content (or attribute value) of every node that `xpath` selects, in document order.
  std::vector<std::string> Values(const std::string& xpath) const {
    std::vector<std::string> values;
    const std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
        xmlXPathEvalExpression(BAD_CAST xpath.c_str(), m_context.get()), xmlXPathFreeObject);
    for (int i = 0; result && result->nodesetval && i < result->nodesetval->nodeNr; ++i) {
      xmlChar* content = xmlNodeGetContent(result->nodesetval->nodeTab[i]);
      values.emplace_back(reinterpret_cast<const char*>(content));
      xmlFree(content);
    }
    return values;
  }
  std::size_t Count(const std::string& xpath) const { return Values(xpath).size(); }

private:
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> m_doc;
  std::unique_ptr<xmlXPathContext, decltype(&xmlXPathFreeContext)> m_context;
};

const char* const kStrata = "//s:g[@class='strata']/s:polygon/s:title";

Section AwkwardSection() {
  const std::wstring ton = L"Ton \u00FC \u7C98\u571F";
  return testing::CorrelatedSection(
      "Cut & <fill> \"A\"",
      {{"BH<1>&", MakeHole(L"", 0.0, 0.0,
                           {{L"A&B", 10.0, 8.0}, {L"<C>", 8.0, 5.0}, {L"\"Q\" 'R'", 5.0, 3.0},
                            {ton, 3.0, 0.0}})},
       {"BH \xC3\x9C" "2", MakeHole(L"", 40.0, 0.0,
                                    {{L"A&B", 11.0, 9.0}, {L"<C>", 9.0, 4.0}, {ton, 4.0, -1.0}})}});
}

TEST(RenderSvg, WellFormedWithOneShapePerRegionAndLineLensesAfterTheirHost) {
  const Section section = LondonSection();
  const SvgDocument svg(RenderSvg(section, {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Count(kStrata), testing::LeafCount(section));
  EXPECT_EQ(svg.Count("//s:g[@class='section-lines']/s:polyline"), testing::LineCount(section));
  for (const std::string name : {"BH1", "BH2", "BH3", "BH4", "BH5", "GL 6.20"}) {
    EXPECT_EQ(svg.Count("//s:g[@class='borehole-labels']/s:text[. = '" + name + "']"), 1u) << name;
  }
  const SvgDocument lens(RenderSvg(testing::LensOfSecondHole(), {}, {}));
  EXPECT_EQ(lens.Values(kStrata), (std::vector<std::string>{"CLAY", "SAND"}));
}

// A number as the sheet prints it: a minus sign (U+2212) or a hyphen.
double SheetNumber(std::string text) {
  if (text.rfind("\xE2\x88\x92", 0) == 0) {
    text.replace(0, 3, "-");
  }
  return std::stod(text);
}

TEST(RenderSvg, StatedExaggerationIsTheDrawnOne) {
  for (const double asked : {0.0, 1.0, 4.0}) {
    SCOPED_TRACE(asked);
    DrawOptions options;
    options.exaggeration = asked;
    const SvgDocument svg(RenderSvg(LondonSection(), {}, options));
    const std::vector<std::string> subtitle =
        svg.Values("//s:g[@class='title']/s:text[contains(., 'Vertical exaggeration')]");
    ASSERT_EQ(subtitle.size(), 1u);
    std::smatch match;
    ASSERT_TRUE(std::regex_search(subtitle[0], match, std::regex("\xC3\x97([0-9.]+)")));
    const double stated = std::stod(match[1]);
    if (asked > 0.0) {
      EXPECT_DOUBLE_EQ(stated, asked);
    }
    // Sheet units per metre, between the first and last tick labels of each axis.
    const auto scale = [&svg](const std::string& anchor, const char* coordinate) {
      const std::string base =
          "//s:g[@class='axes']/s:text[@text-anchor='" + anchor + "' and not(@font-weight)]";
      const std::vector<std::string> values = svg.Values(base);
      const std::vector<std::string> at = svg.Values(base + "/@" + coordinate);
      EXPECT_GE(values.size(), 2u);
      return std::fabs((std::stod(at.back()) - std::stod(at.front())) /
                       (SheetNumber(values.back()) - SheetNumber(values.front())));
    };
    EXPECT_NEAR(scale("end", "y") / scale("middle", "x"), stated, 0.01 * stated);
  }
}

TEST(RenderSvg, EscapesCodesNamesAndTitle) {
  const SvgDocument svg(RenderSvg(AwkwardSection(), {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Values("/s:svg/s:title"), (std::vector<std::string>{"Cut & <fill> \"A\""}));
  const std::vector<std::string> titles = svg.Values(kStrata);
  for (const std::string code : {"A&B", "<C>", "\"Q\" 'R'", "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F"}) {
    EXPECT_NE(std::find(titles.begin(), titles.end(), code), titles.end()) << code;
  }
  EXPECT_EQ(svg.Count("//s:text[. = 'BH<1>&']"), 1u);
  EXPECT_EQ(svg.Count("//s:text[. = 'BH \xC3\x9C" "2']"), 1u);
}

TEST(RenderSvg, NonFiniteInputNeverReachesTheFile) {
  Section section = LondonSection();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  section.pairs[0].root.vecChild[1].ptTop[0].x = kNaN;
  section.pairs[2].lines[1].pt1.z = std::numeric_limits<double>::infinity();
  section.holes[3].zk.vecDC[2].dTopGC = kNaN;
  section.holes[4].chainage = kNaN;
  const std::string text = RenderSvg(section, {}, {});
  EXPECT_FALSE(std::regex_search(text, std::regex("nan|inf", std::regex::icase)));
  EXPECT_TRUE(SvgDocument(text).Valid());
}

TEST(RenderSvg, SameCodeSameColourInEverySection) {
  const auto fillOf = [](const Section& section) {
    return SvgDocument(RenderSvg(section, {}, {}))
        .Values("//s:g[@class='strata']/s:polygon[s:title = 'LC']/@fill");
  };
  const std::vector<std::string> london = fillOf(LondonSection());
  const std::vector<std::string> other = fillOf(testing::CorrelatedSection(
      "other", {{"X", MakeHole(L"X", 0.0, 0.0, {{L"LC", 0.0, -5.0}})},
                {"Y", MakeHole(L"Y", 9.0, 0.0, {{L"LC", 1.0, -7.0}})}}));
  ASSERT_FALSE(london.empty());
  ASSERT_EQ(other.size(), 1u);
  EXPECT_EQ(std::count(london.begin(), london.end(), other[0]), std::ssize(london));
}

TEST(RenderSvg, RsvgConvertRendersItAtItsSize) {
  const std::string rsvg = XKLINKDC_RSVG_CONVERT;
  ASSERT_FALSE(rsvg.empty() || rsvg.find("NOTFOUND") != std::string::npos)
      << "rsvg-convert (Debian package librsvg2-bin) is needed";
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() /
      ("xklink-svg-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
  std::filesystem::create_directories(dir);
  Legend legend;
  legend[L"LC"] = {"#b08a62", "London Clay Formation"};
  for (const auto& [name, section] : {std::pair<std::string, Section>{"london", LondonSection()},
                                      {"awkward", AwkwardSection()}}) {
    SCOPED_TRACE(name);
    const std::string svg = RenderSvg(section, legend, {});
    const std::filesystem::path in = dir / (name + ".svg");
    const std::filesystem::path out = dir / (name + ".png");
    std::ofstream(in, std::ios::binary) << svg;
    const std::string command = "'" + rsvg + "' -o '" + out.string() + "' '" + in.string() +
                                "' 2>'" + (dir / (name + ".log")).string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    // The PNG has the size of the sheet: width and height from its IHDR chunk.
    std::ifstream png(out, std::ios::binary);
    std::string head(24, '\0');
    png.read(head.data(), 24);
    ASSERT_EQ(head.substr(12, 4), "IHDR");
    const SvgDocument doc(svg);
    for (const auto& [at, attribute] : {std::pair{16, "width"}, std::pair{20, "height"}}) {
      unsigned size = 0;
      for (int i = at; i < at + 4; ++i) {
        size = (size << 8) | static_cast<unsigned char>(head[static_cast<std::size_t>(i)]);
      }
      EXPECT_NEAR(size, std::stod(doc.Values(std::string("/s:svg/@") + attribute).at(0)), 1.0);
    }
  }
  std::filesystem::remove_all(dir);
}

} // namespace
} // namespace xklink
