// The correlation on boreholes decoded from arbitrary bytes: any number of strata from one up, any
// codes, any elevations (NaN, infinities, equal and unordered values), same and different plan
// positions. LinkDc and LinkDcLine must never read or write out of bounds, never hit undefined
// behaviour and always finish.
#include "FuzzInput.h"

#include <XKLinkDc/XKLinkDc.h>
#include <cmath>
#include <limits>

namespace {

// Elevations mostly from a small set, so that boundaries coincide and lines merge, sometimes raw
// bits, so that every special value turns up.
double Elevation(fuzz::FuzzInput& in) {
  const uint8_t kind = in.Byte();
  switch (kind % 8) {
  case 0:
    return in.Raw();
  case 1: {
    constexpr double kSpecial[] = {std::numeric_limits<double>::quiet_NaN(),
                                   std::numeric_limits<double>::infinity(),
                                   -std::numeric_limits<double>::infinity(),
                                   0.0,
                                   -0.0,
                                   1e-6,
                                   1e300,
                                   std::numeric_limits<double>::denorm_min()};
    return kSpecial[in.Byte() % 8];
  }
  default:
    return 100.0 - static_cast<double>(in.Byte()) * 0.5;
  }
}

DataType::_sZK Borehole(fuzz::FuzzInput& in) {
  DataType::_sZK zk;
  const uint8_t place = in.Byte();
  zk.dX = place & 1 ? in.Raw() : static_cast<double>(place % 4) * 10.0;
  zk.dY = place & 2 ? static_cast<double>(place >> 4) : 0.0;
  zk.dTopGC = Elevation(in);
  const std::size_t count = 1 + in.Byte() % 48;
  for (std::size_t i = 0; i < count; ++i) {
    DataType::_sZKDC dc;
    const uint8_t code = in.Byte();
    // Few codes, so that they repeat and match; now and then an empty or a long one.
    dc.strName = code == 255 ? std::wstring() : std::wstring(1 + code / 128, L'A' + code % 6);
    dc.dTopGC = Elevation(in);
    dc.dBotGC = Elevation(in);
    zk.vecDC.push_back(dc);
  }
  return zk;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::FuzzInput in(data, size);
  const DataType::_sZK zk1 = Borehole(in);
  const DataType::_sZK zk2 = in.Byte() % 5 == 0 ? zk1 : Borehole(in);
  DataType::_sLinkRegion root;
  LinkDc(zk1, zk2, root);
  std::vector<DataType::_sLinkLine> lines;
  LinkDcLine(zk1, zk2, lines);
  XKLinkDc::CorrelationContext context;
  std::vector<DataType::_sLinkLine> again;
  context.LinkDcLine(zk1, zk2, again);
  if (again.size() != lines.size()) {
    __builtin_trap(); // the re-entrant entry must agree with the module-wide one
  }
  return 0;
}
