// The DXF of a section, read back by dxflib's own reader and by ezdxf.
#include "SectionFixtures.h"
#include "SectionGeometry.h"

#include <algorithm>
#include <cstdio>
#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <set>
#include <sstream>

namespace xklink {
namespace {

using testing::CorrelatedSection;
using testing::LondonSection;
using testing::MakeHole;

struct ReadBack : public DL_CreationAdapter {
  struct Polyline {
    std::string layer;
    bool closed = false;
    std::vector<std::pair<double, double>> vertices;
  };
  std::vector<std::string> layers;
  std::vector<Polyline> polylines;
  std::map<std::string, int> hatches;
  std::multimap<std::string, std::string> texts; // layer -> text

  void addLayer(const DL_LayerData& data) override { layers.push_back(data.name); }
  void addPolyline(const DL_PolylineData& data) override {
    polylines.push_back({getAttributes().getLayer(), (data.flags & 1) != 0, {}});
  }
  void addVertex(const DL_VertexData& data) override {
    ASSERT_FALSE(polylines.empty());
    polylines.back().vertices.emplace_back(data.x, data.y);
  }
  void addHatch(const DL_HatchData&) override { ++hatches[getAttributes().getLayer()]; }
  void addText(const DL_TextData& data) override {
    texts.emplace(getAttributes().getLayer(), data.text);
  }

  std::vector<const Polyline*> On(const std::string& layer) const {
    std::vector<const Polyline*> out;
    for (const Polyline& p : polylines) {
      if (p.layer == layer) {
        out.push_back(&p);
      }
    }
    return out;
  }
  bool HasText(const std::string& layer, const std::string& text) const {
    const auto [first, last] = texts.equal_range(layer);
    return std::any_of(first, last, [&text](const auto& entry) { return entry.second == text; });
  }
};

ReadBack Read(const std::string& dxf) {
  ReadBack reader;
  std::istringstream in(dxf);
  DL_Dxf parser;
  EXPECT_TRUE(parser.in(in, &reader));
  return reader;
}

std::set<std::string> Codes(const Section& section) {
  std::set<std::string> codes;
  for (const SectionHole& hole : section.holes) {
    for (const DataType::_sZKDC& stratum : hole.zk.vecDC) {
      codes.insert(std::string(stratum.strName.begin(), stratum.strName.end()));
    }
  }
  return codes;
}

TEST(RenderDxf, OnePolylinePerSectionLineAtItsSectionPosition) {
  const Section section = LondonSection();
  DrawOptions options;
  options.exaggeration = 4.0;
  const ReadBack dxf = Read(RenderDxf(section, {}, options));
  const std::vector<const ReadBack::Polyline*> lines = dxf.On("SECTION-LINES");
  ASSERT_EQ(lines.size(), testing::LineCount(section));
  // Drawing units: x the distance along the section, y the elevation times the exaggeration.
  std::vector<std::array<double, 4>> expected;
  for (const drawing::LineShape& line : drawing::CollectLineShapes(section)) {
    expected.push_back({line.from.s, line.from.z * 4.0, line.to.s, line.to.z * 4.0});
  }
  std::vector<std::array<double, 4>> actual;
  for (const ReadBack::Polyline* line : lines) {
    ASSERT_EQ(line->vertices.size(), 2u);
    EXPECT_FALSE(line->closed);
    actual.push_back({line->vertices[0].first, line->vertices[0].second, line->vertices[1].first,
                      line->vertices[1].second});
  }
  std::sort(expected.begin(), expected.end());
  std::sort(actual.begin(), actual.end());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    for (std::size_t k = 0; k < 4; ++k) {
      EXPECT_NEAR(actual[i][k], expected[i][k], 1e-6) << i;
    }
  }
}

TEST(RenderDxf, EveryRegionIsHatchedAndOutlinedOnItsStratumLayer) {
  const Section section = LondonSection();
  const ReadBack dxf = Read(RenderDxf(section, {}, {}));
  std::size_t hatches = 0;
  std::size_t outlines = 0;
  std::set<std::string> strataLayers;
  for (const std::string& layer : dxf.layers) {
    if (layer.rfind("STRATA-", 0) == 0) {
      strataLayers.insert(layer.substr(7));
      hatches += static_cast<std::size_t>(dxf.hatches.count(layer) ? dxf.hatches.at(layer) : 0);
      for (const ReadBack::Polyline* outline : dxf.On(layer)) {
        EXPECT_TRUE(outline->closed);
        ++outlines;
      }
    }
  }
  // Every code of the London holes is correlated somewhere, so each has its layer.
  EXPECT_EQ(strataLayers, Codes(section));
  EXPECT_EQ(hatches, testing::LeafCount(section));
  EXPECT_EQ(outlines, testing::LeafCount(section));
  for (const std::string layer :
       {"SECTION-LINES", "GROUND", "BOREHOLES", "BOREHOLE-LABELS", "AXES", "LEGEND", "TITLE"}) {
    EXPECT_NE(std::find(dxf.layers.begin(), dxf.layers.end(), layer), dxf.layers.end()) << layer;
  }
  // One cell per stratum and one outline per hole on the borehole layer.
  std::size_t strata = 0;
  for (const SectionHole& hole : section.holes) {
    strata += hole.zk.vecDC.size() + 1;
  }
  EXPECT_EQ(dxf.On("BOREHOLES").size(), strata);
}

TEST(RenderDxf, TextsNameTheHolesAndStateTheExaggeration) {
  DrawOptions options;
  options.exaggeration = 4.0;
  options.title = "Section A";
  const ReadBack dxf = Read(RenderDxf(LondonSection(), {}, options));
  for (const std::string name : {"BH1", "BH2", "BH3", "BH4", "BH5", "GL 6.20"}) {
    EXPECT_TRUE(dxf.HasText("BOREHOLE-LABELS", name)) << name;
  }
  EXPECT_TRUE(dxf.HasText("TITLE", "Section A"));
  const auto [first, last] = dxf.texts.equal_range("TITLE");
  EXPECT_TRUE(std::any_of(first, last, [](const auto& entry) {
    return entry.second.rfind("Vertical exaggeration \\U+00D74", 0) == 0;
  }));
}

TEST(RenderDxf, LayerNamesAreSafeAndDistinct) {
  const Section section = CorrelatedSection(
      "names",
      {{"A", MakeHole(L"A", 0.0, 0.0,
                      {{L"A/B", 10.0, 8.0}, {L"A:B", 8.0, 5.0}, {L"Ton \u00FC", 5.0, 0.0}})},
       {"B", MakeHole(L"B", 40.0, 0.0,
                      {{L"A/B", 11.0, 9.0}, {L"A:B", 9.0, 4.0}, {L"Ton \u00FC", 4.0, -1.0}})}});
  const ReadBack dxf = Read(RenderDxf(section, {}, {}));
  std::set<std::string> strata;
  for (const std::string& layer : dxf.layers) {
    EXPECT_EQ(layer.find_first_of("<>/\\\":;?*|=`, "), std::string::npos) << layer;
    EXPECT_TRUE(std::all_of(layer.begin(), layer.end(),
                            [](char c) { return static_cast<unsigned char>(c) < 0x80; }));
    if (layer.rfind("STRATA-", 0) == 0) {
      strata.insert(layer);
    }
  }
  EXPECT_EQ(strata.size(), 3u);
  EXPECT_EQ(dxf.layers.size(), std::set<std::string>(dxf.layers.begin(), dxf.layers.end()).size());
}

TEST(RenderDxf, NonFiniteInputNeverReachesTheFile) {
  Section section = LondonSection();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  section.pairs[0].root.vecChild[1].ptTop[0].x = kNaN;
  section.pairs[2].lines[1].pt1.z = std::numeric_limits<double>::infinity();
  section.holes[3].zk.vecDC[2].dTopGC = kNaN;
  const std::string text = RenderDxf(section, {}, {});
  std::string lower = text;
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  });
  EXPECT_EQ(lower.find("nan"), std::string::npos);
  EXPECT_EQ(lower.find("inf"), std::string::npos);
  EXPECT_EQ(Read(text).On("SECTION-LINES").size(), testing::LineCount(section) - 1);
}

