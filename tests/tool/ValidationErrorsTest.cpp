// Bad input stops the tool at its boundary: exit status 2, a message naming the file, the line and
// the field, and no output file.
#include "ToolRunner.h"

namespace xktool {
namespace {

class ValidationErrorsTest : public ::testing::Test {
protected:
  // Runs `command FILE -o OUT extra...` and expects a refusal whose message holds every fragment.
  void ExpectRefused(const std::string& command, const std::string& file,
                     const std::vector<std::string>& extra,
                     const std::vector<std::string>& fragments) {
    const fs::path out = dir / (command == "section" ? "out.svg" : "out.json");
    std::vector<std::string> args{command, file, "-o", out.string()};
    args.insert(args.end(), extra.begin(), extra.end());
    const RunResult run = RunTool(args);
    EXPECT_EQ(run.exitCode, 2) << run.Describe();
    EXPECT_EQ(run.out, "");
    for (const std::string& fragment : fragments) {
      EXPECT_NE(run.err.find(fragment), std::string::npos) << "missing: " << fragment << "\n"
                                                           << run.err;
    }
    EXPECT_FALSE(fs::exists(out)) << command << " wrote " << out;
  }

  // Runs `lines FILE extra...` and expects success.
  RunResult ExpectAccepted(const std::string& file, const std::vector<std::string>& extra) {
    std::vector<std::string> args{"lines", file};
    args.insert(args.end(), extra.begin(), extra.end());
    RunResult run = RunTool(args);
    EXPECT_EQ(run.exitCode, 0) << run.Describe();
    return run;
  }

  TempDir dir;
};

// A hand-made AGS4 file: BH1 and BH2 in LOCA, their geology in GEOL (rows from line 12), and
// whatever extra rows a test appends to GEOL.
std::string Ags4(const std::string& bh1Geol, const std::string& extraGeol = {}) {
  return "\"GROUP\",\"LOCA\"\n"
         "\"HEADING\",\"LOCA_ID\",\"LOCA_NATE\",\"LOCA_NATN\",\"LOCA_GL\"\n"
         "\"UNIT\",\"\",\"m\",\"m\",\"m\"\n"
         "\"TYPE\",\"ID\",\"2DP\",\"2DP\",\"2DP\"\n"
         "\"DATA\",\"BH1\",\"1000.00\",\"2000.00\",\"10.00\"\n"
         "\"DATA\",\"BH2\",\"1050.00\",\"2000.00\",\"11.00\"\n"
         "\n"
         "\"GROUP\",\"GEOL\"\n"
         "\"HEADING\",\"LOCA_ID\",\"GEOL_TOP\",\"GEOL_BASE\",\"GEOL_GEOL\"\n"
         "\"UNIT\",\"\",\"m\",\"m\",\"\"\n"
         "\"TYPE\",\"ID\",\"2DP\",\"2DP\",\"X\"\n" +
         bh1Geol +
         "\"DATA\",\"BH2\",\"0.00\",\"3.00\",\"MG\"\n"
         "\"DATA\",\"BH2\",\"3.00\",\"8.00\",\"CLAY\"\n" +
         extraGeol;
}

const std::string kBh1Geol = "\"DATA\",\"BH1\",\"0.00\",\"2.00\",\"MG\"\n"
                             "\"DATA\",\"BH1\",\"2.00\",\"6.00\",\"CLAY\"\n";

TEST_F(ValidationErrorsTest, HoleWithoutStrata) {
  const std::string file = dir.Write("nostrata.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": []}
]})");
  const std::vector<std::string> message{file + ":4: field name: hole 'BH2' has no strata"};
  ExpectRefused("lines", file, {}, message);
  ExpectRefused("section", file, {}, message);
  ExpectRefused("regions", file, {}, message);
}

