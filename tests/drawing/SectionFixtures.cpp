#include "SectionFixtures.h"

#include <cmath>
#include <functional>

namespace xklink::testing {

DataType::_sZK MakeHole(const std::wstring& name, double x, double y,
                        const std::vector<Stratum>& strata) {
  DataType::_sZK hole;
  hole.strName = name;
  hole.dX = x;
  hole.dY = y;
  hole.dTopGC = strata.empty() ? 0.0 : strata.front().top;
  for (const Stratum& s : strata) {
    DataType::_sZKDC dc;
    dc.strName = s.code;
    dc.dTopGC = s.top;
    dc.dBotGC = s.bottom;
    hole.vecDC.push_back(dc);
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
      SectionPair pair{i - 1, i, false, {}, {}};
      LinkDc(a, b, pair.root);
      LinkDcLine(a, b, pair.lines);
      section.pairs.push_back(std::move(pair));
    }
  }
  return section;
}

Section LondonSection() {
  return CorrelatedSection(
      "Section A\xE2\x80\x93"
      "A\xE2\x80\xB2: Nine Elms",
      {{"BH1",
        MakeHole(
            L"BH1", 1000.0, 2000.0,
            {{L"MG", 6.2, 4.8}, {L"ALV", 4.8, 2.9}, {L"RTD", 2.9, -1.5}, {L"LC", -1.5, -18.0}})},
       {"BH2", MakeHole(L"BH2", 1038.0, 2021.0,
                        {{L"MG", 5.6, 4.1},
                         {L"ALV", 4.1, 2.2},
                         {L"PEAT", 2.2, 1.0},
                         {L"ALV", 1.0, 0.2},
                         {L"RTD", 0.2, -3.9},
                         {L"LC", -3.9, -20.5}})},
       {"BH3", MakeHole(L"BH3", 1085.0, 2040.0,
                        {{L"MG", 4.9, 3.0},
                         {L"RTD", 3.0, -2.5},
                         {L"LC", -2.5, -8.0},
                         {L"CLST", -8.0, -9.2},
                         {L"LC", -9.2, -21.0}})},
       {"BH4", MakeHole(L"BH4", 1140.0, 2052.0,
                        {{L"MG", 5.3, 3.6},
                         {L"RTD", 3.6, -1.0},
                         {L"LC", -1.0, -15.0},
                         {L"LMG", -15.0, -24.0}})},
       {"BH5", MakeHole(L"BH5", 1171.0, 2066.0,
                        {{L"MG", 6.0, 3.9},
                         {L"RTD", 3.9, -0.4},
                         {L"LC", -0.4, -13.2},
                         {L"LMG", -13.2, -25.5}})}});
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

std::size_t LineCount(const Section& section) {
  std::size_t count = 0;
  for (const SectionPair& pair : section.pairs) {
    count += pair.lines.size();
  }
  return count;
}

std::size_t LeafCount(const Section& section) {
  // A leaf is named, childless, or has only children of a non-zero type.
  std::size_t count = 0;
  const std::function<void(const DataType::_sLinkRegion&)> walk =
      [&](const DataType::_sLinkRegion& region) {
        bool leaf = true;
        for (const DataType::_sLinkRegion& child : region.vecChild) {
          leaf = leaf && (child.nType != 0 || !region.strName.empty());
          walk(child);
        }
        count += leaf ? 1 : 0;
      };
  for (const SectionPair& pair : section.pairs) {
    walk(pair.root);
  }
  return count;
}

} // namespace xklink::testing
