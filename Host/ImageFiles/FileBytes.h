// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace host {

// The bytes of a file, read as numbers anywhere in it. What would lie beyond the end reads as 0, and isWhole() is false
// from then on.
class FileBytes {
 public:
  FileBytes(std::span<const std::uint8_t> file, bool isBigEndian) : file_(file), isBigEndian_(isBigEndian) {}

  std::uint64_t number(std::uint64_t offset, unsigned size) {
    const auto bytes = range(offset, size);
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const std::size_t significance = isBigEndian_ ? bytes.size() - 1 - i : i;
      value |= std::uint64_t{bytes[i]} << (8 * significance);
    }
    return value;
  }

  // Empty when it is not all inside the file.
  std::span<const std::uint8_t> range(std::uint64_t offset, std::uint64_t size) {
    if (offset > file_.size() || size > file_.size() - offset) {
      isWhole_ = false;
      return {};
    }
    return file_.subspan(static_cast<std::size_t>(offset), static_cast<std::size_t>(size));
  }

  std::uint64_t size() const { return file_.size(); }
  bool isWhole() const { return isWhole_; }

 private:
  std::span<const std::uint8_t> file_;
  bool isBigEndian_;
  bool isWhole_ = true;
};

// How many bytes a zlib stream holds; nothing when it is damaged or holds more than `maximum`.
std::optional<std::uint64_t> inflatedSize(std::span<const std::uint8_t> stream, std::uint64_t maximum);

// The first bytes that a zlib stream holds. False when it is damaged before their end, or holds less.
bool inflateFirst(std::span<const std::uint8_t> stream, std::span<std::uint8_t> bytes);

}  // namespace host
