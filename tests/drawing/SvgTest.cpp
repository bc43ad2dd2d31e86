// The SVG of a section, checked by a real XML parser (libxml2). Non-finite input is kept off the
// sheet that both writers draw from (SheetTest).
#include "SectionFixtures.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>
#include <memory>

namespace xklink {
namespace {

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

TEST(RenderSvg, WellFormedWithOneShapePerRegionAndLineLensesAfterTheirHost) {
  const Section section = testing::NleSection();
  const SvgDocument svg(RenderSvg(section, {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Count(kStrata), testing::LeafCount(section));
  EXPECT_EQ(svg.Count("//s:g[@class='section-lines']/s:polyline"), testing::LineCount(section));
  for (const std::string name : {"BH01", "BH02", "BH03", "BH04", "BH05", "GL 4.08"}) {
    EXPECT_EQ(svg.Count("//s:g[@class='borehole-labels']/s:text[. = '" + name + "']"), 1u) << name;
  }
  const SvgDocument lens(RenderSvg(testing::LensOfSecondHole(), {}, {}));
  EXPECT_EQ(lens.Values(kStrata), (std::vector<std::string>{"CLAY", "SAND"}));
}

TEST(RenderSvg, EscapesCodesNamesAndTitle) {
  const SvgDocument svg(RenderSvg(testing::AwkwardCodes(), {}, {}));
  ASSERT_TRUE(svg.Valid());
  EXPECT_EQ(svg.Values("/s:svg/s:title"), (std::vector<std::string>{"Cut & <fill> \"A\""}));
  EXPECT_EQ(svg.Values("//s:g[@class='borehole-labels']/s:text[@font-weight='bold']"),
            (std::vector<std::string>{"BH<1>&", "BH2 \xC3\x9C"}));
  EXPECT_EQ(svg.Values(kStrata),
            (std::vector<std::string>{"A/B", "A:B", "<C>&\"Q\" 'R'",
                                      "Ton \xC3\xBC \xE7\xB2\x98\xE5\x9C\x9F"}));
}

} // namespace
} // namespace xklink
