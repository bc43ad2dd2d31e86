#include "SectionFixtures.h"

#include "ReadBoreholes.h"

#include <cmath>

namespace xklink::testing {

DataType::_sZK MakeHole(const std::wstring& name, double x, double y,
                        const std::vector<Stratum>& strata) {
  DataType::_sZK hole;
  hole.strName = name;
  hole.dX = x;
  hole.dY = y;
  hole.dTopGC = strata.empty() ? 0.0 : strata.front().top;
  for (const Stratum& s : strata) {
    DataType::_sZKDC& dc = hole.vecDC.emplace_back();
    dc.strName = s.code;
    dc.dTopGC = s.top;
    dc.dBotGC = s.bottom;
  }
  return hole;
}

Section CorrelatedSection(const std::string& title,
                          const std::vector<std::pair<std::string, DataType::_sZK>>& holes) {
  Section section;
  section.title = title;
  for (std::size_t i = 0; i < holes.size(); ++i) {
    const DataType::_sZK& b = holes[i].second;
    const DataType::_sZK& a = holes[i > 0 ? i - 1 : 0].second;
    const double chainage = i > 0 ? section.holes.back().chainage : 0.0;
    section.holes.push_back({holes[i].first, chainage + std::hypot(b.dX - a.dX, b.dY - a.dY), b});
    if (i > 0) {
      section.pairs.push_back({i - 1, i, false, {}, {}});
      LinkDc(a, b, section.pairs.back().root);
      LinkDcLine(a, b, section.pairs.back().lines);
    }
  }
  return section;
}

Section NleSection() {
  const BoreholeSet set = ReadBoreholes(std::filesystem::path(XKLINKDC_REAL_DATA_DIR) /
                                            "nle-battersea" / "21-7-10-NLE.ags",
                                        Format::Ags);
  std::vector<std::pair<std::string, DataType::_sZK>> holes;
  for (std::size_t i = 0; i < 5; ++i) {
    holes.emplace_back(set.holes.at(i).name, set.holes.at(i).ToZK());
  }
  return CorrelatedSection("Section A\xE2\x80\x93"
                           "A\xE2\x80\xB2: Battersea",
                           holes);
}

Section LensOfSecondHole() {
  return CorrelatedSection(
      "lens", {{"W", MakeHole(L"W", 0.0, 0.0, {{L"CLAY", 10.0, 0.0}})},
               {"E", MakeHole(L"E", 30.0, 40.0,
                              {{L"CLAY", 10.0, 6.0}, {L"SAND", 6.0, 4.0}, {L"CLAY", 4.0, 0.0}})}});
}

Section AwkwardCodes() {
  const auto hole = [](double x, double top) {
    return MakeHole(L"", x, 0.0,
                    {{L"A/B", top, top - 2.0},
                     {L"A:B", top - 2.0, top - 5.0},
                     {L"<C>&\"Q\" 'R'", top - 5.0, top - 7.0},
                     {L"Ton \u00FC \u7C98\u571F", top - 7.0, top - 10.0}});
  };
  return CorrelatedSection("Cut & <fill> \"A\"",
                           {{"BH<1>&", hole(0.0, 10.0)}, {"BH2 \xC3\x9C", hole(40.0, 11.0)}});
}

} // namespace xklink::testing
