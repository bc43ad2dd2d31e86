// The re-entrant entry: a correlation state owned by the caller instead of the module-wide one.
#include "correlation/Correlation.h"
#include "lines/Lines.h"

namespace XKLinkDc {

CorrelationContext::CorrelationContext() : m_state(std::make_unique<CorrelationState>()) {}
CorrelationContext::~CorrelationContext() = default;

void CorrelationContext::LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                DataType::_sLinkRegion& root) {
  xkl::RunLinkDc(*m_state, zk1, zk2, root, xkl::Boreholes::Borrowed);
}

void CorrelationContext::LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                    std::vector<DataType::_sLinkLine>& lines) {
  xkl::RunLinkDcLine(*m_state, zk1, zk2, lines, xkl::Boreholes::Borrowed);
}

void CorrelationContext::LinkDcTreeAndLines(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                            DataType::_sLinkRegion& root,
                                            std::vector<DataType::_sLinkLine>& lines) {
  xkl::RunLinkDc(*m_state, zk1, zk2, root, xkl::Boreholes::Borrowed);
  xkl::AppendLeafLines(root, lines);
  xkl::FinishLines(lines);
}

} // namespace XKLinkDc
