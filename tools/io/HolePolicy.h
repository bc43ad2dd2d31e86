// Which holes of a file a section is drawn through, and what the user is told about the others.
//
// A site file holds dozens of holes logged by different hands. One stratum that overlaps the next,
// a hole re-drilled beside another (BH5 and BH5A at one position), a trial pit without a ground
// level: none of these should stop a section through the rest. So, when the section takes every
// hole of the file,
//  - a hole with an error in its log (Validation.h) or a problem the reader tied to it (geology
//    rows without a location row) is left out, with one warning that names its first problem;
//  - of holes at one plan position, the one with the deepest log is kept: it tells the most, and a
//    re-drilled hole usually goes deeper than the one it replaces;
//  - holes without a ground level are left out when others have one; when none has, every collar
//    stands at 0 and the section is drawn in depth below ground;
//  - rows the reader could not use and says it ignores are warnings.
// Holes named by the user are the user's choice: a problem in one of them stays an error, and a
// problem in a hole not named does not matter. In strict mode, for pipelines that check data
// before it is published, every problem is an error.
#pragma once

#include "BoreholeSet.h"
#include "Diagnostics.h"

#include <string>
#include <vector>

namespace xklink {

struct HolePolicy {
  std::vector<std::string> named;    // the holes of the section in order; empty: every hole
  std::vector<std::string> excluded; // never in the section; only when none are named
  bool strict = false;               // any problem refuses the section
};

struct ChosenHoles {
  std::vector<HoleRecord> holes;    // in the order named, else in file order
  bool depthBelowGround = false;    // no hole has a ground level: every collar is at 0
  std::vector<std::string> leftOut; // holes of the file left out of the section, in file order
};

// The holes of the section. Warnings go to `warnings`; anything that refuses the section goes to
// `errors` (the caller stops when any did). Throws SelectionError for an unknown name in `named`
// or `excluded`, a name given twice, fewer than two names, or names given both ways.
ChosenHoles ChooseHoles(const BoreholeSet& set, const HolePolicy& policy,
                        const DiagnosticSink& warnings, const DiagnosticSink& errors);

} // namespace xklink
