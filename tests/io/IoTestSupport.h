// Helpers of the reader tests: a temporary directory for hand-made files, and short ways to look
// at diagnostics and errors.
#pragma once

#include "Diagnostics.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace xklink::testing {

// A fresh directory under the system's temporary directory, removed with everything in it.
class TempDir {
public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "xklink-io-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
      throw std::runtime_error("cannot create a temporary directory");
    }
    m_path = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  // Writes the bytes as they are (no line-ending translation) and returns the path.
  std::filesystem::path Write(const std::string& name, std::string_view bytes) const {
    const auto path = m_path / name;
    std::ofstream out(path, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return path;
  }
  const std::filesystem::path& Path() const { return m_path; }

private:
  std::filesystem::path m_path;
};

inline std::vector<std::string> Messages(const std::vector<Diagnostic>& diagnostics) {
  std::vector<std::string> out;
  for (const auto& d : diagnostics) {
    out.push_back(d.ToString());
  }
  return out;
}

inline std::vector<std::string> Messages(const std::vector<Diagnostic>& diagnostics,
                                         Severity severity) {
  std::vector<std::string> out;
  for (const auto& d : diagnostics) {
    if (d.severity == severity) {
      out.push_back(d.ToString());
    }
  }
  return out;
}

// The what() of the ParseError that `action` throws; a test failure when it throws none.
inline std::string ParseErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const ParseError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no ParseError thrown";
  return {};
}

// "a\nb\n" with CRLF line endings.
inline std::string WithCrlf(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\n') {
      out += '\r';
    }
    out += c;
  }
  return out;
}

} // namespace xklink::testing
