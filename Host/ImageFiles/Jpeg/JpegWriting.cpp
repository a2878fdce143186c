// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Jpeg/JpegWriting.h"

#include "Host/ImageFiles/IccModel.h"
#include "Host/ImageFiles/Jpeg/JpegErrors.h"
#include "Host/ImageFiles/Ratio.h"
#include "Platform/Foundation/NSReason.h"

#include <jerror.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <vector>

namespace host {
namespace {

constexpr int kDefaultQuality = 95;
constexpr std::uint32_t kLargestSize = JPEG_MAX_DIMENSION;
constexpr std::uint32_t kLargestDensity = 0xFFFF;
constexpr std::size_t kLargestExif = 65533 - 6;
constexpr std::size_t kLargestProfile = std::size_t{255} * 65519;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr char kExifName[] = "Exif\0";  // and the terminating zero

// How many columns and rows of pixels share a color.
struct Sampling {
  const char* name;
  int columns;
  int rows;
};
constexpr Sampling kSamplings[] = {{"444", 1, 1}, {"422", 2, 1}, {"420", 2, 2}};

const Sampling* samplingNamed(const std::string& name) {
  if (name.empty()) return &kSamplings[0];
  for (const Sampling& sampling : kSamplings) {
    if (name == sampling.name) return &sampling;
  }
  return nullptr;
}

bool isPossible(const WriteRequest& request, std::string* reason) {
  const WriteSettings& settings = request.settings;
  if (request.sample != SampleType::UInt8) return NSRefuse(reason, "JPEG holds samples of 8 bits");
  if (hasAlpha(request.channels)) return NSRefuse(reason, "JPEG holds no alpha");
  if (std::min(request.width, request.height) == 0 || std::max(request.width, request.height) > kLargestSize) {
    return NSRefuse(reason, "JPEG holds 1 to " + std::to_string(kLargestSize) + " rows and columns");
  }
  if (samplingNamed(settings.compression) == nullptr) {
    return NSRefuse(reason, "JPEG has no color sampling \"" + settings.compression + "\"; it has 444, 422 and 420");
  }
  if (settings.level != -1)
    return NSRefuse(reason, "JPEG's compression has no levels: its quality says how hard it is");
  if (settings.quality != -1 && (settings.quality < 1 || settings.quality > 100)) {
    return NSRefuse(reason, "the qualities of JPEG are 1 to 100");
  }
  return true;
}

// Where the library leaves its bytes.
struct Destination {
  jpeg_destination_mgr base{};  // first: the library hands its address back
  OutputBytes* output = nullptr;
  std::uint64_t written = 0;
  std::exception_ptr thrown;  // by the output
  std::vector<JOCTET> buffer = std::vector<JOCTET>(std::size_t{1} << 16);

  explicit Destination(OutputBytes& to) : output(&to) {
    base.init_destination = [](j_compress_ptr library) { of(library).start(); };
    base.empty_output_buffer = [](j_compress_ptr library) -> boolean {
      of(library).put(library, of(library).buffer.size());
      return TRUE;
    };
    base.term_destination = [](j_compress_ptr library) {
      of(library).put(library, of(library).buffer.size() - of(library).base.free_in_buffer);
    };
  }

 private:
  static Destination& of(j_compress_ptr library) { return *reinterpret_cast<Destination*>(library->dest); }
  void start() {
    base.next_output_byte = buffer.data();
    base.free_in_buffer = buffer.size();
  }
  // Nothing may be thrown through the library's functions.
  bool isPut(std::size_t size) {
    try {
      return output->write(written, {buffer.data(), size});
    } catch (...) {
      thrown = std::current_exception();
    }
    return false;
  }
  void put(j_compress_ptr library, std::size_t size) {
    if (!isPut(size)) ERREXIT(library, JERR_FILE_WRITE);
    written += size;
    start();
  }
};

class JpegWriter {
 public:
  JpegWriter(const WriteRequest& request, PixelRows& rows, OutputBytes& output)
      : request_(request), rows_(rows), destination_(output) {
    library_.err = errors_.manager();
  }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;
  ~JpegWriter() { jpeg_destroy_compress(&library_); }

  bool write(std::string* reason) {
    if (start() && writeMarkers() && writeRows()) return true;
    if (destination_.thrown) std::rethrow_exception(destination_.thrown);
    return NSRefuse(reason, errors_.firstMessage());
  }

