// The section-lines entry: correlate, collect the leaf regions, make their boundary lines, merge,
// order and trim them.
#include "correlation/Correlation.h"
#include "lines/Lines.h"

namespace xkl {

void RunLinkDcLine(CorrelationState& state, const _sZK& zk1, const _sZK& zk2, LineList& lines,
                   Boreholes boreholes) {
  _sLinkRegion root;
  RunLinkDc(state, zk1, zk2, root, boreholes);
  AppendLeafLines(root, lines);
  FinishLines(lines);
}

} // namespace xkl

void LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                std::vector<DataType::_sLinkLine>& lines) {
  xkl::RunLinkDcLine(xkl::g_state, zk1, zk2, lines, xkl::Boreholes::Copied);
}
