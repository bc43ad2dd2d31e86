#include "Emit.h"

#include "OutputFile.h"

#include <iostream>

namespace xklink {

void Emit(const std::string& content, const std::string& outputPath) {
  if (outputPath.empty() || outputPath == "-") {
    std::cout << content << std::flush;
  } else {
    WriteFileAtomically(outputPath, content);
  }
}

} // namespace xklink
