// The input records: a stratum interval and a borehole.
#include "records/MoveAssign.h"

#include <XKLinkDc/XKLinkDc.h>
#include <utility>

namespace DataType {

_sZKDC::_sZKDC() : dTopGC(0.0), dBotGC(0.0), dAux(0.0), bAux(false) {}
_sZKDC::_sZKDC(const _sZKDC& src) = default;
_sZKDC::_sZKDC(_sZKDC&& src) noexcept = default;
_sZKDC::~_sZKDC() = default;

// Member by member; a record assigned to itself stays as it is.
_sZKDC& _sZKDC::operator=(const _sZKDC& src) = default;
_sZKDC& _sZKDC::operator=(_sZKDC&& src) noexcept {
  return xkl::MoveAssign(*this, std::move(src));
}

_sZK::_sZK() : dTopGC(0.0), dX(0.0), dY(0.0) {}
_sZK::_sZK(const _sZK& src) = default;
_sZK::_sZK(_sZK&& src) noexcept = default;
_sZK::~_sZK() = default;

_sZK& _sZK::operator=(const _sZK& src) = default;
_sZK& _sZK::operator=(_sZK&& src) noexcept {
  return xkl::MoveAssign(*this, std::move(src));
}

// The collar is the starting value on purpose: a log whose strata all lie above the collar (an
// error in the host's data) still reports the collar as its lowest point. The test is "not
// strictly greater", so a NaN bottom replaces the running value and is replaced by the next one.
double _sZK::GetBotGC() const {
  double lowest = dTopGC;
  for (const _sZKDC& dc : vecDC) {
    if (!(dc.dBotGC > lowest)) {
      lowest = dc.dBotGC;
    }
  }
  return lowest;
}

} // namespace DataType
