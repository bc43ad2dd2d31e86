// The correlation of two holes as Python holds it: the names of the two, the region tree and the
// section lines, highest first.
#pragma once

#include <XKLinkDc/XKLinkDc.h>
#include <string>
#include <vector>

namespace xklink::python {

struct Correlation {
  std::string holeA; // borehole 1 of the library's calls: element 0 of the corners, p1 of lines
  std::string holeB;
  DataType::_sLinkRegion tree;
  std::vector<DataType::_sLinkLine> lines;
};

} // namespace xklink::python