 private:
  bool start() {
    return errors_.run([&] {
      jpeg_create_compress(&library_);
      library_.dest = &destination_.base;
      library_.image_width = request_.width;
      library_.image_height = request_.height;
      library_.input_components = static_cast<int>(channelCount(request_.channels));
      library_.in_color_space = isGray(request_.channels) ? JCS_GRAYSCALE : JCS_RGB;
      jpeg_set_defaults(&library_);
      jpeg_set_quality(&library_, request_.settings.quality < 0 ? kDefaultQuality : request_.settings.quality, TRUE);
      const Sampling& sampling = *samplingNamed(request_.settings.compression);
      library_.comp_info[0].h_samp_factor = isGray(request_.channels) ? 1 : sampling.columns;
      library_.comp_info[0].v_samp_factor = isGray(request_.channels) ? 1 : sampling.rows;
      setDensity();
      jpeg_start_compress(&library_, TRUE);
    });
  }

  void setDensity() {
    if (request_.metadata == nullptr) return;
    if (request_.metadata->resolution) {
      setResolution(*request_.metadata->resolution);
    } else if (const auto aspect = request_.metadata->pixelAspect; aspect && *aspect >= 1e-3 && *aspect <= 1e3) {
      const auto [width, height] = ratioOf(*aspect, kLargestDensity);
      setDensity(0, height, width);
    }
  }

  // Whole numbers: to the inch or to the centimeter, whichever comes nearer.
  void setResolution(const Resolution& resolution) {
    constexpr double kCentimetersPerInch = 2.54;
    const bool isInch = resolution.unit == Resolution::Unit::Inch;
    const double toOther = isInch ? 1 / kCentimetersPerInch : kCentimetersPerInch;
    const auto errorOf = [&](double factor) {
      return (std::abs(std::round(resolution.x * factor) - resolution.x * factor) +
              std::abs(std::round(resolution.y * factor) - resolution.y * factor)) /
             factor;
    };
    const bool isOther = errorOf(toOther) < errorOf(1);
    const double x = std::round(resolution.x * (isOther ? toOther : 1));
    const double y = std::round(resolution.y * (isOther ? toOther : 1));
    if (!(std::min(x, y) >= 1) || !(std::max(x, y) <= kLargestDensity)) return;
    setDensity(isInch != isOther ? 1 : 2, static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y));
  }

  void setDensity(UINT8 unit, std::uint32_t x, std::uint32_t y) {
    library_.density_unit = unit;
    library_.X_density = static_cast<UINT16>(x);
    library_.Y_density = static_cast<UINT16>(y);
  }

  bool writeMarkers() {
    if (request_.metadata == nullptr) return true;
    const Bytes& exif = request_.metadata->exif;
    if (!exif.empty() && exif.size() <= kLargestExif) {
      Bytes marker(sizeof kExifName + exif.size());
      std::memcpy(marker.data(), kExifName, sizeof kExifName);
      std::memcpy(marker.data() + sizeof kExifName, exif.data(), exif.size());
      if (!errors_.run([&] {
            jpeg_write_marker(&library_, kExifMarker, marker.data(), static_cast<unsigned>(marker.size()));
          })) {
        return false;
      }
    }
    const Bytes& profile = request_.metadata->color.iccProfile;
    const bool isFitting = profile.size() <= kLargestProfile && isProfileFor(profile, request_.channels);
    return !isFitting || errors_.run([&] {
      jpeg_write_icc_profile(&library_, profile.data(), static_cast<unsigned>(profile.size()));
    });
  }

  bool writeRows() {
    for (std::uint32_t y = 0; y < request_.height; ++y) {
      auto* row = const_cast<JSAMPLE*>(reinterpret_cast<const JSAMPLE*>(rows_.row(y)));
      if (!errors_.run([&] { jpeg_write_scanlines(&library_, &row, 1); })) return false;
    }
    return errors_.run([&] { jpeg_finish_compress(&library_); });
  }

  const WriteRequest& request_;
  PixelRows& rows_;
  Destination destination_;
  JpegErrors errors_;
  jpeg_compress_struct library_{};
};

}  // namespace

bool writeJpeg(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) {
  return isPossible(request, reason) && JpegWriter(request, rows, output).write(reason);
}

}  // namespace host
