// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Reading.h"

#include "Host/ImageFiles/Channels.h"
#include "Host/ImageFiles/ExrStructure.h"
#include "Host/ImageFiles/Orientation.h"
#include "Host/ImageFiles/PngStructure.h"
#include "Host/ImageFiles/TiffStructure.h"
#include "Platform/Foundation/NSReason.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <algorithm>
#include <cstring>
#include <utility>

namespace host {
namespace {

bool startsWith(std::span<const std::uint8_t> file, std::string_view magic) {
  return file.size() >= magic.size() && std::memcmp(file.data(), magic.data(), magic.size()) == 0;
}

// The library's name of the format; null when it is none of ours.
const char* formatOf(std::span<const std::uint8_t> file) {
  using namespace std::string_view_literals;
  if (startsWith(file, "\x89PNG\r\n\x1a\n"sv)) return "png";
  if (startsWith(file, "\xff\xd8\xff"sv)) return "jpeg";
  if (startsWith(file, "\x76\x2f\x31\x01"sv)) return "openexr";
  for (const auto magic : {"II\x2a\0"sv, "MM\0\x2a"sv, "II\x2b\0"sv, "MM\0\x2b"sv}) {
    if (startsWith(file, magic)) return "tiff";
  }
  return nullptr;
}

constexpr const char* kDamaged = "it is damaged or cut short";

// One line, without the name under which the library knows the bytes.
std::string cleaned(std::string message) {
  for (const std::string name : {" image file \"image\"", " (\"image\")", " \"image\""}) {
    for (std::size_t at; (at = message.find(name)) != std::string::npos;) message.erase(at, name.size());
  }
  std::replace(message.begin(), message.end(), '\n', ' ');
  while (!message.empty() && (message.back() == ' ' || message.back() == '.')) message.pop_back();
  return message.empty() ? kDamaged : message;
}

class OpenedFile {
 public:
  explicit OpenedFile(std::span<const std::uint8_t> file)
      : file_(file), format_(formatOf(file)), proxy_(file.data(), file.size()) {}
  ~OpenedFile() {
    if (input_) input_->close();
  }

  bool open(std::string* reason) {
    if (!format_) {
      return NSRefuse(reason, "it is not a PNG, JPEG, TIFF or EXR file");
    }
    if (!isWhole()) {
      return NSRefuse(reason, kDamaged);
    }
    input_ = OIIO::ImageInput::create(format_);
    if (!input_) {
      return NSRefuse(reason, cleaned(OIIO::geterror()));
    }
    OIIO::ImageSpec configuration;
    configuration.attribute("oiio:UnassociatedAlpha", 1);  // alpha as the file has it: we multiply ourselves
    input_->set_ioproxy(&proxy_);
    if (!input_->open("image", spec_, configuration)) {
      return NSRefuse(reason, cleaned(input_->geterror()));
    }
    return check(reason) && findColorChannels(spec_, &channels_, reason);
  }

  const OIIO::ImageSpec& spec() const { return spec_; }
  const ColorChannels& channels() const { return channels_; }
  // The window that the file shows; an EXR may store less than that, or more.
  std::uint32_t width() const { return static_cast<std::uint32_t>(spec_.full_width); }
  std::uint32_t height() const { return static_cast<std::uint32_t>(spec_.full_height); }
  int orientation() const { return spec_.get_int_attribute("Orientation", 1); }

  bool readStored(const OIIO::TypeDesc& type, void* samples, std::string* reason) {
    const bool read = isReadByRows() ? readRows(type, static_cast<std::byte*>(samples))
                                     : input_->read_image(0, 0, channels_.first, channels_.end, type, samples);
    // Decoders go on after damage that they only warn of, and leave the rest of the picture as it is.
    if (read && !input_->has_error()) return true;
    return NSRefuse(reason, std::string(kDamaged) + " (" + cleaned(input_->geterror()) + ")");
  }

 private:
  // Damage that the library reads over, or only meets in what it does not read.
  bool isWhole() const {
    const std::string_view format = format_;
    if (format == "png") return isWholePng(file_);
    if (format == "tiff") return isWholeTiff(file_);
    return format != "openexr" || isWholeExr(file_);
  }

  // Where the library inflates the strips of a TIFF itself it does not say which of them failed; row by row the
  // format's own library does it, which does.
  bool isReadByRows() const {
    return std::string_view(format_) == "tiff" && spec_.tile_width == 0 &&
           spec_.get_string_attribute("compression") == "zip";
  }

  bool readRows(const OIIO::TypeDesc& type, std::byte* samples) {
    const std::size_t rowSize =
        static_cast<std::size_t>(spec_.width) * static_cast<std::size_t>(channels_.end - channels_.first) * type.size();
    for (int row = 0; row < spec_.height; ++row, samples += rowSize) {
      const int y = spec_.y + row;
      if (!input_->read_scanlines(0, 0, y, y + 1, 0, channels_.first, channels_.end, type, samples)) return false;
    }
    return true;
  }

