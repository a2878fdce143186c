// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace host {

// Numbers as files hold them, the lowest byte first.
class ByteWriter {
 public:
  void number(std::uint64_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> 8 * i));
  }
  void integer(std::int64_t value) { number(static_cast<std::uint32_t>(value), 4); }
  void real(float value) { number(std::bit_cast<std::uint32_t>(value), 4); }
  // With the 0 that ends it.
  void text(const std::string& text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    bytes_.push_back(0);
  }
  void bytes(const Bytes& bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

  std::size_t size() const { return bytes_.size(); }
  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

}  // namespace host
