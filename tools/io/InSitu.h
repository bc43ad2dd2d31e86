// What a borehole log records besides its strata: groundwater met while boring and measured
// afterwards, standard penetration tests, and the engineer's description of each stratum. These
// are drawn beside the logs; the correlation never sees them.
//
// Depths are metres below ground, as the logs give them, so that a hole drawn in depth below
// ground needs no ground level to place them.
#pragma once

#include "Diagnostics.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace xklink {

// Groundwater entering the hole while it was bored. Water under pressure rises in the hole: the
// level it rose to, and after how long, tell a confined aquifer from a perched one.
struct WaterStrike {
  double depth = 0.0;            // where the water was struck
  std::optional<double> roseTo;  // the last level read after the strike (depth)
  std::optional<double> minutes; // how long after the strike that level was read
  std::string time;              // when struck, as written ("2000-02-16T00:00:00", "03/05/2006")
  std::string remark;
  SourceRef where;
};

// A water level read in an installed standpipe or piezometer on a visit after boring.
struct StandingLevel {
  double depth = 0.0;
  std::string time; // as written
  std::string instrument;
  SourceRef where;
};

// A standard penetration test: the blows of a 63.5 kg hammer to drive the sampler 300 mm after a
// 150 mm seating drive. When the ground refuses the full drive the test stops at 50 blows and the
// log says over what penetration ("50 for 75 mm"): such a result is not an N value and is shown as
// written.
struct SptResult {
  double depth = 0.0;          // top of the test
  std::optional<int> n;        // ISPT_NVAL
  std::optional<int> blows;    // the main drive's blows when no N is given
  std::optional<double> drive; // and its penetration, mm
  std::string report;          // ISPT_REP as written
  SourceRef where;
};

// "N=17" for a complete test; a refusal as the log reports it ("50 (25 for 70mm/50 for 70mm)"),
// else as its blows over their penetration ("50 for 75 mm"); blows over a full drive as "N=23".
std::string SptLabel(const SptResult& test);

struct StratumDescription {
  double top = 0.0; // depths
  double base = 0.0;
  std::string text; // GEOL_DESC, such as "Firm brown sandy CLAY"
  SourceRef where;
};

struct HoleInSitu {
  std::vector<WaterStrike> waterStrikes;        // by depth
  std::vector<StandingLevel> standingLevels;    // in file order
  std::vector<SptResult> spt;                   // by depth
  std::vector<StratumDescription> descriptions; // by depth
};

// Hole name -> what its log records.
using InSituData = std::map<std::string, HoleInSitu>;

} // namespace xklink
