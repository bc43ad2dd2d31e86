// The module-wide correlation state and the boundary elevations that every region corner uses.
#include "correlation/Correlation.h"
#include "correlation/Workspace.h"

XKLinkDc::CorrelationState::CorrelationState() = default;
XKLinkDc::CorrelationState::~CorrelationState() = default;

XKLinkDc::CorrelationState::CorrelationState(const CorrelationState& other)
    : zk1(other.zk1), zk2(other.zk2), dDist(other.dDist) {}

XKLinkDc::CorrelationState& XKLinkDc::CorrelationState::operator=(const CorrelationState& other) {
  if (this != &other) {
    zk1 = other.zk1;
    zk2 = other.zk2;
    dDist = other.dDist;
    Release();
  }
  return *this;
}

std::size_t xkl::Workspace::Footprint() const {
  const auto bytes = [](const auto& v) { return v.capacity() * sizeof(v[0]); };
  return bytes(pairs) + bytes(firstOfCode) + bytes(nextOfCode) + bytes(countOfCode) +
         bytes(sweep.dropped) + bytes(sweep.row) + bytes(sweep.offset) + bytes(sweep.entries) +
         bytes(sweep.keyed) + bytes(sweep.lo) + bytes(sweep.hi) + bytes(sweep.treeMin) +
         bytes(sweep.treeMax) + bytes(sweep.keptMaxBefore) + bytes(sweep.keptMinAfter) +
         bytes(sweep.rowKept) + bytes(sweep.columnKept) + bytes(sweep.before) + bytes(sweep.after) +
         bytes(sweep.candidates) + bytes(codeSweep.mid1) + bytes(codeSweep.mid2) +
         bytes(codeSweep.rowsOfCode) + bytes(codeSweep.rowsOfCodeAt) +
         bytes(codeSweep.columnsOfCode) + bytes(codeSweep.columnsOfCodeAt) +
         bytes(codeSweep.firstPair) + bytes(runs.side1) + bytes(runs.side2) + bytes(runs.firstRun) +
         bytes(runs.secondRun) + bytes(runs.codesInOrder) + bytes(runs.namedBefore) +
         bytes(bitsets.rowBegin) + bytes(bitsets.rowEnd) + bytes(bitsets.column) +
         bytes(bitsets.earlierColumns) + bytes(bitsets.band) + bytes(bitsets.lowerBands) +
         bytes(bitsets.keptBefore) + bytes(bitsets.keptAfter) + bytes(bitsets.candidates) +
         bytes(gaps) + bytes(pendingRegions);
}

xkl::Workspace& XKLinkDc::CorrelationState::Work() const {
  if (!m_work) {
    m_work = std::make_unique<xkl::Workspace>();
  }
  return *m_work;
}

// Buffers up to this size stay for the next correlation: typical pairs then allocate nothing there,
// and the next pair of long logs finds its pages mapped already (logs of 2,000 strata need about
// 5 MB, of 8,000 about 60 MB). The larger buffers of longer logs go back at once.
constexpr std::size_t kKeptWorkBytes = std::size_t{64} << 20;

void XKLinkDc::CorrelationState::ReleaseWork() const {
  if (m_work && m_work->Footprint() > kKeptWorkBytes) {
    m_work.reset();
  }
}

void XKLinkDc::CorrelationState::Borrow(const DataType::_sZK& a, const DataType::_sZK& b) {
  m_zk1 = &a;
  m_zk2 = &b;
  m_codesBuilt = false;
}

void XKLinkDc::CorrelationState::Release() {
  m_zk1 = &zk1;
  m_zk2 = &zk2;
  m_codesBuilt = false;
}

const xkl::CodeIndex& XKLinkDc::CorrelationState::Codes() const {
  if (!m_codesBuilt) {
    m_codes.Rebuild(*m_zk1, *m_zk2);
    m_codesBuilt = true;
  }
  return m_codes;
}

namespace xkl {

CorrelationState g_state;
_sZK& g_zk1 = g_state.zk1;
_sZK& g_zk2 = g_state.zk2;
double& g_dDist = g_state.dDist;

double GetBoundaryGC(const _sZK& zk, int32_t k) {
  const auto count = static_cast<int64_t>(zk.vecDC.size());
  if (count == 0) {
    // A hole logged without strata has no depth: all its boundaries lie at the collar.
    return zk.dTopGC;
  }
  if (k < count) {
    // Negative boundary indices do not arise from valid ranges; they count as the top.
    return zk.vecDC[static_cast<std::size_t>(k < 0 ? 0 : k)].dTopGC;
  }
  return zk.vecDC.back().dBotGC;
}

} // namespace xkl
