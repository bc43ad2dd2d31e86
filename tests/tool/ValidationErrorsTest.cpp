// Which problems stop which sections. A section of every hole leaves a bad hole out with one
// warning; a hole the user names must be sound; --strict refuses on any problem. A refusal exits
// with status 2, names the file, the line and the field, and writes no output file. The exact
// messages of the checks are tested in tests/io/ValidationTest.cpp.
#include "ToolRunner.h"

namespace xktool {
namespace {

class ValidationErrorsTest : public ::testing::Test {
protected:
  // A JSON file of holes given as {"name": ..., "x": ..., ...} objects, one a line from line 2.
  std::string Holes(const std::string& name, const std::vector<std::string>& holes) {
    std::string text = "{\"boreholes\": [";
    for (const std::string& hole : holes) {
      text += std::string(text.back() == '[' ? "\n" : ",\n") + "{" + hole + "}";
    }
    return dir.Write(name, text + "\n]}");
  }

  struct Case {
    std::vector<std::string> args;  // after `lines FILE -o OUT`
    std::vector<std::string> found; // in standard error
    bool refused = false;
    std::vector<std::string> absent = {}; // not in standard error
  };
  // Runs `command FILE -o OUT args...` for each case; a refusal must leave no OUT.
  void Expect(const std::string& file, const std::vector<Case>& cases,
              const std::string& command = "lines") {
    for (const Case& c : cases) {
      const fs::path out = dir / (command == "section" ? "out.svg" : "out.json");
      std::vector<std::string> args{command, file, "-o", out.string()};
      args.insert(args.end(), c.args.begin(), c.args.end());
      const RunResult run = RunTool(args);
      const std::string label = ::testing::PrintToString(c.args);
      if (c.refused) {
        ExpectRefused(run, c.found);
        EXPECT_FALSE(fs::exists(out)) << label;
      } else {
        EXPECT_EQ(run.exitCode, 0) << label << run.Describe();
        for (const std::string& fragment : c.found) {
          EXPECT_NE(run.err.find(fragment), std::string::npos) << label << fragment << run.err;
        }
      }
      for (const std::string& fragment : c.absent) {
        EXPECT_EQ(run.err.find(fragment), std::string::npos) << label << fragment << run.err;
      }
      fs::remove(out);
    }
  }

  TempDir dir;
};

// A hole named `name` at (x, 0) with collar 100 and one stratum S down to `bottom`.
std::string Hole(const std::string& name, const std::string& x, int bottom = 90) {
  return "\"name\": \"" + name + "\", \"x\": " + x + ", \"y\": 0, \"top\": 100, \"strata\": " +
         "[{\"code\": \"S\", \"top\": 100, \"bottom\": " + std::to_string(bottom) + "}]";
}

TEST_F(ValidationErrorsTest, ABadHoleIsLeftOutUnlessNamedOrStrict) {
  const std::string file =
      Holes("bad.json", {Hole("BH1", "0"), Hole("BH2", "50"),
                         R"("name": "BH3", "x": 80, "y": 0, "top": 100, "strata": [])"});
  const std::string leftOut = file + ":4: warning: field name: hole 'BH3' left out: has no strata";
  const std::string error = file + ":4: field name: hole 'BH3' has no strata";
  Expect(file, {
                   {{}, {leftOut, "1 of 3 holes left out of the section: BH3"}},
                   {{"--holes", "BH1,BH2"}, {}, false, {"BH3"}},
                   {{"--exclude", "BH3"}, {}, false, {"BH3"}},
                   {{"--holes", "BH3,BH1"}, {error}, true},
                   {{"--strict"}, {error}, true},
                   {{"--exclude", "BH9"}, {"no hole 'BH9' in " + file}, true},
                   {{"--exclude", "BH3", "--holes", "BH1,BH2"}, {"every hole"}, true},
               });
  Expect(file, {{{}, {leftOut}}, {{"--holes", "BH3,BH2"}, {error}, true}}, "section");
  // Values the readers take as numbers but the validation does not, named: NaN in a CSV file.
  const std::string nan = dir.Write("nan.csv", "hole,x,y,gl,from,to,code\nBH1,0,0,100,0,5,A\n"
                                               "BH1,0,0,100,5,nan,B\nBH2,50,0,100,0,10,A\n");
  Expect(nan, {{{"--holes", "BH1,BH2"}, {nan + ":3: field to: not a finite number: nan"}, true}});
}

TEST_F(ValidationErrorsTest, NoHoleWithAGroundLevelGivesASectionInDepth) {
  // Shottlegate: no hole has a ground level; the section is drawn in depth below ground.
  const std::string shottlegate = (kRealData / "shottlegate" / "Shottlegate_Project.ags").string();
  const RunResult run = RunTool({"section", shottlegate, "-o", (dir / "s.svg").string()});
  EXPECT_EQ(run.exitCode, 0) << run.Describe();
  EXPECT_NE(run.err.find("warning: field LOCA_GL: no hole has a ground level: the section is "
                         "drawn in depth below ground"),
            std::string::npos)
      << run.err;
  const std::string svg = ReadFile(dir / "s.svg");
  EXPECT_NE(svg.find("Depth (m below ground)"), std::string::npos);
  EXPECT_EQ(svg.find("Elevation"), std::string::npos);
}

TEST_F(ValidationErrorsTest, RealFilesGiveTheirSectionsWithoutTheirBadHoles) {
  // M621: overlaps in BH07 (line 936) and BH11 (1001); DS04, DS04A, DS04B and DS04C drilled at one
  // position, DS04C the deepest.
  const std::string m621 = (kRealData / "m621-widening" / "M621_Widening.ags").string();
  Expect(m621,
         {{{},
           {m621 + ":936: warning: field GEOL_TOP: hole 'BH07' left out: overlaps the stratum on "
                   "line 935 by 0.1",
            m621 + ":1001: warning: field GEOL_TOP: hole 'BH11' left out: overlaps",
            "hole 'DS04' left out: stands at the same plan position as 'DS04C'",
            "holes left out of the section: BH07, BH11, DS04, DS04A, DS04B"}}},
         "section");
  // DLR City Airport: about a hundred locations, trial pits re-dug beside the first (TP206A).
  const std::string dlr =
      (kRealData / "dlr-city-airport" / "DLR_City_Airport_Extension.ags").string();
  Expect(dlr, {{{}, {"hole 'TP206' left out: stands at the same plan position as 'TP206A'"}}});
}

} // namespace
} // namespace xktool
