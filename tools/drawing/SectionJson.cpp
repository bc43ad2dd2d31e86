// The laid-out section as JSON. Every number is in metres (chainage, offset, elevations, the plan
// positions) except the label boxes, which are in the units of the sheet. Each hole carries the
// water and SPT of its log at their depths and elevations.
#include "Section.h"
#include "SectionGeometry.h"
#include "Sheet.h"
#include "TextMetrics.h"

#include <nlohmann/json.hpp>

namespace xklink {

namespace {

using nlohmann::json;

const char* KindName(drawing::AlignmentKind kind) {
  switch (kind) {
  case drawing::AlignmentKind::Given:
    return "given";
  case drawing::AlignmentKind::BestFit:
    return "best-fit";
  case drawing::AlignmentKind::Fence:
    return "fence";
  }
  return "given";
}

json Point(const drawing::SectionPoint& p) {
  return json::array({p.s, p.z});
}

// JSON has no infinity nor NaN: a value that is not finite is written as null.
json Number(double value) {
  return std::isfinite(value) ? json(value) : json(nullptr);
}

template <typename T> json Optional(const std::optional<T>& value) {
  return value ? json(*value) : json(nullptr);
}

// Water met in the hole: strikes with the level the water rose to, then the levels monitored.
// Depths below ground as logged, elevations from the hole's ground level.
json WaterJson(const SectionHole& hole) {
  const double ground = hole.zk.dTopGC;
  json water = json::array();
  for (const WaterStrike& w : hole.inSitu.waterStrikes) {
    water.push_back({{"kind", "strike"},
                     {"depth", w.depth},
                     {"elevation", Number(ground - w.depth)},
                     {"rose_to", Optional(w.roseTo)},
                     {"rose_to_elevation", w.roseTo ? Number(ground - *w.roseTo) : json(nullptr)},
                     {"minutes", Optional(w.minutes)},
                     {"time", drawing::SanitizeUtf8(w.time)}});
  }
  for (const StandingLevel& l : hole.inSitu.standingLevels) {
    water.push_back({{"kind", "standing"},
                     {"depth", l.depth},
                     {"elevation", Number(ground - l.depth)},
                     {"time", drawing::SanitizeUtf8(l.time)},
                     {"instrument", drawing::SanitizeUtf8(l.instrument)}});
  }
  return water;
}

json SptJson(const SectionHole& hole) {
  json spt = json::array();
  for (const SptResult& t : hole.inSitu.spt) {
    spt.push_back({{"depth", t.depth},
                   {"elevation", Number(hole.zk.dTopGC - t.depth)},
                   {"n", Optional(t.n)},
                   {"result", drawing::SanitizeUtf8(SptLabel(t))}});
  }
  return spt;
}

json SectionJson(const Section& section, const Legend& legend, const DrawOptions& options) {
  const drawing::Sheet sheet = drawing::ComposeSheet(section, legend, options);
  json out;
  out["title"] = sheet.title;
  out["exaggeration"] = sheet.exaggeration;
  if (section.alignment) {
    json vertices = json::array();
    for (const drawing::PlanPoint& v : section.alignment->Vertices()) {
      vertices.push_back(json::array({v.e, v.n}));
    }
    out["alignment"] = {{"kind", KindName(section.alignment->Kind())},
                        {"vertices", vertices},
                        {"length", section.alignment->Length()}};
  }
  json holes = json::array();
  for (const SectionHole& hole : section.holes) {
    json strata = json::array();
    for (const DataType::_sZKDC& s : hole.zk.vecDC) {
      strata.push_back({{"code", drawing::WideToUtf8(s.strName)},
                        {"top", Number(s.dTopGC)},
                        {"bottom", Number(s.dBotGC)}});
    }
    holes.push_back({{"name", drawing::SanitizeUtf8(hole.name)},
                     {"chainage", Number(hole.chainage)},
                     {"offset", Number(hole.offset)},
                     {"easting", Number(hole.zk.dX)},
                     {"northing", Number(hole.zk.dY)},
                     {"ground_level", Number(hole.zk.dTopGC)},
                     {"strata", strata},
                     {"water", WaterJson(hole)},
                     {"spt", SptJson(hole)}});
  }
  out["holes"] = holes;
  json regions = json::array();
  for (const drawing::RegionShape& r : drawing::CollectRegionShapes(section)) {
    json polygon = json::array();
    for (const drawing::SectionPoint& p : r.polygon) {
      polygon.push_back(Point(p));
    }
    const SectionPair& pair = section.pairs[r.pair];
    regions.push_back({{"code", drawing::WideToUtf8(r.code)},
                       {"kind", r.kind},
                       {"holes", json::array({pair.from, pair.to})},
                       {"inferred", r.beneath},
                       {"polygon", polygon}});
  }
  out["regions"] = regions;
  json lines = json::array();
  for (const drawing::LineShape& l : drawing::CollectLineShapes(section)) {
    lines.push_back({{"from", Point(l.from)},
                     {"to", Point(l.to)},
                     {"above", drawing::WideToUtf8(l.upName)},
                     {"below", drawing::WideToUtf8(l.downName)},
                     {"inferred", l.beneath}});
  }
  out["lines"] = lines;
  json labels = json::array();
  for (const drawing::Item& item : sheet.items) {
    if (const auto* text = std::get_if<drawing::Text>(&item)) {
      const drawing::Box box = drawing::TextBox(*text);
      labels.push_back(
          {{"text", text->text}, {"box", json::array({box.left, box.top, box.right, box.bottom})}});
    }
  }
  out["labels"] = labels;
  out["sheet"] = {{"width", sheet.width}, {"height", sheet.height}};
  return out;
}

} // namespace

std::string RenderSectionJson(const Section& section, const Legend& legend,
                              const DrawOptions& options) {
  return SectionJson(section, legend, options).dump(1) + "\n";
}

std::string RenderSectionJson(const Section& section, const Legend& legend,
                              const DrawOptions& options, const Printout& print) {
  json out = SectionJson(section, legend, options);
  json sheets = json::array();
  for (std::size_t k = 0; k < print.chainages.size(); ++k) {
    json labels = json::array();
    for (const Printout::Label& label : print.labels.at(k)) {
      labels.push_back({{"text", label.text}, {"box", label.box}});
    }
    sheets.push_back({{"number", k + 1},
                      {"from", print.chainages[k].first},
                      {"to", print.chainages[k].second},
                      {"labels", labels}});
  }
  out["print"] = {{"paper", PaperName(print.paper)}, {"width_mm", print.widthMm},
                  {"height_mm", print.heightMm},     {"scale", print.scale},
                  {"vertical_scale", print.vscale},  {"sheets", sheets}};
  return out.dump(1) + "\n";
}

} // namespace xklink
