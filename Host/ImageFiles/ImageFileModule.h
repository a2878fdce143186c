// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// What the program and its module for image files say to each other. Files are handed over as bytes: the program opens,
// checks and replaces them. Nothing throws; a call that fails returns false and puts the cause, without the file's
// name, in *reason (which may be null).
namespace host {

enum class FileFormat { Png, Jpeg, Tiff, Exr };

enum class SampleType { UInt8, UInt16, Float };

// The depth of a file, of rendering, or both. Half is a depth of files; pixels of that depth are held as floats.
enum class Depth { Bits8, Bits16, Half, Float };

enum class AlphaKind { None, Straight, Premultiplied };

// Four samples a pixel (red, green, blue, alpha), rows from the top, no padding. Integer samples use their whole range;
// with AlphaKind::None alpha is full.
struct ImagePixels {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  SampleType sample = SampleType::UInt8;
  Depth depth = Depth::Bits8;  // of the file that they came from
  AlphaKind alpha = AlphaKind::Premultiplied;
  std::unique_ptr<std::byte[]> bytes;

  std::size_t sampleCount() const { return std::size_t{4} * width * height; }
  template <class Sample>
  std::span<Sample> samples() const {
    return {reinterpret_cast<Sample*>(bytes.get()), sampleCount()};
  }
};

inline std::size_t bytesPerSample(SampleType sample) {
  return sample == SampleType::UInt8 ? 1 : sample == SampleType::UInt16 ? 2 : 4;
}

// Memory for the pixels, not initialised.
inline void allocatePixels(ImagePixels& image) {
  image.bytes = std::make_unique_for_overwrite<std::byte[]>(image.sampleCount() * bytesPerSample(image.sample));
}

struct TextStyle {
  std::string fontFile;
  int pixelSize = 0;
  float gray = 1;  // 0 to 1
};

class ImageFileModule {
 public:
  virtual ~ImageFileModule() = default;

  // The whole picture, upright, in the depth of the file (half as float) and in the file's own transfer function. The
  // format is told by the first bytes; of a file with several pictures the first counts. A file that is damaged or cut
  // short is refused, and so is one whose pixels take more than `maximumBytes`.
  virtual bool read(std::span<const std::uint8_t> file, std::uint64_t maximumBytes, ImagePixels* image,
                    std::string* reason) = 0;
  // The file's bytes. PNG wants straight alpha, TIFF and EXR want it premultiplied; JPEG leaves alpha out. Half needs
  // float samples; the other depths need samples of their own.
  virtual bool write(const ImagePixels& image, FileFormat format, Depth depth, std::vector<std::uint8_t>* file,
                     std::string* reason) = 0;

  // Fills `target`, whose size is set, with the whole of `source` through a Lanczos filter. Both hold float samples.
  virtual bool resize(const ImagePixels& source, ImagePixels* target, std::string* reason) = 0;
  // Draws one line of UTF-8 text, centred on `x`, its base line at `baseline`, into an 8-bit image.
  virtual bool drawText(ImagePixels* image, int x, int baseline, const std::string& text, const TextStyle& style,
                        std::string* reason) = 0;
  // How wide drawText() would draw, in pixels; negative when the font cannot be used.
  virtual int textWidth(const std::string& text, const TextStyle& style) = 0;
};

// The module's one exported function. The object lives as long as the module is loaded.
inline constexpr const char* kImageFileModuleEntry = "VortoImageFileModule";
using ImageFileModuleFunction = ImageFileModule* (*)();

}  // namespace host
