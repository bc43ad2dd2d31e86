// The boreholes of an input file, with the place each value came from.
#pragma once

#include "Diagnostics.h"
#include "InSitu.h"

#include <XKLinkDc/XKLinkDc.h>
#include <map>
#include <string>
#include <vector>

namespace xklink {

// One stratum and the row it was read from (where.field names the code column).
struct StratumRecord {
  DataType::_sZKDC dc; // code and elevations, as the correlation takes them
  SourceRef where;
};

// One borehole and the row that gave its collar (where.field names the identifier column).
struct HoleRecord {
  std::string name; // UTF-8, as in the file
  double x = 0.0;
  double y = 0.0;
  double top = 0.0; // collar elevation
  // False when the file gives no usable ground level for the hole (empty, "-", absent): top is then
  // 0 and the strata are at minus their depths, so that the hole can still be drawn in depth below
  // ground when no hole of the section has a ground level.
  bool groundLevelKnown = true;
  std::vector<StratumRecord> strata; // from the top down
  SourceRef where;

  DataType::_sZK ToZK() const;
};

// The names of the columns (AGS headings, CSV header names, JSON keys) behind the numbers, so that
// a message about a value names the field the engineer has to look at.
struct FieldNames {
  std::string holeX = "x";
  std::string holeY = "y";
  std::string holeTop = "top";
  std::string stratumTop = "top";
  std::string stratumBottom = "bottom";
};

struct BoreholeSet {
  std::string source;            // the file, as named in messages
  std::vector<HoleRecord> holes; // in file order
  FieldNames fields;
  std::vector<Diagnostic> diagnostics; // what the reader noticed: skipped holes, orphan rows, ...
  std::map<std::string, std::string> skipped; // hole name -> why the reader left it out
  // What the file says its codes mean (AGS ABBR group: code -> description, such as
  // "805" -> "Chalk"), for the legend.
  std::map<std::string, std::string> codeDescriptions;
  // What the logs record besides the strata: water, SPT, descriptions (AGS files; AgsInSitu.h).
  InSituData inSitu;
};

// The records of the holes, for the correlation.
std::vector<DataType::_sZK> ToZKs(const std::vector<HoleRecord>& holes);

// Joins consecutive strata of one hole that carry the same code and touch (the base of one is the
// top of the next), as logs often split one unit by description. Strata that differ in dAux or
// bAux stay apart: the host told them apart. A gap or an overlap between two strata is never
// bridged, and an upside-down or non-finite stratum is never joined, so a merged log shows the same
// problems as the original. The merged stratum keeps the place of its upper part.
void MergeRepeatedCodes(BoreholeSet& set);

} // namespace xklink