TEST_F(ValidationErrorsTest, NonFiniteNumbersInCsvAndAgs) {
  const std::string header = "hole,x,y,gl,from,to,code\n";
  const std::string nan = dir.Write("nan.csv", header + "BH1,0,0,100,0,5,A\n"
                                                        "BH1,0,0,100,5,nan,B\n"
                                                        "BH2,50,0,100,0,10,A\n");
  ExpectRefused("lines", nan, {}, {nan + ":3: field to: not a finite number: nan"});
  // 1e999 overflows to infinity; as a depth it puts the base at minus infinity.
  const std::string huge = dir.Write("huge.csv", header + "BH1,0,0,100,0,5,A\n"
                                                          "BH1,0,0,100,5,1e999,B\n"
                                                          "BH2,50,0,100,0,10,A\n");
  ExpectRefused("section", huge, {}, {huge + ":3: field to: not a finite number: -inf"});
  const std::string ags =
      dir.Write("huge.ags", Ags4("\"DATA\",\"BH1\",\"0.00\",\"2.00\",\"MG\"\n"
                                 "\"DATA\",\"BH1\",\"2.00\",\"1e999\",\"CLAY\"\n"));
  ExpectRefused("lines", ags, {}, {ags + ":13: field GEOL_BASE: not a finite number"});
}

TEST_F(ValidationErrorsTest, StratumUpsideDown) {
  const std::string file = dir.Write("upside.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 95},
              {"code": "B", "top": 95, "bottom": 97}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]}
]})");
  ExpectRefused("lines", file, {},
                {file + ":4: field top: top elevation 95 is below the base elevation 97"});
}

TEST_F(ValidationErrorsTest, StrataOutOfOrderOrOverlapping) {
  // BH1's third stratum starts above the second's top; BH2's third starts 2 m above the second's
  // base. Both are listed.
  const std::string file = dir.Write("order.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 95},
              {"code": "B", "top": 95, "bottom": 90},
              {"code": "C", "top": 98, "bottom": 96}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90},
              {"code": "B", "top": 90, "bottom": 80},
              {"code": "C", "top": 82, "bottom": 70}]}
]})");
  ExpectRefused("lines", file, {},
                {file + ":5: field top: strata not in downward order",
                 file + ":9: field top: overlaps the stratum on line 8 by 2"});
  // AGS rows are sorted by depth first, so what remains is the overlap (2.00 deep, above 2.50).
  const std::string ags =
      dir.Write("overlap.ags", Ags4("\"DATA\",\"BH1\",\"0.00\",\"2.50\",\"MG\"\n"
                                    "\"DATA\",\"BH1\",\"2.00\",\"6.00\",\"CLAY\"\n"));
  ExpectRefused("section", ags, {},
                {ags + ":13: field GEOL_TOP: overlaps the stratum on line 12 by 0.5"});
}

TEST_F(ValidationErrorsTest, GeologyOfAHoleMissingFromLoca) {
  const std::string file =
      dir.Write("orphan.ags", Ags4(kBh1Geol, "\"DATA\",\"BH3\",\"0.00\",\"4.00\",\"MG\"\n"));
  const std::string message = file + ":16: field LOCA_ID: hole 'BH3' has GEOL rows but no LOCA row";
  // A section of every hole must not leave BH3 out silently.
  ExpectRefused("lines", file, {}, {message});
  ExpectRefused("section", file, {}, {message});
  // Named, it is refused with the reason.
  ExpectRefused("lines", file, {"--holes", "BH3,BH1"}, {message});
  // A section that does not use it goes ahead.
  ExpectAccepted(file, {"--holes", "BH1,BH2"});
}

TEST_F(ValidationErrorsTest, DuplicateHoleNames) {
  const std::string file = dir.Write("dup.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]},
  {"name": "BH2", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]},
  {"name": "BH1", "x": 80, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 91}]}
]})");
  // Which BH1 is meant cannot be told, whether the holes are named or taken by default.
  const std::string message = file + ":6: field name: duplicate hole name 'BH1' (first at line 2)";
  ExpectRefused("lines", file, {}, {message});
  ExpectRefused("lines", file, {"--holes", "BH1,BH2"}, {message});
  ExpectRefused("regions", file, {}, {message});
  // A second LOCA row for BH1 as line 7, before the blank line that ends the group.
  std::string text = Ags4(kBh1Geol);
  text.insert(text.find("\n\"GROUP\",\"GEOL\""),
              "\"DATA\",\"BH1\",\"1090.00\",\"2000.00\",\"12.00\"\n");
  const std::string ags = dir.Write("dup.ags", text);
  ExpectRefused("section", ags, {}, {ags + ":7: field LOCA_ID: duplicate hole name 'BH1'"});
}

