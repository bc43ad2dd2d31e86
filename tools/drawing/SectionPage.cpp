#include "SectionPage.h"

namespace xklink::drawing {

namespace {

constexpr std::string_view kHead = R"page(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>@TITLE@</title>
<style>
  html, body { height: 100%; margin: 0; }
  body { font: 14px "DejaVu Sans", Helvetica, Arial, sans-serif; color: #222;
         display: flex; flex-direction: column; }
  header { padding: 6px 12px; background: #f4f4f0; border-bottom: 1px solid #ccc;
           display: flex; gap: 18px; align-items: center; flex-wrap: wrap; }
  header label { user-select: none; margin-right: 6px; }
  button { font: inherit; }
  #info { padding: 4px 12px; min-height: 1.4em; background: #fffdf0; border-bottom: 1px solid #e6e0c0; }
  main { flex: 1; display: flex; min-height: 0; }
  #sheet { flex: 1; min-width: 0; cursor: grab; touch-action: none; background: #fff; }
  #sheet.dragging { cursor: grabbing; }
  #sheet > svg { width: 100%; height: 100%; display: block; user-select: none; }
  #sheet text { pointer-events: none; }
  #sheet text.hole-name { pointer-events: auto; cursor: pointer; }
  #sheet g.strata polygon:hover { filter: brightness(1.12); }
  rect.hole-target { cursor: pointer; }
  rect.hole-target:hover, rect.hole-target.chosen { stroke: #d00000; stroke-width: 2; }
  #log { width: 32em; overflow: auto; border-left: 1px solid #ccc; padding: 8px 12px; background: #fafafa; }
  #log[hidden] { display: none; }
  #log h2 { font-size: 16px; margin: 4px 0; display: flex; justify-content: space-between; }
  #log h3 { font-size: 14px; margin: 12px 0 4px; }
  #log table { border-collapse: collapse; width: 100%; }
  #log th, #log td { border-bottom: 1px solid #ddd; padding: 2px 4px; text-align: left; vertical-align: top; }
  #log td.n { text-align: right; white-space: nowrap; }
</style>
</head>
<body>
<header>
  <span>Layers:
    <label><input type="checkbox" data-layer="labels" checked> labels</label>
    <label><input type="checkbox" data-layer="water" checked> water</label>
    <label><input type="checkbox" data-layer="tests" checked> tests</label>
    <label><input type="checkbox" data-layer="lines" checked> lines</label>
  </span>
  <span><button id="zoom-in" title="Zoom in">+</button>
    <button id="zoom-out" title="Zoom out">&#8722;</button>
    <button id="zoom-reset" title="Show the whole sheet">whole sheet</button></span>
</header>
<div id="info"></div>
<main>
<div id="sheet">
)page";

constexpr std::string_view kMiddle = R"page(</div>
<aside id="log" hidden></aside>
</main>
<script id="section-data" type="application/json">)page";

constexpr std::string_view kTail = R"page(</script>
<script>
"use strict";
(function () {
  const model = JSON.parse(document.getElementById("section-data").textContent);
  const box = document.getElementById("sheet");
  const svg = box.querySelector("svg");
  const info = document.getElementById("info");
  const log = document.getElementById("log");
  const hint = "Point at a region for its unit; click a hole (or its name) for its log. " +
               "Drag to pan, wheel to zoom.";
  info.textContent = hint;

  // Pan and zoom move the viewBox over the sheet; strokes and text scale with it, as on paper.
  const base = svg.viewBox.baseVal;
  const home = { x: base.x, y: base.y, w: base.width, h: base.height };
  let view = Object.assign({}, home);
  function show() { svg.setAttribute("viewBox", [view.x, view.y, view.w, view.h].join(" ")); }
  function toSheet(event) {
    const p = new DOMPoint(event.clientX, event.clientY).matrixTransform(svg.getScreenCTM().inverse());
    return { x: p.x, y: p.y };
  }
  function zoom(factor, about) {
    const c = about || { x: view.x + view.w / 2, y: view.y + view.h / 2 };
    const w = Math.min(Math.max(view.w * factor, home.w / 64), home.w * 4);
    const f = w / view.w;
    view = { x: c.x - (c.x - view.x) * f, y: c.y - (c.y - view.y) * f, w: view.w * f, h: view.h * f };
    show();
  }
  svg.addEventListener("wheel", (event) => {
    event.preventDefault();
    zoom(event.deltaY > 0 ? 1.2 : 1 / 1.2, toSheet(event));
  }, { passive: false });
  let drag = null;
  let dragged = false;
  box.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    drag = { x: event.clientX, y: event.clientY, view: Object.assign({}, view),
             unit: 1 / svg.getScreenCTM().a };
    dragged = false;
  });
  window.addEventListener("pointermove", (event) => {
    if (!drag) return;
    const dx = event.clientX - drag.x, dy = event.clientY - drag.y;
    if (!dragged && Math.abs(dx) + Math.abs(dy) < 4) return;
    dragged = true;
    box.classList.add("dragging");
    view = Object.assign({}, drag.view, { x: drag.view.x - dx * drag.unit, y: drag.view.y - dy * drag.unit });
    show();
  });
  window.addEventListener("pointerup", () => { drag = null; box.classList.remove("dragging"); });
  document.getElementById("zoom-in").addEventListener("click", () => zoom(1 / 1.5));
  document.getElementById("zoom-out").addEventListener("click", () => zoom(1.5));
  document.getElementById("zoom-reset").addEventListener("click", () => { view = Object.assign({}, home); show(); });

