// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Bytes that the two programs, and the cache between two runs, hand each other: numbers in the machine's order, texts
// behind their lengths.
namespace vorto::frei0r {

using Bytes = std::vector<std::uint8_t>;

class WireWriter {
 public:
  template <class Value>
  requires std::is_arithmetic_v<Value>
  void value(Value value) { append(&value, sizeof value); }
  void text(std::string_view text) {
    value(static_cast<std::uint32_t>(text.size()));
    append(text.data(), text.size());
  }
  void bytes(std::span<const std::uint8_t> bytes) {
    value(static_cast<std::uint32_t>(bytes.size()));
    append(bytes.data(), bytes.size());
  }
  const Bytes& result() const { return bytes_; }

 private:
  void append(const void* data, std::size_t size);
  Bytes bytes_;
};

// Once something was missing, hasFailed() stays true and everything read is 0 or empty.
class WireReader {
 public:
  explicit WireReader(std::span<const std::uint8_t> bytes) : rest_(bytes) {}
  template <class Value>
  requires std::is_arithmetic_v<Value> Value value() {
    Value value{};
    if (const auto* from = taken(sizeof value)) std::memcpy(&value, from, sizeof value);
    return value;
  }
  std::string text() {
    const std::span<const std::uint8_t> part = bytes();
    return std::string(part.begin(), part.end());
  }
  std::span<const std::uint8_t> bytes() {
    const std::size_t size = value<std::uint32_t>();
    const auto* from = taken(size);
    return from ? std::span(from, size) : std::span<const std::uint8_t>();
  }
  bool hasFailed() const { return hasFailed_; }
  bool isAtEnd() const { return rest_.empty() && !hasFailed_; }

 private:
  const std::uint8_t* taken(std::size_t size) {
    if (hasFailed_ || size > rest_.size()) {
      hasFailed_ = true;
      return nullptr;
    }
    const std::uint8_t* from = rest_.data();
    rest_ = rest_.subspan(size);
    return from;
  }
  std::span<const std::uint8_t> rest_;
  bool hasFailed_ = false;
};

}  // namespace vorto::frei0r
