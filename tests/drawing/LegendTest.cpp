// Reading the legend file: what a good file gives, and the line that a bad one names.
#include "Section.h"
#include "support/TempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace xklink {
namespace {

TEST(ReadLegendCsv, GoodFilesAndTheLineAndReasonOfBadOnes) {
  struct Case {
    const char* what;
    std::string content;
    std::size_t line; // of the error, 0 for a good file
    std::string says; // a part of the error message
    Legend legend;    // of a good file
  };
  const Case cases[] = {
      {"header, blank line, spaces, quotes, no label",
       "code,colour,label\nMG,#A0A0A0,Made Ground\n\n"
       "ALV , DarkSeaGreen , \"Alluvium: soft, grey \"\"silty\"\" CLAY\"\nLC,#b08a62\n",
       0,
       "",
       {{L"MG", {"#a0a0a0", "Made Ground"}},
        {L"ALV", {"#8fbc8f", "Alluvium: soft, grey \"silty\" CLAY"}},
        {L"LC", {"#b08a62", ""}}}},
      {"spreadsheet export: BOM, CRLF, Color, no final newline",
       "\xEF\xBB\xBF"
       "Code,Color,Label\r\nSAND,yellow,Sand\r\nGRAVEL,#ffa500,Gravel",
       0,
       "",
       {{L"SAND", {"#ffff00", "Sand"}}, {L"GRAVEL", {"#ffa500", "Gravel"}}}},
      {"empty", "", 0, "", {}},
      {"no header; codes are Unicode and exact",
       "Lehm \xC3\xBC,#996633,x\nclay,#aa7744\nCLAY,#bb8855\n",
       0,
       "",
       {{L"Lehm \u00FC", {"#996633", "x"}},
        {L"clay", {"#aa7744", ""}},
        {L"CLAY", {"#bb8855", ""}}}},
      {"only the first line is a header", "SAND,yellow\ncode,colour,label\n", 2, "'colour'", {}},
      {"one field", "code,colour,label\nMG\n", 2, "found 1 field", {}},
      {"four fields", "MG,grey,Made,Ground\n", 1, "found 4 fields", {}},
      {"no code", "MG,grey\n,grey,no code\n", 2, "", {}},
      {"short hex", "MG,#12345,short\n", 1, "", {}},
      {"unknown name", "MG,blu,x\n", 1, "'blu'", {}},
      {"open quote", "MG,grey,\"open quote\n", 1, "", {}},
      {"bad UTF-8 in a code", "M\xFFG,grey\n", 1, "", {}},
      {"repeated code", "MG,grey\nLC,brown\n\nMG,black\n", 4, "already given on line 1", {}},
  };
  const xktest::TempDir dir;
  const std::filesystem::path path = dir / "legend.csv";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::ofstream(path, std::ios::binary | std::ios::trunc) << c.content;
    try {
      const Legend legend = ReadLegendCsv(path);
      EXPECT_EQ(c.line, 0u) << "no error";
      ASSERT_EQ(legend.size(), c.legend.size());
      for (const auto& [code, entry] : c.legend) {
        ASSERT_TRUE(legend.contains(code));
        EXPECT_EQ(legend.at(code).colour, entry.colour);
        EXPECT_EQ(legend.at(code).label, entry.label);
      }
    } catch (const LegendError& e) {
      EXPECT_EQ(e.file(), path);
      EXPECT_EQ(e.line(), c.line);
      const std::string message = e.what();
      EXPECT_EQ(message.rfind(path.string() + ":" + std::to_string(c.line) + ": ", 0), 0u)
          << message;
      EXPECT_NE(message.find(c.says), std::string::npos) << message;
    }
  }
  try {
    ReadLegendCsv(dir / "absent.csv");
    ADD_FAILURE() << "no error for a missing file";
  } catch (const LegendError& e) {
    EXPECT_EQ(e.line(), 0u);
    EXPECT_EQ(std::string(e.what()).rfind((dir / "absent.csv").string() + ": ", 0), 0u) << e.what();
  }
}

} // namespace
} // namespace xklink
