// The interactive page: the sheet's SVG placed in the page as it is, a transparent target over
// each hole's column for the pointer, and the logs as JSON for the script to show.
#include "SectionHtml.h"

#include "InSituLayer.h"
#include "SectionGeometry.h"
#include "SectionPage.h"
#include "Sheet.h"
#include "TextMetrics.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace xklink {

namespace {

using nlohmann::json;

// Logs give depths to the centimetre: a description starting within half of one of a stratum's
// top belongs to it.
constexpr double kSameDepth = 0.005;
// The target over a column is wider than the column (12 units), so that it is easy to hit.
constexpr double kTargetHalfWidth = 9.0;

json Number(double value) {
  return std::isfinite(value) ? json(value) : json(nullptr);
}

template <typename T> json Optional(const std::optional<T>& value) {
  return value ? json(*value) : json(nullptr);
}

// The descriptions logged within a stratum: one, or several where the strata of a code were
// merged into one.
std::string DescriptionOf(const HoleInSitu& log, double top, double base) {
  std::string text;
  for (const StratumDescription& d : log.descriptions) {
    if (d.top >= top - kSameDepth && d.top < base - kSameDepth && !d.text.empty()) {
      text += (text.empty() ? "" : " / ") + d.text;
    }
  }
  return drawing::SanitizeUtf8(text);
}

json HoleJson(const SectionHole& hole, const drawing::Sheet& sheet, bool depthBelowGround) {
  const double ground = hole.zk.dTopGC;
  const auto sheetY = [&sheet](double z) {
    return sheet.originY + (sheet.zTop - z) * sheet.scale * sheet.exaggeration;
  };
  double lowest = ground;
  json strata = json::array();
  for (const DataType::_sZKDC& s : hole.zk.vecDC) {
    const double top = ground - s.dTopGC;
    const double base = ground - s.dBotGC;
    if (std::isfinite(s.dBotGC)) {
      lowest = std::min(lowest, s.dBotGC);
    }
    strata.push_back({{"from", Number(top)},
                      {"to", Number(base)},
                      {"code", drawing::WideToUtf8(s.strName)},
                      {"description", DescriptionOf(hole.inSitu, top, base)}});
  }
  json water = json::array();
  for (const WaterStrike& w : hole.inSitu.waterStrikes) {
    water.push_back({{"depth", w.depth},
                     {"roseTo", Optional(w.roseTo)},
                     {"minutes", Optional(w.minutes)},
                     {"time", drawing::ShortTime(w.time)},
                     {"remark", drawing::SanitizeUtf8(w.remark)}});
  }
  json levels = json::array();
  for (const StandingLevel& l : hole.inSitu.standingLevels) {
    levels.push_back({{"depth", l.depth},
                      {"time", drawing::ShortTime(l.time)},
                      {"instrument", drawing::SanitizeUtf8(l.instrument)}});
  }
  json spt = json::array();
  for (const SptResult& t : hole.inSitu.spt) {
    spt.push_back({{"depth", t.depth}, {"result", drawing::SanitizeUtf8(SptLabel(t))}});
  }
  return {{"name", drawing::SanitizeUtf8(hole.name)},
          {"chainage", Number(hole.chainage)},
          {"ground", depthBelowGround ? json(nullptr) : Number(ground)},
          {"x", Number(sheet.originX + (hole.chainage - sheet.sLeft) * sheet.scale)},
          {"top", Number(sheetY(ground))},
          {"bottom", Number(sheetY(lowest))},
          {"strata", strata},
          {"water", water},
          {"levels", levels},
          {"spt", spt}};
}

std::string Num(double value) {
  return drawing::FormatFixed(value, 2);
}

} // namespace

std::string RenderSectionHtml(const Section& section, const Legend& legend,
                              const DrawOptions& options) {
  // The layout is run again for the positions of the columns: it is cheap beside the correlation,
  // and keeps the SVG writer the one place that turns a sheet into SVG.
  const drawing::Sheet sheet = drawing::ComposeSheet(section, legend, options);
  std::string svg = RenderSvg(section, legend, options);
  svg.erase(0, svg.find("<svg")); // the XML declaration has no place inside HTML

  json model;
  model["title"] = sheet.title;
  model["depthBelowGround"] = options.depthBelowGround;
  json holes = json::array();
  json units = json::object();
  std::string targets = "<g class=\"hole-targets\">\n";
  for (const SectionHole& hole : section.holes) {
    if (!drawing::IsDrawableHole(hole)) {
      continue;
    }
    json entry = HoleJson(hole, sheet, options.depthBelowGround);
    if (entry["x"].is_number() && entry["top"].is_number() && entry["bottom"].is_number()) {
      const double x = entry["x"];
      const double top = entry["top"];
      const double bottom = entry["bottom"];
      targets += "<rect class=\"hole-target\" data-hole=\"" + std::to_string(holes.size()) +
                 "\" x=\"" + Num(x - kTargetHalfWidth) + "\" y=\"" + Num(top) + "\" width=\"" +
                 Num(2.0 * kTargetHalfWidth) + "\" height=\"" + Num(std::max(bottom - top, 4.0)) +
                 "\" fill=\"#000000\" fill-opacity=\"0\"/>\n";
    }
    for (const DataType::_sZKDC& s : hole.zk.vecDC) {
      const auto found = legend.find(s.strName);
      units[drawing::WideToUtf8(s.strName)] = {
          {"label", found != legend.end() ? drawing::SanitizeUtf8(found->second.label) : ""},
          {"colour", found != legend.end() ? found->second.colour : DefaultColour(s.strName)}};
    }
    holes.push_back(std::move(entry));
  }
  targets += "</g>\n";
  svg.insert(svg.rfind("</svg>"), targets);
  model["holes"] = std::move(holes);
  model["units"] = std::move(units);

  // Inside a script element "</script>" or "<!--" would end or confuse it; JSON may write every
  // "<" as \u003c, and "<" can only stand within its strings.
  std::string data = model.dump(-1, ' ', false, json::error_handler_t::replace);
  std::string escaped;
  escaped.reserve(data.size());
  for (const char c : data) {
    escaped += c == '<' ? std::string("\\u003c") : std::string(1, c);
  }

  std::string page(drawing::SectionPageHead());
  page.replace(page.find("@TITLE@"), 7, drawing::EscapeXml(sheet.title));
  page += svg;
  page += drawing::SectionPageMiddle();
  page += escaped;
  page += drawing::SectionPageTail();
  return page;
}

} // namespace xklink
