// Fixture of the white-box correlation tests: a correlation state of its own, loaded with two
// boreholes exactly as LinkDc loads the module-wide one.
#pragma once

#include "CorrelationTestSupport.h"
#include "correlation/Correlation.h"

namespace xkltest {

class CorrelationTest : public ::testing::Test {
protected:
  void Load(const DataType::_sZK& zk1, const DataType::_sZK& zk2) {
    state.zk1 = zk1;
    state.zk2 = zk2;
    const double dx = zk1.dX - zk2.dX;
    const double dy = zk1.dY - zk2.dY;
    state.dDist = std::sqrt(dy * dy + dx * dx);
    state.ForgetCodes();
  }
  DataType::_sLinkRegion Root() {
    DataType::_sLinkRegion root;
    xkl::InitRootRegion(state, root);
    return root;
  }
  DataType::_sLinkRegion Region(int32_t b1, int32_t e1, int32_t b2, int32_t e2,
                                const std::wstring& name = L"", bool named = false,
                                int32_t type = 0) {
    return MakeRegion(state.zk1, state.zk2, b1, e1, b2, e2, name, named, type);
  }

  XKLinkDc::CorrelationState state;
};

} // namespace xkltest