  bool check(std::string* reason) const {
    if (spec_.deep) {
      NSRefuse(reason, "it is a deep image, which has no single color at a pixel");
    } else if (spec_.depth > 1) {
      NSRefuse(reason, "it is a volume, not a picture");
    } else if (spec_.width <= 0 || spec_.height <= 0 || spec_.full_width <= 0 || spec_.full_height <= 0) {
      NSRefuse(reason, "it has no pixels");
    } else {
      return true;
    }
    return false;
  }

  std::span<const std::uint8_t> file_;
  const char* format_;
  OIIO::Filesystem::IOMemReader proxy_;
  std::unique_ptr<OIIO::ImageInput> input_;
  OIIO::ImageSpec spec_;
  ColorChannels channels_;
};

template <class Sample>
void fillEmpty(ImagePixels* image, Sample opaque) {
  const auto samples = image->samples<Sample>();
  for (std::size_t i = 0; i < samples.size(); i += 4) {
    samples[i] = samples[i + 1] = samples[i + 2] = 0;
    samples[i + 3] = image->alpha == AlphaKind::None ? opaque : Sample{0};
  }
}

// Sorts the stored samples into RGBA, inside the window that the file shows.
template <class Sample>
void placeStored(const OpenedFile& file, const Sample* stored, Sample opaque, ImagePixels* image) {
  const OIIO::ImageSpec& spec = file.spec();
  const ColorChannels& channels = file.channels();
  const bool coversAll = spec.x == spec.full_x && spec.y == spec.full_y && spec.width == spec.full_width &&
                         spec.height == spec.full_height;
  if (!coversAll) fillEmpty(image, opaque);

  const std::int64_t left = std::int64_t{spec.x} - spec.full_x;
  const std::int64_t top = std::int64_t{spec.y} - spec.full_y;
  const std::int64_t firstRow = std::max<std::int64_t>(0, -top);
  const std::int64_t endRow = std::min<std::int64_t>(spec.height, spec.full_height - top);
  const std::int64_t firstColumn = std::max<std::int64_t>(0, -left);
  const std::int64_t endColumn = std::min<std::int64_t>(spec.width, spec.full_width - left);
  const std::size_t stride = static_cast<std::size_t>(channels.end - channels.first);
  const auto samples = image->samples<Sample>();
  for (std::int64_t row = firstRow; row < endRow; ++row) {
    const Sample* from = stored + static_cast<std::size_t>(row * spec.width + firstColumn) * stride;
    Sample* to = samples.data() + static_cast<std::size_t>((row + top) * spec.full_width + firstColumn + left) * 4;
    for (std::int64_t column = firstColumn; column < endColumn; ++column, from += stride, to += 4) {
      for (std::size_t component = 0; component < 4; ++component) {
        const int channel = channels.index[component];
        to[component] = channel < 0 ? opaque : from[channel - channels.first];
      }
    }
  }
}

template <class Sample>
bool readSamples(OpenedFile& file, const OIIO::TypeDesc& type, Sample opaque, ImagePixels* image, std::string* reason) {
  const OIIO::ImageSpec& spec = file.spec();
  const auto count = static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height) *
                     static_cast<std::size_t>(file.channels().end - file.channels().first);
  const auto stored = std::make_unique_for_overwrite<Sample[]>(count);
  if (!file.readStored(type, stored.get(), reason)) return false;
  allocatePixels(*image);
  placeStored(file, stored.get(), opaque, image);
  return true;
}

bool isTooLarge(const OpenedFile& file, std::uint64_t maximumBytes) {
  const OIIO::ImageSpec& spec = file.spec();
  const std::uint64_t maximumPixels = maximumBytes / (4 * bytesPerSample(file.channels().sample));
  const std::uint64_t shown = std::uint64_t{file.width()} * file.height();
  const std::uint64_t stored = static_cast<std::uint64_t>(spec.width) * static_cast<std::uint64_t>(spec.height);
  return shown > maximumPixels || stored > maximumPixels;
}

}  // namespace

bool readImage(std::span<const std::uint8_t> bytes, std::uint64_t maximumBytes, ImagePixels* image,
               std::string* reason) {
  OpenedFile file(bytes);
  if (!file.open(reason)) return false;
  if (isTooLarge(file, maximumBytes)) {
    return NSRefuse(reason, "its " + std::to_string(file.width()) + " x " + std::to_string(file.height()) +
                                " pixels are more than a bitmap can hold");
  }
  image->width = file.width();
  image->height = file.height();
  image->sample = file.channels().sample;
  image->depth = file.channels().depth;
  image->alpha = file.channels().alpha;
  bool read = false;
  switch (image->sample) {
    case SampleType::UInt8:
      read = readSamples<std::uint8_t>(file, OIIO::TypeDesc::UINT8, 0xFF, image, reason);
      break;
    case SampleType::UInt16:
      read = readSamples<std::uint16_t>(file, OIIO::TypeDesc::UINT16, 0xFFFF, image, reason);
      break;
    case SampleType::Float:
      read = readSamples<float>(file, OIIO::TypeDesc::FLOAT, 1.0f, image, reason);
      break;
  }
  if (read) makeUpright(image, file.orientation());
  return read;
}

}  // namespace host
