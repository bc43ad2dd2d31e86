// The input records: a stratum interval and a borehole.
#include <XKLinkDc/XKLinkDc.h>

#include <utility>

namespace DataType {

_sZKDC::_sZKDC() : dTopGC(0.0), dBotGC(0.0), dAux(0.0), bAux(false) {}
_sZKDC::_sZKDC(const _sZKDC& src) = default;
_sZKDC::_sZKDC(_sZKDC&& src) noexcept = default;
_sZKDC::~_sZKDC() = default;

_sZKDC& _sZKDC::operator=(const _sZKDC& src) {
  if (this != &src) {
    strName = src.strName;
    dTopGC = src.dTopGC;
    dBotGC = src.dBotGC;
    dAux = src.dAux;
    bAux = src.bAux;
  }
  return *this;
}

_sZKDC& _sZKDC::operator=(_sZKDC&& src) noexcept {
  if (this != &src) {
    strName = std::move(src.strName);
    dTopGC = src.dTopGC;
    dBotGC = src.dBotGC;
    dAux = src.dAux;
    bAux = src.bAux;
  }
  return *this;
}

_sZK::_sZK() : dTopGC(0.0), dX(0.0), dY(0.0) {}
_sZK::_sZK(const _sZK& src) = default;
_sZK::_sZK(_sZK&& src) noexcept = default;
_sZK::~_sZK() = default;

_sZK& _sZK::operator=(const _sZK& src) {
  if (this != &src) {
    strName = src.strName;
    dTopGC = src.dTopGC;
    dX = src.dX;
    dY = src.dY;
    vecDC = src.vecDC;
  }
  return *this;
}

_sZK& _sZK::operator=(_sZK&& src) noexcept {
  if (this != &src) {
    strName = std::move(src.strName);
    dTopGC = src.dTopGC;
    dX = src.dX;
    dY = src.dY;
    vecDC = std::move(src.vecDC);
  }
  return *this;
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
