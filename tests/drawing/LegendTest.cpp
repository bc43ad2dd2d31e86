// Reading the legend file: what a good file gives, and the line that a bad one names.
#include "Section.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace xklink {
namespace {

class LegendFile : public ::testing::Test {
protected:
  void SetUp() override {
    m_dir = std::filesystem::temp_directory_path() /
            ("xklink-legend-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(m_dir);
  }
  void TearDown() override { std::filesystem::remove_all(m_dir); }

  std::filesystem::path Write(const std::string& content) {
    const std::filesystem::path path = m_dir / "legend.csv";
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  // The line number and message of the error that reading `content` raises.
  std::pair<std::size_t, std::string> ErrorOf(const std::string& content) {
    const std::filesystem::path path = Write(content);
    try {
      ReadLegendCsv(path);
    } catch (const LegendError& e) {
      EXPECT_EQ(e.file(), path);
      const std::string prefix = path.string() + ":" + std::to_string(e.line()) + ": ";
      EXPECT_EQ(std::string(e.what()).rfind(prefix, 0), 0u) << e.what();
      return {e.line(), e.what()};
    }
    ADD_FAILURE() << "no error for: " << content;
    return {0, ""};
  }

  std::filesystem::path m_dir;
};

TEST_F(LegendFile, ReadsCodesColoursAndLabels) {
  const Legend legend =
      ReadLegendCsv(Write("code,colour,label\n"
                          "MG,#A0A0A0,Made Ground\n"
                          "\n"
                          "ALV , DarkSeaGreen , \"Alluvium: soft, grey \"\"silty\"\" CLAY\"\n"
                          "LC,#b08a62\n"));
  ASSERT_EQ(legend.size(), 3u);
  EXPECT_EQ(legend.at(L"MG").colour, "#a0a0a0");
  EXPECT_EQ(legend.at(L"MG").label, "Made Ground");
  EXPECT_EQ(legend.at(L"ALV").colour, "#8fbc8f");
  EXPECT_EQ(legend.at(L"ALV").label, "Alluvium: soft, grey \"silty\" CLAY");
  EXPECT_EQ(legend.at(L"LC").label, "");
}

TEST_F(LegendFile, HeaderIsOptionalAndSpreadsheetExportsAreRead) {
  // A byte order mark, CRLF line ends, the American spelling in the header, no final newline.
  const Legend withHeader =
      ReadLegendCsv(Write("\xEF\xBB\xBF"
                          "Code,Color,Label\r\nSAND,yellow,Sand\r\nGRAVEL,#ffa500,Gravel"));
  ASSERT_EQ(withHeader.size(), 2u);
  EXPECT_EQ(withHeader.at(L"SAND").colour, "#ffff00");
  EXPECT_EQ(withHeader.at(L"SAND").label, "Sand");
  EXPECT_EQ(withHeader.at(L"GRAVEL").label, "Gravel");

  const Legend withoutHeader = ReadLegendCsv(Write("SAND,yellow,Sand\n"));
  ASSERT_EQ(withoutHeader.size(), 1u);
  EXPECT_TRUE(ReadLegendCsv(Write("")).empty());
}

TEST_F(LegendFile, OnlyTheFirstLineCanBeAHeader) {
  // Further down, "code,colour" is a line of data, and "colour" is no colour.
  const auto [line, message] = ErrorOf("SAND,yellow\ncode,colour,label\n");
  EXPECT_EQ(line, 2u);
  EXPECT_NE(message.find("'colour'"), std::string::npos) << message;
}

TEST_F(LegendFile, CodesAreUnicodeAndExact) {
  const Legend legend = ReadLegendCsv(Write("Lehm \xC3\xBC,#996633,Geschiebelehm\n"
                                            "clay,#aa7744,lower case\n"
                                            "CLAY,#bb8855,upper case\n"));
  ASSERT_EQ(legend.size(), 3u);
  EXPECT_EQ(legend.count(L"Lehm \u00FC"), 1u);
  EXPECT_EQ(legend.at(L"clay").colour, "#aa7744");
  EXPECT_EQ(legend.at(L"CLAY").colour, "#bb8855");
}

TEST_F(LegendFile, BadLinesAreNamed) {
  EXPECT_EQ(ErrorOf("code,colour,label\nMG\n").first, 2u);
  EXPECT_EQ(ErrorOf("MG,grey,Made,Ground\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,grey\n,grey,no code\n").first, 2u);
  EXPECT_EQ(ErrorOf("MG,#12345,short\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,#12345g,not hex\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,greyish,unknown name\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,grey,\"open quote\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,\"grey\"x,after quote\n").first, 1u);
  EXPECT_EQ(ErrorOf("M\xFFG,grey\n").first, 1u);
  EXPECT_EQ(ErrorOf("MG,grey,bad \xC3\n").first, 1u);
}

TEST_F(LegendFile, MessagesSayWhatIsWrong) {
  EXPECT_NE(ErrorOf("MG\n").second.find("found 1 field"), std::string::npos);
  EXPECT_NE(ErrorOf("MG,blu,x\n").second.find("'blu'"), std::string::npos);
  const auto [line, message] = ErrorOf("MG,grey\nLC,brown\n\nMG,black\n");
  EXPECT_EQ(line, 4u);
  EXPECT_NE(message.find("already given on line 1"), std::string::npos) << message;
}

TEST_F(LegendFile, MissingFileIsAnError) {
  const std::filesystem::path path = m_dir / "absent.csv";
  try {
    ReadLegendCsv(path);
    ADD_FAILURE() << "no error";
  } catch (const LegendError& e) {
    EXPECT_EQ(e.line(), 0u);
    EXPECT_NE(std::string(e.what()).find(path.string()), std::string::npos);
  }
}

} // namespace
} // namespace xklink
