// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Reading.h"

#include "Host/ImageFiles/Damaged.h"
#include "Host/ImageFiles/General/Channels.h"
#include "Host/ImageFiles/General/FormatNames.h"
#include "Host/ImageFiles/General/LibraryFile.h"
#include "Host/ImageFiles/General/Metadata.h"
#include "Host/ImageFiles/General/PortableAnymap.h"
#include "Host/ImageFiles/TiffStructure.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>
#include <vector>

namespace host {
namespace {

// Damage that the library reads over, or only meets in what it does not read.
bool isWhole(std::string_view format, std::span<const std::uint8_t> file) {
  return format != "tiff" || isWholeTiff(file);
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "none" : text;
}

template <class Sample>
constexpr Sample kOpaque = static_cast<Sample>(-1);
template <>
constexpr float kOpaque<float> = 1.0f;

class LibraryReader : public ImageReader {
 public:
  explicit LibraryReader(const ReadRequest& request) : request_(request), file_(request.file) {}
  ~LibraryReader() override {
    if (input_) input_->close();
  }

  bool open(std::string* reason) {
    const char* const format = formatNameOf(request_.file, request_.extension);
    if (!format) return NSRefuse(reason, "it is no picture of a kind that is read");
    format_ = format;
    if (!isWhole(format_, request_.file)) return NSRefuse(reason, kDamaged);
    input_ = file_.open(format, &spec_, reason);
    if (!input_ || !findLayer(reason) || !check(reason)) return false;
    describe();
    return true;
  }

  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    switch (info_.sample) {
      case SampleType::UInt8:
        return readSamples<std::uint8_t>(pixels, rowBytes, reason);
      case SampleType::UInt16:
        return readSamples<std::uint16_t>(pixels, rowBytes, reason);
      case SampleType::Float:
        break;
    }
    return readSamples<float>(pixels, rowBytes, reason);
  }

 private:
  // A part of that name, a layer in the first part, or a layer in a named part.
  bool findLayer(std::string* reason) {
    const std::string& wanted = request_.layer;
    if (wanted.empty()) return findColorChannels(spec_, "", &channels_, reason);
    std::vector<std::string> known;
    OIIO::ImageSpec spec = spec_;
    for (int part = 0; part == 0 || input_->seek_subimage(part, 0, spec); ++part) {
      const std::string name = spec.get_string_attribute("oiio:subimagename");
      std::vector<std::string> layers = layersOf(spec);
      if (!name.empty()) layers.insert(layers.begin(), "");
      for (const std::string& layer : layers) {
        const bool isLayerOfFirst = part == 0 && layer == wanted && !layer.empty();
        const std::string full = name.empty() ? layer : layer.empty() ? name : name + "." + layer;
        known.push_back(full);
        if (!isLayerOfFirst && full != wanted) continue;
        spec_ = spec;
        return findColorChannels(spec_, layer, &channels_, reason);
      }
    }
    return NSRefuse(reason, "it has no layer " + wanted + "; there are: " + joined(known));
  }

  bool check(std::string* reason) const {
    if (spec_.deep) return NSRefuse(reason, "it is a deep image, which has no single color at a pixel");
    if (spec_.depth > 1) return NSRefuse(reason, "it is a volume, not a picture");
    const bool hasPixels = spec_.width > 0 && spec_.height > 0 && spec_.full_width > 0 && spec_.full_height > 0;
    if (!hasPixels) return NSRefuse(reason, "it has no pixels");
    constexpr std::int64_t most = std::int64_t{1} << 32;
    return std::int64_t{spec_.width} * spec_.height < most || NSRefuse(reason, "it has too many pixels");
  }

  void describe() {
    info_.width = static_cast<std::uint32_t>(spec_.full_width);
    info_.height = static_cast<std::uint32_t>(spec_.full_height);
    info_.sample = channels_.sample;
    info_.depth = channels_.depth;
    info_.alpha = channels_.alpha;
    const bool hasAlpha = channels_.alpha != AlphaKind::None;
    info_.channels = channels_.isGray() ? (hasAlpha ? Channels::GrayAlpha : Channels::Gray)
                                        : (hasAlpha ? Channels::RGBA : Channels::RGB);
    info_.orientation = spec_.get_int_attribute("Orientation", 1);
    info_.metadata = metadataOf(spec_);
  }