  // Layers: the groups the sheet is drawn in.
  const layers = { labels: "g.region-labels, g.borehole-labels", water: "g.water",
                   tests: "g.tests", lines: "g.section-lines" };
  for (const input of document.querySelectorAll("input[data-layer]")) {
    input.addEventListener("change", () => {
      for (const g of svg.querySelectorAll(layers[input.dataset.layer])) {
        g.style.display = input.checked ? "" : "none";
      }
    });
  }

  // A region: its unit (the file's meaning of the code), the code, and the description logged in
  // the nearest hole that has the code.
  function describe(code, x) {
    const unit = model.units[code] || {};
    let best = null;
    for (const hole of model.holes) {
      const s = hole.strata.find((s) => s.code === code && s.description);
      if (s && (!best || Math.abs(hole.x - x) < Math.abs(best.hole.x - x))) best = { hole: hole, s: s };
    }
    info.textContent = "Unit: " + (unit.label || code) + " \u00b7 Code: " + code + " \u00b7 Description: " +
      (best ? best.s.description + " (logged in " + best.hole.name + ")" : "none logged");
  }
  for (const polygon of svg.querySelectorAll("g.strata polygon")) {
    const title = polygon.querySelector("title");
    if (!title) continue;
    polygon.addEventListener("mousemove", (event) => describe(title.textContent, toSheet(event).x));
    polygon.addEventListener("mouseleave", () => { info.textContent = hint; });
  }

  // A hole's log.
  const fmt = (v) => (v === null || v === undefined) ? "" : (Math.round(v * 100) / 100).toFixed(2);
  function element(name, text, parent) {
    const node = document.createElement(name);
    if (text !== undefined) node.textContent = text;
    if (parent) parent.appendChild(node);
    return node;
  }
  function table(title, className, headings, rows, numeric) {
    element("h3", title, log);
    if (!rows.length) { element("p", "None recorded.", log); return; }
    const t = element("table", undefined, log);
    t.className = className;
    const head = element("tr", undefined, t);
    for (const h of headings) element("th", h, head);
    for (const r of rows) {
      const tr = element("tr", undefined, t);
      r.forEach((c, i) => { element("td", c, tr).className = i < numeric ? "n" : ""; });
    }
  }
  function openLog(index) {
    const hole = model.holes[index];
    for (const t of svg.querySelectorAll("rect.hole-target")) {
      t.classList.toggle("chosen", t.dataset.hole === String(index));
    }
    log.replaceChildren();
    const h = element("h2", undefined, log);
    element("span", hole.name, h);
    const close = element("button", "\u00d7", h);
    close.title = "Close the log";
    close.addEventListener("click", () => { log.hidden = true; });
    element("p", "Chainage " + fmt(hole.chainage) + " m" +
      (hole.ground === null ? "" : " \u00b7 ground level " + fmt(hole.ground) + " m"), log);
    table("Strata", "strata", ["From (m)", "To (m)", "Code", "Description"],
          hole.strata.map((s) => [fmt(s.from), fmt(s.to), s.code, s.description]), 2);
    table("Water", "water", ["Depth (m)", "Rose to (m)", "After (min)", "When", "Remark"],
          hole.water.map((w) => [fmt(w.depth), fmt(w.roseTo), w.minutes === null ? "" : String(w.minutes),
                                 w.time, w.remark])
            .concat(hole.levels.map((l) => [fmt(l.depth), "", "", l.time,
                                            "monitored" + (l.instrument ? " in " + l.instrument : "")])), 3);
    table("SPT", "spt", ["Depth (m)", "Result"], hole.spt.map((t) => [fmt(t.depth), t.result]), 1);
    log.hidden = false;
  }
  for (const target of svg.querySelectorAll("rect.hole-target")) {
    target.addEventListener("click", () => { if (!dragged) openLog(Number(target.dataset.hole)); });
  }
  const byName = new Map(model.holes.map((hole, i) => [hole.name, i]));
  for (const text of svg.querySelectorAll("g.borehole-labels text")) {
    const index = byName.get(text.textContent);
    if (index === undefined) continue;
    text.classList.add("hole-name");
    text.addEventListener("click", () => { if (!dragged) openLog(index); });
  }
})();
</script>
</body>
</html>
)page";

} // namespace

std::string_view SectionPageHead() {
  return kHead;
}

std::string_view SectionPageMiddle() {
  return kMiddle;
}

std::string_view SectionPageTail() {
  return kTail;
}

} // namespace xklink::drawing