class DxfFile : public ::testing::Test {
protected:
  void SetUp() override {
    m_dir = std::filesystem::temp_directory_path() /
            ("xklink-dxf-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(m_dir);
  }
  void TearDown() override { std::filesystem::remove_all(m_dir); }
  std::filesystem::path m_dir;
};

TEST_F(DxfFile, WriteDxfWritesTheRenderedDrawing) {
  const Section section = LondonSection();
  const std::filesystem::path path = m_dir / "section.dxf";
  WriteDxf(section, {}, {}, path);
  std::ifstream in(path, std::ios::binary);
  const std::string written((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  EXPECT_EQ(written, RenderDxf(section, {}, {}));
}

TEST_F(DxfFile, UnwritablePathIsAnError) {
  const std::filesystem::path path = m_dir / "missing" / "section.dxf";
  try {
    WriteDxf(LondonSection(), {}, {}, path);
    ADD_FAILURE() << "no error";
  } catch (const DrawingError& e) {
    EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos) << e.what();
  }
}

// ezdxf is stricter about the structure of a drawing than dxflib, and decodes the \U+ escapes
// as CAD programs do.
TEST_F(DxfFile, EzdxfReadsAndAuditsIt) {
  const std::string python = XKLINKDC_SYSTEM_PYTHON3;
  ASSERT_FALSE(python.empty() || python.find("NOTFOUND") != std::string::npos)
      << "python3 with ezdxf (Debian package python3-ezdxf) is needed";
  const Section section = LondonSection();
  DrawOptions options;
  options.exaggeration = 4.0;
  const std::filesystem::path dxf = m_dir / "section.dxf";
  WriteDxf(section, {}, options, dxf);
  const std::filesystem::path script = m_dir / "check.py";
  std::ofstream(script) << R"(import sys, ezdxf
doc = ezdxf.readfile(sys.argv[1])
auditor = doc.audit()
msp = doc.modelspace()
lines = len(msp.query('LWPOLYLINE[layer=="SECTION-LINES"]'))
hatches = sum(1 for e in msp.query('HATCH') if e.dxf.layer.startswith('STRATA-'))
texts = [ezdxf.decode_dxf_unicode(t.dxf.text) for t in msp.query('TEXT')]
stated = any(t.startswith('Vertical exaggeration \u00d74') for t in texts)
print(len(auditor.errors), lines, hatches, int(stated))
)";
  const std::filesystem::path result = m_dir / "result.txt";
  const std::string command = "'" + python + "' '" + script.string() + "' '" + dxf.string() +
                              "' >'" + result.string() + "' 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command;
  std::ifstream in(result);
  std::size_t errors = 99;
  std::size_t lines = 0;
  std::size_t hatches = 0;
  int stated = 0;
  in >> errors >> lines >> hatches >> stated;
  EXPECT_EQ(errors, 0u);
  EXPECT_EQ(lines, testing::LineCount(section));
  EXPECT_EQ(hatches, testing::LeafCount(section));
  EXPECT_EQ(stated, 1);
}

} // namespace
} // namespace xklink