  // Where the library inflates the strips of a TIFF itself it does not say which of them failed; row by row the
  // format's own library does it, which does.
  int rowsAtOnce() const {
    if (spec_.tile_width > 0) return spec_.height;
    const bool isInflated = format_ == "tiff" && spec_.get_string_attribute("compression") == "zip";
    return isInflated ? 1 : 256;
  }

  bool readRows(int first, int end, void* samples) {
    const OIIO::TypeDesc type = typeOf(info_.sample);
    if (first == 0 && end == spec_.height) {
      return input_->read_image(input_->current_subimage(), 0, channels_.first, channels_.end, type, samples);
    }
    return input_->read_scanlines(input_->current_subimage(), 0, spec_.y + first, spec_.y + end, 0, channels_.first,
                                  channels_.end, type, samples);
  }

  template <class Sample>
  bool readSamples(std::byte* pixels, std::size_t rowBytes, std::string* reason) {
    fillOutside<Sample>(pixels, rowBytes);
    const int step = rowsAtOnce();
    const std::size_t rowSamples =
        static_cast<std::size_t>(spec_.width) * static_cast<std::size_t>(channels_.end - channels_.first);
    std::vector<Sample> stored(rowSamples * static_cast<std::size_t>(std::min(step, spec_.height)));
    for (int first = 0; first < spec_.height; first += step) {
      const int end = std::min(first + step, spec_.height);
      // Decoders go on after damage that they only warn of, and leave the rest of the picture as it is.
      if (!readRows(first, end, stored.data()) || input_->has_error()) {
        return NSRefuse(reason, std::string(kDamaged) + " (" + cleanedMessage(input_->geterror()) + ")");
      }
      for (int row = first; row < end; ++row) {
        placeRow(stored.data() + static_cast<std::size_t>(row - first) * rowSamples, row, pixels, rowBytes);
      }
    }
    return true;
  }

  bool coversAll() const {
    return spec_.x == spec_.full_x && spec_.y == spec_.full_y && spec_.width == spec_.full_width &&
           spec_.height == spec_.full_height;
  }

  template <class Sample>
  void fillOutside(std::byte* pixels, std::size_t rowBytes) const {
    if (coversAll()) return;
    for (std::size_t y = 0; y < info_.height; ++y) {
      auto* const row = reinterpret_cast<Sample*>(pixels + y * rowBytes);
      std::fill_n(row, std::size_t{4} * info_.width, Sample{0});
      if (info_.alpha != AlphaKind::None) continue;
      for (std::size_t x = 0; x < info_.width; ++x) row[4 * x + 3] = kOpaque<Sample>;
    }
  }

  // Sorts stored samples into RGBA, inside the window that the file shows.
  template <class Sample>
  void placeRow(const Sample* stored, int row, std::byte* pixels, std::size_t rowBytes) const {
    const std::int64_t left = std::int64_t{spec_.x} - spec_.full_x;
    const std::int64_t y = row + std::int64_t{spec_.y} - spec_.full_y;
    if (y < 0 || y >= spec_.full_height) return;
    const std::int64_t first = std::max<std::int64_t>(0, -left);
    const std::int64_t end = std::min<std::int64_t>(spec_.width, spec_.full_width - left);
    const std::int64_t stride = channels_.end - channels_.first;
    auto* const line = reinterpret_cast<Sample*>(pixels + static_cast<std::size_t>(y) * rowBytes);
    for (std::int64_t column = first; column < end; ++column) {
      const Sample* const from = stored + column * stride;
      Sample* const to = line + 4 * (column + left);
      for (std::size_t component = 0; component < 4; ++component) {
        const int channel = channels_.index[component];
        to[component] = channel < 0 ? kOpaque<Sample> : from[channel - channels_.first];
      }
    }
  }

  const ReadRequest request_;
  LibraryFile file_;
  std::string format_;
  std::unique_ptr<OIIO::ImageInput> input_;
  OIIO::ImageSpec spec_;
  ColorChannels channels_;
};

}  // namespace

std::unique_ptr<ImageReader> openImage(const ReadRequest& request, std::string* reason) {
  // The library reads 16 bits a unit off.
  if (isPortableAnymap(request.file)) return openPortableAnymap(request.file, reason);
  auto reader = std::make_unique<LibraryReader>(request);
  return reader->open(reason) ? std::move(reader) : nullptr;
}

}  // namespace host
