// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileFormat.h"
#include "Host/ImageFiles/FileMetadata.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

// What the program and its modules for image files say to each other. There is a slim module for each of the formats
// that most files have, and one for all others; each is loaded when a file needs it, and stays. The program opens,
// checks and replaces files; modules see bytes. Nothing throws: a call that fails returns false or null and puts the
// cause, without the file's name, in *reason (which may be null).
namespace host {

// The picture in a file, before its pixels are decoded.
struct PictureInfo {
  std::uint32_t width = 0;  // as stored; of EXR the window that the file shows
  std::uint32_t height = 0;
  SampleType sample = SampleType::UInt8;  // what the samples are decoded to
  Depth depth = Depth::Bits8;             // of the file
  AlphaKind alpha = AlphaKind::None;
  Channels channels = Channels::RGBA;  // of the file; a palette counts as RGB, with transparent entries as RGBA
  int orientation = 1;                 // 1 to 8, as TIFF and Exif number them
  FileMetadata metadata;
};

// A file of which everything but the pixels has been read. The bytes must outlive it.
class ImageReader {
 public:
  virtual ~ImageReader() = default;
  const PictureInfo& info() const { return info_; }

  // Decodes the whole picture, once: four samples a pixel (red, green, blue, alpha) of the type info().sample, rows
  // from the top, their starts `rowBytes` apart. Integer samples use their whole range; gray is in all three colors;
  // without alpha it is full. All pixels are written when it succeeds, nothing is said about them when it fails; a file
  // that is damaged or cut short fails.
  virtual bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) = 0;

 protected:
  PictureInfo info_;
};

struct ReadRequest {
  std::span<const std::uint8_t> file;
  std::string
      layer;  // of a file with several: a part's name, or what stands before the last dot in its channels' names
  std::string extension;  // of the file's name, with its dot: a hint for formats that do not tell themselves
};

struct WriteSettings {
  int quality = -1;         // 1 to 100 of formats that lose; -1: the format's own default
  std::string compression;  // the name of a method, as the format knows it; empty: the format's own default
  int level = -1;           // how hard to compress, of methods that know levels; -1: the method's own default
};

struct WriteRequest {
  FileFormat format = FileFormat::Png;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  Channels channels = Channels::RGBA;
  SampleType sample = SampleType::UInt8;   // of the rows
  Depth depth = Depth::Bits8;              // of the file: with Half and Float rows hold floats
  AlphaKind alpha = AlphaKind::None;       // of the rows, and of the file
  const FileMetadata* metadata = nullptr;  // what the format cannot hold is left out
  WriteSettings settings;
};

// The rows of a picture, packed as the request says: width x channelCount(channels) samples.
class PixelRows {
 public:
  virtual ~PixelRows() = default;
  virtual const std::byte* row(std::uint32_t y) = 0;  // in order from the top, each once; good until the next
};

// Where a file is written. False when it could not be: the module then gives up, and the program knows why.
class OutputBytes {
 public:
  virtual ~OutputBytes() = default;
  virtual bool write(std::uint64_t offset, std::span<const std::uint8_t> bytes) = 0;
  virtual std::size_t read(std::uint64_t offset,
                           std::span<std::uint8_t> bytes) = 0;  // what was written; how much of it
};

class ImageFileModule {
 public:
  virtual ~ImageFileModule() = default;

  // Null with *isOtherKind set when the file is of the module's format but of a kind that the general module reads.
  virtual std::unique_ptr<ImageReader> open(const ReadRequest& request, bool* isOtherKind, std::string* reason) = 0;
  virtual bool write(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) = 0;
};

// A module's one exported function. The object lives as long as the process.
inline constexpr const char* kImageFileModuleEntry = "VortoImageFileModule";
using ImageFileModuleFunction = ImageFileModule* (*)();

}  // namespace host
