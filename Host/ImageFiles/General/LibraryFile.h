// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace host {

// Bytes that the library reads as a file: through its own interface where the format takes that, by the name of a file
// in memory otherwise. The bytes must outlive it.
class LibraryFile {
 public:
  explicit LibraryFile(std::span<const std::uint8_t> bytes) : bytes_(bytes), proxy_(bytes.data(), bytes.size()) {}
  ~LibraryFile();
  LibraryFile(const LibraryFile&) = delete;
  LibraryFile& operator=(const LibraryFile&) = delete;

  // Opens it as a format; null, with the cause, when that fails.
  std::unique_ptr<OIIO::ImageInput> open(const char* format, OIIO::ImageSpec* spec, std::string* reason);

 private:
  std::string nameInMemory();

  std::span<const std::uint8_t> bytes_;
  OIIO::Filesystem::IOMemReader proxy_;
  int descriptor_ = -1;
};

// The library's name of a type.
OIIO::TypeDesc typeOf(SampleType sample);

// One line of what the library says, without the name under which it knows the bytes.
std::string cleanedMessage(std::string message);

}  // namespace host
