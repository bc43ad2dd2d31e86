#include "InSitu.h"

#include "Numbers.h"

namespace xklink {

std::string SptLabel(const SptResult& test) {
  if (test.n) {
    return "N=" + std::to_string(*test.n);
  }
  if (!test.report.empty()) {
    return test.report;
  }
  if (test.blows && test.drive && *test.drive < 300) {
    return std::to_string(*test.blows) + " for " + FormatNumber(*test.drive) + " mm";
  }
  return test.blows ? "N=" + std::to_string(*test.blows) : std::string{};
}

} // namespace xklink
