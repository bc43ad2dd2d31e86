// A host that knows the library only through its installed package: it correlates two boreholes
// that share their top and bottom strata and expects the middle one to pinch out.
#include <XKLinkDc/XKLinkDc.h>
#include <cstdio>

namespace {

DataType::_sZKDC Stratum(const wchar_t* code, double top, double bottom) {
  DataType::_sZKDC dc;
  dc.strName = code;
  dc.dTopGC = top;
  dc.dBotGC = bottom;
  return dc;
}

} // namespace

int main() {
  DataType::_sZK west;
  west.dTopGC = 100.0;
  west.vecDC = {Stratum(L"MG", 100.0, 98.0), Stratum(L"ALV", 98.0, 95.0),
                Stratum(L"LC", 95.0, 80.0)};
  DataType::_sZK east = west;
  east.dX = 40.0;
  east.vecDC.erase(east.vecDC.begin() + 1);

  std::vector<DataType::_sLinkLine> lines;
  LinkDcLine(west, east, lines);
  const bool ok = lines.size() == 3 && lines[0].strUpName == L"MG" &&
                  lines[0].strDownName == L"ALV" && lines[2].strUpName == L"LC";
  std::printf("%zu lines: %s\n", lines.size(), ok ? "as expected" : "unexpected");
  return ok ? 0 : 1;
}
