// The SVG of a section, checked by a real XML parser (libxml2) and rendered by rsvg-convert.
#include "SectionFixtures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <limits>
#include <map>
#include <memory>
#include <regex>

namespace xklink {
namespace {

using testing::CorrelatedSection;
using testing::LondonSection;
using testing::MakeHole;

// A parsed document with XPath over the SVG namespace (prefix "s").
class SvgDocument {
public:
  explicit SvgDocument(const std::string& svg) {
    m_doc.reset(xmlReadMemory(svg.data(), static_cast<int>(svg.size()), "section.svg", nullptr,
                              XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (m_doc) {
      m_context.reset(xmlXPathNewContext(m_doc.get()));
      xmlXPathRegisterNs(m_context.get(), BAD_CAST "s", BAD_CAST "http://www.w3.org/2000/svg");
    }
  }

  bool Valid() const { return m_doc != nullptr; }

  // The text content (or attribute value) of every node that `xpath` selects, in document order.
  std::vector<std::string> Values(const std::string& xpath) const {
    std::vector<std::string> values;
    std::unique_ptr<xmlXPathObject, decltype(&xmlXPathFreeObject)> result(
        xmlXPathEvalExpression(BAD_CAST xpath.c_str(), m_context.get()), xmlXPathFreeObject);
    if (!result || result->nodesetval == nullptr) {
      return values;
    }
    for (int i = 0; i < result->nodesetval->nodeNr; ++i) {
      xmlChar* content = xmlNodeGetContent(result->nodesetval->nodeTab[i]);
      values.emplace_back(reinterpret_cast<const char*>(content));
      xmlFree(content);
    }
    return values;
  }

  std::size_t Count(const std::string& xpath) const { return Values(xpath).size(); }

private:
  struct FreeDoc {
    void operator()(xmlDoc* d) const { xmlFreeDoc(d); }
  };
  struct FreeContext {
    void operator()(xmlXPathContext* c) const { xmlXPathFreeContext(c); }
  };
  std::unique_ptr<xmlDoc, FreeDoc> m_doc;
  std::unique_ptr<xmlXPathContext, FreeContext> m_context;
};

std::multiset<std::string> LeafNames(const Section& section) {
  std::multiset<std::string> names;
  const std::function<void(const DataType::_sLinkRegion&)> walk =
      [&](const DataType::_sLinkRegion& region) {
        if (!region.strName.empty()) {
          names.insert(std::string(region.strName.begin(), region.strName.end()));
        }
        for (const DataType::_sLinkRegion& child : region.vecChild) {
          walk(child);
        }
      };
  for (const SectionPair& pair : section.pairs) {
    walk(pair.root);
  }
  return names;
}

// A number as the sheet prints it: a minus sign (U+2212) or a hyphen.
double SheetNumber(std::string text) {
  if (text.rfind("\xE2\x88\x92", 0) == 0) {
    text.replace(0, 3, "-");
  }
  return std::stod(text);
}

TEST(RenderSvg, IsWellFormedSvgWithOneShapePerRegionAndLine) {
  const Section section = LondonSection();
  const SvgDocument svg(RenderSvg(section, {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Count("/s:svg"), 1u);
  EXPECT_EQ(svg.Count("//s:g[@class='strata']/s:polygon"), testing::LeafCount(section));
  EXPECT_EQ(svg.Count("//s:g[@class='section-lines']/s:polyline"), testing::LineCount(section));
  const std::vector<std::string> titles = svg.Values("//s:g[@class='strata']/s:polygon/s:title");
  EXPECT_EQ(std::multiset<std::string>(titles.begin(), titles.end()), LeafNames(section));
  for (const std::string name : {"BH1", "BH2", "BH3", "BH4", "BH5"}) {
    EXPECT_EQ(svg.Count("//s:g[@class='borehole-labels']/s:text[. = '" + name + "']"), 1u);
  }
  EXPECT_EQ(svg.Count("//s:text[. = 'GL 6.20']"), 1u);
}

TEST(RenderSvg, LensIsPaintedAfterItsHost) {
  const Section section = CorrelatedSection(
      "lens", {{"W", MakeHole(L"W", 0.0, 0.0, {{L"CLAY", 10.0, 0.0}})},
               {"E", MakeHole(L"E", 30.0, 40.0,
                              {{L"CLAY", 10.0, 6.0}, {L"SAND", 6.0, 4.0}, {L"CLAY", 4.0, 0.0}})}});
  const SvgDocument svg(RenderSvg(section, {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Values("//s:g[@class='strata']/s:polygon/s:title"),
            (std::vector<std::string>{"CLAY", "SAND"}));
}

TEST(RenderSvg, StatedExaggerationIsTheDrawnOne) {
  for (const double asked : {0.0, 1.0, 4.0}) {
    DrawOptions options;
    options.exaggeration = asked;
    const SvgDocument svg(RenderSvg(LondonSection(), {}, options));
    ASSERT_TRUE(svg.Valid());
    const std::vector<std::string> subtitle =
        svg.Values("//s:g[@class='title']/s:text[contains(., 'Vertical exaggeration')]");
    ASSERT_EQ(subtitle.size(), 1u);
    std::smatch match;
    ASSERT_TRUE(std::regex_search(subtitle[0], match, std::regex("\xC3\x97([0-9.]+)")));
    const double stated = std::stod(match[1]);
    if (asked > 0.0) {
      EXPECT_DOUBLE_EQ(stated, asked);
    }
    // Sheet units per metre, measured between the first and last tick labels of each axis.
    const auto scale = [&svg](const std::string& anchor, const char* coordinate) {
      const std::string base =
          "//s:g[@class='axes']/s:text[@text-anchor='" + anchor + "' and not(@font-weight)]";
      const std::vector<std::string> values = svg.Values(base);
      const std::vector<std::string> positions = svg.Values(base + "/@" + coordinate);
      EXPECT_GE(values.size(), 2u);
      return std::fabs((std::stod(positions.back()) - std::stod(positions.front())) /
                       (SheetNumber(values.back()) - SheetNumber(values.front())));
    };
    EXPECT_NEAR(scale("end", "y") / scale("middle", "x"), stated, 0.01 * stated);
  }
}

Section AwkwardSection() {
  const DataType::_sZK a = MakeHole(L"", 0.0, 0.0,
                                    {{L"A&B", 10.0, 8.0},
                                     {L"<C>", 8.0, 5.0},
                                     {L"\"Q\" 'R'", 5.0, 3.0},
                                     {L"Ton \u00FC \u7C98\u571F", 3.0, 0.0}});
  const DataType::_sZK b =
      MakeHole(L"", 40.0, 0.0,
               {{L"A&B", 11.0, 9.0}, {L"<C>", 9.0, 4.0}, {L"Ton \u00FC \u7C98\u571F", 4.0, -1.0}});
  Section section = CorrelatedSection("Cut & <fill> \"A\"", {{"BH<1>&", a},
                                                             {"BH \xC3\x9C"
                                                              "2",
                                                              b}});
  return section;
}

TEST(RenderSvg, EscapesCodesNamesAndTitle) {
  const std::string text = RenderSvg(AwkwardSection(), {}, {});
  const SvgDocument svg(text);
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Values("/s:svg/s:title"), (std::vector<std::string>{"Cut & <fill> \"A\""}));
  const std::vector<std::string> titles = svg.Values("//s:g[@class='strata']/s:polygon/s:title");
  for (const std::string code : {"A&B", "<C>", "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F"}) {
    EXPECT_NE(std::find(titles.begin(), titles.end(), code), titles.end()) << code;
  }
  EXPECT_NE(std::find(titles.begin(), titles.end(), "\"Q\" 'R'"), titles.end());
  EXPECT_EQ(svg.Count("//s:text[. = 'BH<1>&']"), 1u);
  EXPECT_EQ(svg.Count("//s:text[. = 'BH \xC3\x9C"
                      "2']"),
            1u);
}

TEST(RenderSvg, NonFiniteInputNeverReachesTheFile) {
  Section section = LondonSection();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  section.pairs[0].root.vecChild[1].ptTop[0].x = kNaN;
  section.pairs[2].lines[1].pt1.z = std::numeric_limits<double>::infinity();
  section.holes[3].zk.vecDC[2].dTopGC = kNaN;
  section.holes[4].chainage = kNaN;
  const std::string text = RenderSvg(section, {}, {});
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  EXPECT_EQ(lower.find("nan"), std::string::npos);
  EXPECT_EQ(lower.find("inf"), std::string::npos);
  EXPECT_TRUE(SvgDocument(text).Valid());
}

TEST(RenderSvg, SameCodeSameColourInEverySection) {
  const auto fillOf = [](const Section& section, const std::string& code) {
    const SvgDocument svg(RenderSvg(section, {}, {}));
    return svg.Values("//s:g[@class='strata']/s:polygon[s:title = '" + code + "']/@fill");
  };
  const std::vector<std::string> london = fillOf(LondonSection(), "LC");
  const std::vector<std::string> other =
      fillOf(CorrelatedSection("other", {{"X", MakeHole(L"X", 0.0, 0.0, {{L"LC", 0.0, -5.0}})},
                                         {"Y", MakeHole(L"Y", 9.0, 0.0, {{L"LC", 1.0, -7.0}})}}),
             "LC");
  ASSERT_FALSE(london.empty());
  ASSERT_EQ(other.size(), 1u);
  for (const std::string& fill : london) {
    EXPECT_EQ(fill, other[0]);
  }
}

// Width and height from the IHDR chunk of a PNG file, or (0, 0) when it is no PNG.
std::pair<unsigned, unsigned> PngSize(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::string head(24, '\0');
  in.read(head.data(), 24);
  if (!in || head.compare(0, 8, "\x89PNG\r\n\x1A\n") != 0 || head.compare(12, 4, "IHDR") != 0) {
    return {0, 0};
  }
  const auto big = [&head](std::size_t at) {
    unsigned v = 0;
    for (std::size_t i = 0; i < 4; ++i) {
      v = (v << 8) | static_cast<unsigned char>(head[at + i]);
    }
    return v;
  };
  return {big(16), big(20)};
}

TEST(RenderSvg, RsvgConvertRendersIt) {
  const std::string rsvg = XKLINKDC_RSVG_CONVERT;
  ASSERT_FALSE(rsvg.empty() || rsvg.find("NOTFOUND") != std::string::npos)
      << "rsvg-convert (Debian package librsvg2-bin) is needed";
  const std::filesystem::path dir =
      std::filesystem::temp_directory_path() /
      ("xklink-svg-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()));
  std::filesystem::create_directories(dir);
  Legend legend;
  legend[L"LC"] = {"#b08a62", "London Clay Formation"};
  const std::map<std::string, Section> sections = {{"london", LondonSection()},
                                                   {"awkward", AwkwardSection()}};
  for (const auto& [name, section] : sections) {
    const std::string svg = RenderSvg(section, legend, {});
    const std::filesystem::path in = dir / (name + ".svg");
    const std::filesystem::path out = dir / (name + ".png");
    std::ofstream(in, std::ios::binary) << svg;
    const std::string command = "'" + rsvg + "' -o '" + out.string() + "' '" + in.string() +
                                "' 2>'" + (dir / (name + ".log")).string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    const SvgDocument doc(svg);
    const double width = std::stod(doc.Values("/s:svg/@width").at(0));
    const double height = std::stod(doc.Values("/s:svg/@height").at(0));
    const auto [pngWidth, pngHeight] = PngSize(out);
    EXPECT_NEAR(pngWidth, width, 1.0) << name;
    EXPECT_NEAR(pngHeight, height, 1.0) << name;
  }
  std::filesystem::remove_all(dir);
}

} // namespace
} // namespace xklink
