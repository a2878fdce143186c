// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host::exr {

// Numbers as files hold them, the lowest byte first.
class ByteWriter {
 public:
  void number(std::uint64_t value, unsigned size);
  void integer(std::int64_t value) { number(static_cast<std::uint32_t>(value), 4); }
  void real(float value);
  void text(const std::string& text);  // with the 0 that ends it
  void bytes(const Bytes& bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }

  std::size_t size() const { return bytes_.size(); }
  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

// What the header of a file with one part has to say.
struct HeaderValues {
  std::uint8_t compression = kZip;
  const std::vector<Channel>* channels = nullptr;
  Box data;
  Box display;
  float pixelAspect = 1;
  bool isOneTile = false;  // the pixels are one tile, not rows
};

// The bytes of a file up to its table of offsets; `attributes` are added, and must not have names that a header has
// anyway, except for the window of the screen.
Bytes headerBytes(const HeaderValues& values, std::vector<HeaderAttribute> attributes);

}  // namespace host::exr
