// The library's entries, and the one correlator that the module-wide entries share.
//
// LinkDc and LinkDcLine keep no lock: the host calls them from one thread at a time, as it always
// has. A CorrelationContext owns a correlator of its own, so that contexts may run on as many
// threads as the host likes.
#include "correlation/Correlation.h"
#include "lines/Lines.h"

namespace {

xkl::Correlator& ModuleCorrelator() {
  static xkl::Correlator correlator;
  return correlator;
}

void CorrelateIntoLines(xkl::Correlator& correlator, const DataType::_sZK& zk1,
                        const DataType::_sZK& zk2, std::vector<DataType::_sLinkLine>& lines) {
  DataType::_sLinkRegion root;
  correlator.Correlate(zk1, zk2, root);
  xkl::AppendLeafLines(root, lines);
  xkl::FinishLines(lines);
}

} // namespace

extern "C" void LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                       DataType::_sLinkRegion& root) {
  ModuleCorrelator().Correlate(zk1, zk2, root);
}

void LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                std::vector<DataType::_sLinkLine>& lines) {
  CorrelateIntoLines(ModuleCorrelator(), zk1, zk2, lines);
}

namespace XKLinkDc {

CorrelationContext::CorrelationContext() : m_correlator(std::make_unique<xkl::Correlator>()) {}
CorrelationContext::~CorrelationContext() = default;

void CorrelationContext::LinkDc(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                DataType::_sLinkRegion& root) {
  m_correlator->Correlate(zk1, zk2, root);
}

void CorrelationContext::LinkDcLine(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                    std::vector<DataType::_sLinkLine>& lines) {
  CorrelateIntoLines(*m_correlator, zk1, zk2, lines);
}

void CorrelationContext::LinkDcTreeAndLines(const DataType::_sZK& zk1, const DataType::_sZK& zk2,
                                            DataType::_sLinkRegion& root,
                                            std::vector<DataType::_sLinkLine>& lines) {
  m_correlator->Correlate(zk1, zk2, root);
  xkl::AppendLeafLines(root, lines);
  xkl::FinishLines(lines);
}

} // namespace XKLinkDc
