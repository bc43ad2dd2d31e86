// Decoding a fuzzer's bytes into values, running out gracefully.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fuzz {

class FuzzInput {
public:
  FuzzInput(const uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

  bool Empty() const { return m_pos >= m_size; }

  uint8_t Byte() { return m_pos < m_size ? m_data[m_pos++] : 0; }

  double Raw() {
    double value = 0.0;
    uint8_t bytes[sizeof value] = {};
    for (uint8_t& b : bytes) {
      b = Byte();
    }
    std::memcpy(&value, bytes, sizeof value);
    return value;
  }

private:
  const uint8_t* m_data;
  std::size_t m_size;
  std::size_t m_pos = 0;
};

} // namespace fuzz
