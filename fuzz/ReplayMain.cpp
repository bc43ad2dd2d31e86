// Runs a fuzz target over files or directories of inputs without libFuzzer, so that the seed
// corpora and every input that once crashed are replayed by the ordinary test suite.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace {

void RunFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(stream)),
                                   std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

} // namespace

int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) {
          RunFile(entry.path());
          ++count;
        }
      }
    } else {
      RunFile(path);
      ++count;
    }
  }
  std::cout << "replayed " << count << " inputs\n";
  return count > 0 ? 0 : 1;
}