TEST_F(ValidationErrorsTest, UnknownOrRepeatedNamesInHoles) {
  const std::string overview = (kExamples / "overview.json").string();
  ExpectRefused("lines", overview, {"--holes", "BH1,BH9"}, {"no hole 'BH9' in " + overview});
  ExpectRefused("section", overview, {"--holes", "bh1,BH2"}, {"no hole 'bh1'", "'BH1'?"});
  ExpectRefused("regions", overview, {"--holes", "BH1,BH1"}, {"'BH1' is named twice"});
  ExpectRefused("lines", overview, {"--holes", "BH1,,BH2"}, {"empty hole name"});
}

TEST_F(ValidationErrorsTest, FewerThanTwoHoles) {
  const std::string one = dir.Write("one.json", R"({"boreholes": [
  {"name": "BH1", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "A", "top": 100, "bottom": 90}]}
]})");
  ExpectRefused("lines", one, {}, {one + ": ", "at least two", "the file has 1"});
  ExpectRefused("regions", one, {}, {one + ": ", "at least two"});
  const std::string none = dir.Write("none.json", R"({"boreholes": []})");
  ExpectRefused("section", none, {}, {none + ": ", "at least two", "the file has 0"});
  // The file has two holes, but only one is named: the message must say so, not blame the file.
  const RunResult named =
      RunTool({"lines", (kExamples / "overview.json").string(), "--holes", "BH1"});
  EXPECT_EQ(named.exitCode, 2) << named.Describe();
  EXPECT_NE(named.err.find("at least two holes; 1 was named"), std::string::npos) << named.err;
  EXPECT_EQ(named.err.find("the file has"), std::string::npos) << named.err;
}

TEST_F(ValidationErrorsTest, ConsecutiveHolesAtOnePlanPosition) {
  // A and C stand at the same spot; B 50 m away.
  const std::string file = dir.Write("same.json", R"({"boreholes": [
  {"name": "A", "x": 0, "y": 0, "top": 100,
   "strata": [{"code": "S", "top": 100, "bottom": 90}]},
  {"name": "B", "x": 50, "y": 0, "top": 100,
   "strata": [{"code": "S", "top": 100, "bottom": 90}]},
  {"name": "C", "x": 0.0004, "y": 0, "top": 100,
   "strata": [{"code": "S", "top": 100, "bottom": 92}]}
]})");
  ExpectRefused("lines", file, {"--holes", "A,C,B"},
                {file + ":6: field name: holes 'A' and 'C' stand at the same plan position"});
  ExpectRefused("section", file, {"--holes", "B,C,A"}, {"holes 'C' and 'A' stand at the same"});
  // Apart in the section (A, B, C) they are allowed, with a warning.
  const RunResult apart = ExpectAccepted(file, {"--holes", "A,B,C"});
  EXPECT_NE(apart.err.find("warning: field x: hole 'C' stands at the same plan position as 'A'"),
            std::string::npos)
      << apart.err;
  // 2 mm apart is two positions.
  const std::string near = dir.Write("near.json", R"({"boreholes": [
  {"name": "A", "x": 0, "y": 0, "top": 100, "strata": [{"code": "S", "top": 100, "bottom": 90}]},
  {"name": "C", "x": 0, "y": 0.002, "top": 100, "strata": [{"code": "S", "top": 100, "bottom": 92}]}
]})");
  ExpectAccepted(near, {});
}

} // namespace
} // namespace xktool
