// xklink section: the drawn cross-section, as SVG, DXF, an interactive page or the laid-out section
// as JSON.
#include "Colour.h"
#include "Commands.h"
#include "CommonOptions.h"
#include "Errors.h"
#include "LineFile.h"
#include "OutputFile.h"
#include "Section.h"
#include "SectionBuild.h"
#include "TextMetrics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>

namespace xklink {

namespace {

struct Options {
  InputOptions input;
  std::string holes;
  std::string output;
  double exaggeration = 0.0;
  std::string legend;
  std::string title;
  std::string line;
  std::string lineFile;
  double buffer = -1.0;
  unsigned jobs = 0;
  std::string sheet; // A4, A3 or A1: printed at a scale on sheets of paper
  double scale = 0.0;
  double vscale = 0.0;
  double dpi = 0.0;
};

// "1:2500" (or "2500"): the denominator of a drawing scale.
CLI::Validator ScaleValidator() {
  return CLI::Validator(
      [](std::string& text) {
        std::string number = text;
        if (const std::size_t colon = number.find(':'); colon != std::string::npos) {
          if (number.substr(0, colon) != "1") {
            return "must be written 1:N, as 1:2500; not " + text;
          }
          number = number.substr(colon + 1);
        }
        double value = 0.0;
        if (!CLI::detail::lexical_cast(number, value) || !(value >= 1.0 && value <= 1e7)) {
          return "must be 1:N with N from 1 to 10000000, as 1:2500; not " + text;
        }
        text = number;
        return std::string();
      },
      "1:N");
}

// The files of the sheets: NAME.ext for one sheet, NAME-1.ext, NAME-2.ext, ... for several.
std::vector<std::string> SheetFiles(const std::string& output, std::size_t count) {
  if (count == 1) {
    return {output};
  }
  const std::filesystem::path path(output);
  std::vector<std::string> files;
  for (std::size_t k = 1; k <= count; ++k) {
    std::filesystem::path file = path;
    file.replace_filename(path.stem().string() + "-" + std::to_string(k) +
                          path.extension().string());
    files.push_back(file.string());
  }
  return files;
}

// A scale or an exaggeration as written: 2500, 12.5, 3.33.
std::string Ratio(double value) {
  std::string text = drawing::FormatFixed(value, 2);
  while (text.back() == '0') {
    text.pop_back();
  }
  if (text.back() == '.') {
    text.pop_back();
  }
  return text;
}

// The print options from the command line: a sheet, and of the scales and the exaggeration no
// two that disagree.
PrintOptions ChoosePrint(const Options& options, double& exaggeration) {
  PrintOptions print;
  print.paper = options.sheet == "A4" ? Paper::A4 : options.sheet == "A1" ? Paper::A1 : Paper::A3;
  print.scale = options.scale;
  print.vscale = options.vscale;
  if (options.vscale > 0.0 && options.exaggeration > 0.0) {
    if (options.scale > 0.0 && std::fabs(options.scale / options.vscale - options.exaggeration) >
                                   1e-9 * options.exaggeration) {
      throw UsageError(
          "--vscale 1:" + Ratio(options.vscale) + " and --exaggeration " +
          Ratio(options.exaggeration) + " disagree: at --scale 1:" + Ratio(options.scale) +
          " a vertical scale of 1:" + Ratio(options.vscale) + " is an exaggeration of " +
          Ratio(options.scale / options.vscale) + "; give one of them");
    }
    // Together they fix the horizontal scale.
    print.scale = options.exaggeration * options.vscale;
  }
  exaggeration = print.vscale > 0.0 ? 0.0 : options.exaggeration;
  print.project = options.title.empty()
                      ? std::filesystem::path(options.input.file).filename().string()
                      : options.title;
  // The date of the drawing; SOURCE_DATE_EPOCH fixes it for a reproducible build of the docs.
  std::time_t now = std::time(nullptr);
  if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH"); epoch != nullptr) {
    now = static_cast<std::time_t>(std::strtoll(epoch, nullptr, 10));
  }
  std::tm utc{};
  gmtime_r(&now, &utc);
  std::array<char, 16> date{};
  std::strftime(date.data(), date.size(), "%Y-%m-%d", &utc);
  print.date = date.data();
  return print;
}

void ReportPrint(const Printout& print) {
  std::cerr << "xklink: " << print.chainages.size() << " " << PaperName(print.paper)
            << (print.chainages.size() == 1 ? " sheet" : " sheets")
            << " at 1:" << Ratio(print.scale) << " horizontally"
            << (print.scaleChosen ? " (chosen: give --scale 1:N for another)" : "")
            << ", 1:" << Ratio(print.vscale) << " vertically (exaggeration "
            << Ratio(print.scale / print.vscale)
            << (print.vscaleChosen ? ", chosen: give --vscale 1:M for another)" : ")") << '\n';
}

std::optional<drawing::Alignment> GivenLine(const Options& options) {
  if (!options.line.empty() && !options.lineFile.empty()) {
    throw UsageError("--line and --line-file: give the section line one way, not both");
  }
  std::vector<drawing::PlanPoint> vertices;
  if (!options.line.empty()) {
    try {
      vertices = drawing::ParseVertexList(options.line);
    } catch (const std::invalid_argument& e) {
      throw UsageError(std::string("--line: ") + e.what());
    }
  } else if (!options.lineFile.empty()) {
    vertices = ReadLineFile(options.lineFile);
  } else {
    return std::nullopt;
  }
  try {
    return drawing::Alignment(vertices, drawing::AlignmentKind::Given);
  } catch (const std::invalid_argument& e) {
    throw UsageError(std::string(options.line.empty() ? "--line-file" : "--line") + ": " +
                     e.what());
  }
}

// The section the options ask for: the holes named, or every usable hole of the file (as the hole
// policy chooses them), with a line and a buffer only those within the buffer of the line.
Section BuildSection(const Options& options, bool& depthBelowGround,
                     std::map<std::string, std::string>& codeDescriptions) {
  const std::optional<drawing::Alignment> given = GivenLine(options);
  if (options.buffer >= 0.0 && !given) {
    throw UsageError("--buffer: the holes near a line need the line: give --line or --line-file");
  }
  SectionHoles holes =
      LoadSection(options.input, options.holes, DefaultHoles::AlongSection, std::cerr);
  if (given && options.buffer >= 0.0 && options.holes.empty()) {
    holes = HolesNearLine(std::move(holes), *given, options.buffer, options.input.file);
  }
  depthBelowGround = holes.depthBelowGround;
  codeDescriptions = holes.codeDescriptions;
  Section section = CorrelateSection(holes, given, !options.holes.empty(), options.jobs);
  section.title = options.title;
  return section;
}

void WriteSheets(const Options& options, const std::string& extension, const Printout& print,
                 const std::vector<std::string>& inputs) {
  std::vector<std::string> contents;
  if (extension == ".pdf") {
    contents.push_back(SvgToPdf(print.svgs));
  } else {
    for (const std::string& svg : print.svgs) {
      contents.push_back(extension == ".png" ? SvgToPng(svg, options.dpi) : svg);
    }
  }
  const std::vector<std::string> files = SheetFiles(options.output, contents.size());
  for (const std::string& file : files) {
    RequireOutputIsNotAnInput(file, inputs);
  }
  for (std::size_t k = 0; k < files.size(); ++k) {
    WriteFileAtomically(files[k], contents[k]);
  }
}

void RunSection(Options& options) {
  const std::vector<std::string> inputs = {options.input.file, options.input.collars,
                                           options.legend, options.lineFile};
  RequireOutputIsNotAnInput(options.output, inputs);
  const std::string extension = LowerExtension(options.output);
  if (extension != ".svg" && extension != ".dxf" && extension != ".html" && extension != ".json" &&
      extension != ".pdf" && extension != ".png") {
    throw UsageError(
        "--output: the drawing must be named .svg, .pdf, .png, .dxf, .html or .json, not '" +
        options.output + "'");
  }
  std::transform(options.sheet.begin(), options.sheet.end(), options.sheet.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  const bool sheets = !options.sheet.empty();
  if (!sheets && (options.scale > 0.0 || options.vscale > 0.0)) {
    throw UsageError(std::string(options.scale > 0.0 ? "--scale" : "--vscale") +
                     ": a drawing scale needs paper: give --sheet A4, A3 or A1 as well");
  }
  if (sheets && (extension == ".dxf" || extension == ".html")) {
    throw UsageError("--sheet: " +
                     std::string(extension == ".dxf" ? "a DXF is drawn at full size in metres"
                                                     : "a page for the browser has no paper") +
                     ", not on sheets; give -o NAME.pdf, NAME.png or NAME.svg for sheets");
  }
  if (options.dpi > 0.0 && extension != ".png") {
    throw UsageError("--dpi: only a PNG has pixels; name the output NAME.png");
  }
  if (options.dpi == 0.0) {
    options.dpi = 150.0;
  }
  double exaggeration = options.exaggeration;
  const std::optional<PrintOptions> print =
      sheets ? std::optional<PrintOptions>(ChoosePrint(options, exaggeration)) : std::nullopt;
  // The legend is read before the correlation: a bad legend line should not cost a long run.
  const Legend legend = options.legend.empty() ? Legend{} : ReadLegendCsv(options.legend);
  bool depthBelowGround = false;
  std::map<std::string, std::string> codeDescriptions;
  options.input.inSitu = true; // water and tests are drawn beside the logs in every form
  const Section section = BuildSection(options, depthBelowGround, codeDescriptions);
  DrawOptions draw;
  draw.exaggeration = exaggeration;
  draw.title = options.title;
  draw.depthBelowGround = depthBelowGround;
  const Legend colours = drawing::SectionLegend(legend, section, codeDescriptions);
  if (print) {
    Printout printout;
    try {
      printout = RenderPrintout(section, colours, draw, *print);
    } catch (const DrawingError& e) {
      throw UsageError(std::string("--sheet ") + options.sheet + ": " + e.what());
    }
    ReportPrint(printout);
    if (extension == ".json") {
      WriteFileAtomically(options.output, RenderSectionJson(section, colours, draw, printout));
    } else {
      WriteSheets(options, extension, printout, inputs);
    }
    return;
  }
  WriteFileAtomically(options.output,
                      RenderDrawing(section, colours, draw, extension, options.dpi));
}

} // namespace

void AddSectionCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "section", "Draw the cross-section through the holes as SVG or DXF, or lay it out as JSON");
  AddInputOptions(*command, options->input);
  command
      ->add_option("-o,--output", options->output,
                   "File to write: NAME.svg, NAME.pdf, NAME.png, NAME.dxf, NAME.html (to explore "
                   "in a browser) or NAME.json (the laid-out section). Several sheets go to one "
                   "PDF of a page each, or to NAME-1.png, NAME-2.png, ... (likewise SVG)")
      ->required();
  command->add_option("--holes", options->holes,
                      "Holes of the section, as A,B,C: without a line, a fence through them in "
                      "that order (default: every hole, on their best-fit line)");
  command->add_option("--line", options->line,
                      "Section line as E1,N1,E2,N2[,...]: chainage along it, holes projected "
                      "square onto it");
  command->add_option("--line-file", options->lineFile,
                      "Section line from a GeoJSON LineString or a CSV of easting,northing");
  command
      ->add_option("--buffer", options->buffer,
                   "Take the holes within this many metres of the line (default: every hole)")
      ->check(CLI::NonNegativeNumber);
  // The bounds the drawing holds to: beyond them a section is squashed into a line or its
  // coordinates overflow. A value outside is refused rather than quietly drawn as another.
  command
      ->add_option("--exaggeration", options->exaggeration,
                   "Vertical exaggeration, 0.01 to 1000 (default 0: chosen so the section is "
                   "legible)")
      ->check(CLI::Validator(
          [](std::string& text) {
            double value = 0.0;
            if (CLI::detail::lexical_cast(text, value) &&
                (value == 0.0 || (value >= 0.01 && value <= 1000.0))) {
              return std::string();
            }
            return "must be from 0.01 to 1000, or 0 to have it chosen; not " + text;
          },
          "0.01..1000"));
  command
      ->add_option("--sheet", options->sheet,
                   "Print on landscape sheets of this paper, split along the chainage, each with "
                   "a title block and a key plan")
      ->check(CLI::IsMember({"A4", "A3", "A1"}, CLI::ignore_case));
  command
      ->add_option("--scale", options->scale,
                   "Horizontal scale of the sheets, as 1:1000 (default: the largest standard scale "
                   "that keeps the section on at most one sheet per six holes and ten in all)")
      ->transform(ScaleValidator());
  command
      ->add_option(
          "--vscale", options->vscale,
          "Vertical scale of the sheets, as 1:100 (instead of --exaggeration; default: the "
          "largest standard scale that fits, at most 20 times the horizontal)")
      ->transform(ScaleValidator());
  command->add_option("--dpi", options->dpi, "Pixels per inch of a PNG, 30 to 600 (default 150)")
      ->check(CLI::Range(30.0, 600.0));
  command->add_option("--legend", options->legend,
                      "CSV of code,colour,label lines giving the colours and descriptions");
  command->add_option("--title", options->title, "Title of the sheet");
  command->add_option("-j,--jobs", options->jobs,
                      "Pairs correlated at once (default 0: one per core)");
  command->footer("Examples:\n"
                  "  xklink section examples/nle-battersea/21-7-10-NLE.ags -o section.svg\n"
                  "  xklink section site.ags -o section.html   (to explore in a browser)\n"
                  "  xklink section site.ags --holes BH01,BH02,BH03 --exaggeration 10 "
                  "--legend legend.csv -o a-a.dxf\n"
                  "  xklink section site.ags --line 427700,431150,430450,431800 --buffer 50 "
                  "-o a-a.json\n"
                  "  xklink section site.ags --sheet A3 --scale 1:1000 --vscale 1:100 "
                  "-o a-a.pdf");
  command->callback([options] { RunSection(*options); });
}

} // namespace xklink
