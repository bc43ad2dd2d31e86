// The SVG of a section, checked by a real XML parser (libxml2). Non-finite input is kept off the
// sheet that both writers draw from (SheetTest).
#include "SectionFixtures.h"

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <memory>

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

const char* const kStrata = "//s:g[@class='strata']/s:polygon/s:title";

TEST(RenderSvg, WellFormedWithOneShapePerRegionAndLineLensesAfterTheirHost) {
  const Section section = testing::NleSection();
  const std::string svg = RenderSvg(section, {}, {});
  EXPECT_EQ(Values(svg, kStrata).size(), testing::LeafCount(section));
  EXPECT_EQ(Values(svg, "//s:g[@class='section-lines']/s:polyline").size(),
            testing::LineCount(section));
  EXPECT_EQ(Values(svg, "//s:g[@class='borehole-labels']/s:text[@font-weight='bold']"),
            (std::vector<std::string>{"BH01", "BH02", "BH03", "BH04", "BH05"}));
  EXPECT_EQ(Values(svg, "//s:g[@class='borehole-labels']/s:text[. = 'GL 4.08']").size(), 1u);
  EXPECT_EQ(Values(RenderSvg(testing::LensOfSecondHole(), {}, {}), kStrata),
            (std::vector<std::string>{"CLAY", "SAND"}));
}

TEST(RenderSvg, EscapesCodesNamesAndTitle) {
  const std::string svg = RenderSvg(testing::AwkwardCodes(), {}, {});
  EXPECT_EQ(Values(svg, "/s:svg/s:title"), (std::vector<std::string>{"Cut & <fill> \"A\""}));
  EXPECT_EQ(Values(svg, "//s:g[@class='borehole-labels']/s:text[@font-weight='bold']"),
            (std::vector<std::string>{"BH<1>&", "BH2 \xC3\x9C"}));
  EXPECT_EQ(Values(svg, kStrata),
            (std::vector<std::string>{"A/B", "A:B", "<C>&\"Q\" 'R'",
                                      "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F"}));
}

} // namespace
} // namespace xklink
