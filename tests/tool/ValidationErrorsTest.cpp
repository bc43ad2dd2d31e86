// Bad input stops the tool at its boundary: exit status 2, a message naming the file, the line and
// the field, and no output file. The validation's every message is checked by the reader tests;
// here, which problems stop which sections.
#include "ToolRunner.h"

namespace xktool {
namespace {

class ValidationErrorsTest : public ::testing::Test {
protected:
  // Runs `command FILE -o OUT extra...` and expects a refusal holding every fragment, and no OUT.
  void ExpectRefusedWithoutOutput(const std::string& command, const std::string& file,
                                  std::vector<std::string> extra,
                                  const std::vector<std::string>& fragments) {
    const fs::path out = dir / (command == "section" ? "out.svg" : "out.json");
    extra.insert(extra.begin(), {command, file, "-o", out.string()});
    ExpectRefused(RunTool(extra), fragments);
    EXPECT_FALSE(fs::exists(out)) << command << " wrote " << out;
  }
  // A JSON file of holes given as {"name": ..., "x": ..., ...} objects, one a line from line 2.
  std::string Holes(const std::string& name, const std::vector<std::string>& holes) {
    std::string text = "{\"boreholes\": [";
    for (const std::string& hole : holes) {
      text += std::string(text.back() == '[' ? "\n" : ",\n") + "{" + hole + "}";
    }
    return dir.Write(name, text + "\n]}");
  }

  TempDir dir;
};

// A hole named `name` at (x, 0) with collar 100 and one stratum S down to `bottom`.
std::string Hole(const std::string& name, const std::string& x, int bottom = 90) {
  return "\"name\": \"" + name + "\", \"x\": " + x + ", \"y\": 0, \"top\": 100, \"strata\": " +
         "[{\"code\": \"S\", \"top\": 100, \"bottom\": " + std::to_string(bottom) + "}]";
}

TEST_F(ValidationErrorsTest, AnyCommandRefusesAFileWithAnError) {
  const std::string file =
      Holes("nostrata.json", {Hole("BH1", "0"), R"("name": "BH2", "x": 50, "y": 0, "top": 100,
    "strata": [])"});
  for (const std::string command : {"lines", "section", "regions"}) {
    ExpectRefusedWithoutOutput(command, file, {},
                               {file + ":3: field name: hole 'BH2' has no strata"});
  }
  // Values the readers take as numbers but the validation does not: NaN in a CSV file.
  const std::string nan = dir.Write("nan.csv", "hole,x,y,gl,from,to,code\nBH1,0,0,100,0,5,A\n"
                                               "BH1,0,0,100,5,nan,B\nBH2,50,0,100,0,10,A\n");
  ExpectRefusedWithoutOutput("lines", nan, {}, {nan + ":3: field to: not a finite number: nan"});
}

TEST_F(ValidationErrorsTest, GeologyOfAHoleMissingFromLocaStopsOnlySectionsThatNeedIt) {
  const std::string file = dir.Write("orphan.ags", R"("GROUP","LOCA"
"HEADING","LOCA_ID","LOCA_NATE","LOCA_NATN","LOCA_GL"
"DATA","BH1","1000.00","2000.00","10.00"
"DATA","BH2","1050.00","2000.00","11.00"

"GROUP","GEOL"
"HEADING","LOCA_ID","GEOL_TOP","GEOL_BASE","GEOL_GEOL"
"DATA","BH1","0.00","2.00","MG"
"DATA","BH2","0.00","3.00","MG"
"DATA","BH3","0.00","4.00","MG"
)");
  const std::string message = file + ":10: field LOCA_ID: hole 'BH3' has GEOL rows but no LOCA row";
  // A section of every hole must not leave BH3 out silently; named, it is refused with the reason.
  ExpectRefusedWithoutOutput("lines", file, {}, {message});
  ExpectRefusedWithoutOutput("section", file, {}, {message});
  ExpectRefusedWithoutOutput("lines", file, {"--holes", "BH3,BH1"}, {message});
  EXPECT_EQ(RunTool({"lines", file, "--holes", "BH1,BH2"}).exitCode, 0);
}

TEST_F(ValidationErrorsTest, DuplicateAndUnknownNames) {
  const std::string file =
      Holes("dup.json", {Hole("BH1", "0"), Hole("BH2", "50"), Hole("BH1", "80", 91)});
  // Which BH1 is meant cannot be told, whether the holes are named or taken by default.
  const std::string message = file + ":4: field name: duplicate hole name 'BH1' (first at line 2)";
  ExpectRefusedWithoutOutput("lines", file, {}, {message});
  ExpectRefusedWithoutOutput("regions", file, {"--holes", "BH1,BH2"}, {message});
  ExpectRefusedWithoutOutput("section", kOverview, {"--holes", "bh1,BH2"},
                             {"no hole 'bh1' in " + kOverview, "'BH1'?"});
  ExpectRefusedWithoutOutput("lines", kOverview, {"--holes", "BH1,,BH2"}, {"empty hole name"});
}

TEST_F(ValidationErrorsTest, FewerThanTwoHolesInTheFileOrNamed) {
  const std::string one = Holes("one.json", {Hole("BH1", "0")});
  ExpectRefusedWithoutOutput("lines", one, {}, {one + ": ", "at least two", "the file has 1"});
  ExpectRefusedWithoutOutput("regions", one, {}, {one + ": ", "at least two"});
  const std::string none = dir.Write("none.json", R"({"boreholes": []})");
  ExpectRefusedWithoutOutput("section", none, {}, {none + ": ", "at least two", "the file has 0"});
  // The file has two holes, but only one is named: the message must say so, not blame the file.
  const RunResult named = RunTool({"lines", kOverview, "--holes", "BH1"});
  ExpectRefused(named, {"at least two holes; 1 was named"});
  EXPECT_EQ(named.err.find("the file has"), std::string::npos) << named.err;
}

TEST_F(ValidationErrorsTest, ConsecutiveHolesAtOnePlanPosition) {
  // A and C stand within a millimetre of each other; B 50 m away.
  const std::string file =
      Holes("same.json", {Hole("A", "0"), Hole("B", "50"), Hole("C", "0.0004", 92)});
  ExpectRefusedWithoutOutput(
      "lines", file, {"--holes", "A,C,B"},
      {file + ":4: field name: holes 'A' and 'C' stand at the same plan position"});
  ExpectRefusedWithoutOutput("section", file, {"--holes", "B,C,A"},
                             {"holes 'C' and 'A' stand at the same"});
  // Apart in the section (A, B, C) they are allowed, with a warning; 2 mm apart is two positions.
  const RunResult apart = RunTool({"lines", file, "--holes", "A,B,C"});
  EXPECT_EQ(apart.exitCode, 0) << apart.Describe();
  EXPECT_NE(apart.err.find("warning: field x: hole 'C' stands at the same plan position as 'A'"),
            std::string::npos)
      << apart.err;
  const std::string near = Holes("near.json", {Hole("A", "0"), Hole("C", "0.002", 92)});
  EXPECT_EQ(RunTool({"lines", near}).exitCode, 0);
}

} // namespace
} // namespace xktool
