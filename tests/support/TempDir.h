// Files for one test: a fresh directory, removed with everything in it at the end of the test,
// and the whole of a file as bytes.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace xktest {

inline std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

class TempDir {
public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "xklink-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("mkdtemp failed");
    }
    path = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path / name; }
  // Writes the bytes as they are (no line-ending translation) and returns the path as a string,
  // for a command line or a message.
  std::string Write(const std::string& name, std::string_view bytes) const {
    std::ofstream(path / name, std::ios::binary) << bytes;
    return (path / name).string();
  }
  // The names of everything in the directory, sorted.
  std::vector<std::string> Entries() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  std::filesystem::path path;
};

} // namespace xktest
