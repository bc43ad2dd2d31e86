#include "Emit.h"

#include "OutputFile.h"

namespace xklink {

void Emit(const std::string& content, const std::string& outputPath) {
  if (outputPath.empty() || outputPath == "-") {
    WriteStandardOutput(content);
  } else {
    WriteFileAtomically(outputPath, content);
  }
}

} // namespace xklink
