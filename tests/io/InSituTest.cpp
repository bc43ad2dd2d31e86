// Water strikes, standing levels, SPT results and descriptions read from AGS files: a hand-made
// file, one rule per row. The real files that carry them are read through the tool
// (InSituSectionTest).
#include "AgsInSitu.h"
#include "IoTestSupport.h"

#include <gtest/gtest.h>

namespace xklink {
namespace {

using testing::Messages;

// One line per record: "strike 12.8 -> 12.2 after 20 at 2000-02-16 (line 7)", "spt 1.2 N=7".
std::vector<std::string> Summary(const HoleInSitu& hole) {
  std::vector<std::string> lines;
  const auto optional = [](const std::optional<double>& v) {
    return v ? FormatNumber(*v) : std::string("?");
  };
  for (const WaterStrike& s : hole.waterStrikes) {
    lines.push_back("strike " + FormatNumber(s.depth) + " -> " + optional(s.roseTo) + " after " +
                    optional(s.minutes) + " at " + s.time + " (line " +
                    std::to_string(s.where.line) + ")");
  }
  for (const StandingLevel& s : hole.standingLevels) {
    lines.push_back("level " + FormatNumber(s.depth) + " in " + s.instrument + " at " + s.time);
  }
  for (const SptResult& t : hole.spt) {
    lines.push_back("spt " + FormatNumber(t.depth) + " " + SptLabel(t));
  }
  for (const StratumDescription& d : hole.descriptions) {
    lines.push_back("desc " + FormatNumber(d.top) + "-" + FormatNumber(d.base) + " " + d.text);
  }
  return lines;
}

std::vector<std::string> Read(const std::string& text, std::vector<Diagnostic>& diagnostics,
                              const std::string& hole = "BH1") {
  const InSituData data = ReadAgsInSitu(text, "site.ags", diagnostics);
  const auto found = data.find(hole);
  return found == data.end() ? std::vector<std::string>{} : Summary(found->second);
}

// WSTG on lines 5-7, WSTD on lines 13-17, MOND on lines 23-25, ISPT on lines 31-35.
const std::string kAgs4 = R"ags("GROUP","WSTG"
"HEADING","LOCA_ID","WSTG_DPTH","WSTG_DTIM","WSTG_REM"
"UNIT","","m","yyyy-mm-ddThh:mm",""
"TYPE","ID","2DP","DT","X"
"DATA","BH1","","","Strikes not recorded during rotary drilling"
"DATA","BH1","9.40","2000-02-16T10:30",""
"DATA","BH1","2.10","2000-02-16T09:00","Seepage"

"GROUP","WSTD"
"HEADING","LOCA_ID","WSTG_DPTH","WSTD_NMIN","WSTD_POST"
"UNIT","","m","min","m"
"TYPE","ID","2DP","0DP","2DP"
"DATA","BH1","9.40","10","6.50"
"DATA","BH1","9.40","20","6.20"
"DATA","BH1","9.40","5","6.90"
"DATA","BH1","12.00","20","11.00"
"DATA","BH1","2.10","abc","2.00"

"GROUP","MOND"
"HEADING","LOCA_ID","MONG_ID","MOND_DTIM","MOND_TYPE","MOND_RDNG"
"UNIT","","","yyyy-mm-dd","",""
"TYPE","ID","X","DT","PA","XN"
"DATA","BH1","SP1","2000-03-01","WDEP","5.85"
"DATA","BH1","SP1","2000-03-08","WDEP",""
"DATA","BH1","SP1","2000-03-08","HEAD","11.50"

"GROUP","ISPT"
"HEADING","LOCA_ID","ISPT_TOP","ISPT_NVAL","ISPT_REP","ISPT_MAIN","ISPT_INC3","ISPT_INC4","ISPT_PEN3","ISPT_PEN4"
"UNIT","","m","","","","","","mm","mm"
"TYPE","ID","2DP","0DP","X","0DP","0DP","0DP","0DP","0DP"
"DATA","BH1","5.00","","50 (25 for 70mm/50 for 70mm)","50","","","",""
"DATA","BH1","1.20","7","N=7 (1,1/1,2,2,2)","7","","","",""
"DATA","BH1","6.50","","","","30","20","75","0"
"DATA","BH1","8.00","","","","","","",""
"DATA","BH1","-1.0","12","","","","","",""
)ags";

TEST(InSituTest, Ags4StrikesKeepTheirLastReadingAndTestsTheirResultAsReported) {
  std::vector<Diagnostic> diagnostics;
  EXPECT_EQ(Read(kAgs4, diagnostics),
            (std::vector<std::string>{
                // WSTD readings come in any order: the one taken longest after the strike counts.
                "strike 2.1 -> 2 after ? at 2000-02-16T09:00 (line 7)",
                "strike 9.4 -> 6.2 after 20 at 2000-02-16T10:30 (line 6)",
                "strike 12 -> 11 after 20 at  (line 16)", // readings of an unlisted strike
                "level 5.85 in SP1 at 2000-03-01",        // HEAD readings and dry visits left out
                "spt 1.2 N=7",
                "spt 5 50 (25 for 70mm/50 for 70mm)", // a refusal as the log writes it
                "spt 6.5 50 for 75 mm",               // and from its increments when it does not
            }));
  EXPECT_EQ(Messages(diagnostics),
            (std::vector<std::string>{
                "site.ags:17: warning: field WSTD_NMIN: not a number: 'abc'; the value is left out",
                "site.ags:34: warning: field ISPT_TOP: SPT without a result (no N, report or blow "
                "count); left out",
                "site.ags:35: warning: field ISPT_TOP: negative depth -1.0; the row is left out"}));
}

} // namespace
} // namespace xklink
