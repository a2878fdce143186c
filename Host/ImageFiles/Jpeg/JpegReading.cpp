// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Jpeg/JpegReading.h"

#include "Host/ImageFiles/Damaged.h"
#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/Jpeg/JpegErrors.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace host {
namespace {

// Every 64 pixels take at least a bit, unless arithmetic coding spreads one over many; how many has no sharp limit.
constexpr std::uint64_t kPixelsPerByte = 512;
constexpr std::uint64_t kPixelsPerArithmeticByte = 64 * kPixelsPerByte;
// Each scan goes over all pixels, for as little as a few bytes of the file. Programs write about ten.
constexpr int kLargestScanCount = 200;
// The pixels of all scans together: in any file, and for each byte of a larger one. Ten scans over nothing but gray
// take a byte for 1,700.
constexpr std::uint64_t kScannedPixels = std::uint64_t{1} << 30;
constexpr std::uint64_t kScannedPixelsPerByte = 2048;

constexpr unsigned kLargestMarker = 0xFFFF;
constexpr int kExifMarker = JPEG_APP0 + 1;
constexpr int kProfileMarker = JPEG_APP0 + 2;
constexpr char kExifName[] = "Exif\0";  // and the terminating zero

std::uint8_t product(unsigned a, unsigned b) {
  return static_cast<std::uint8_t>((2 * a * b + 255) / 510);  // of fractions of 255, rounded
}

struct Progress {
  jpeg_progress_mgr base{};  // first: the library hands its address back
  int largestScanCount = kLargestScanCount;
};

class JpegReader : public ImageReader {
 public:
  JpegReader() {
    library_.err = errors_.manager();
    progress_.base.progress_monitor = checkScans;
  }
  ~JpegReader() override { jpeg_destroy_decompress(&library_); }

  bool open(std::span<const std::uint8_t> file, std::string* reason) {
    const bool isRead = errors_.run([&] {
      jpeg_create_decompress(&library_);
      library_.progress = &progress_.base;
      jpeg_mem_src(&library_, file.data(), file.size());
      jpeg_save_markers(&library_, kExifMarker, kLargestMarker);
      jpeg_save_markers(&library_, kProfileMarker, kLargestMarker);
      jpeg_read_header(&library_, TRUE);
    });
    if (!isRead) return refuse(reason);
    if (library_.num_components != 1 && library_.num_components != 3 && library_.num_components != 4) {
      return NSRefuse(reason, "it has no channels that make a gray or an RGB picture");
    }
    const std::uint64_t pixels = std::uint64_t{library_.image_width} * library_.image_height;
    if (pixels / (library_.arith_code ? kPixelsPerArithmeticByte : kPixelsPerByte) > file.size()) {
      return refuse(reason);
    }
    limitScans(pixels, file.size());
    info_.width = library_.image_width;
    info_.height = library_.image_height;
    info_.channels = library_.num_components == 1 ? Channels::Gray : Channels::RGB;
    readResolution();
    readExif();
    readProfile();
    return true;
  }

  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    const bool isCmyk = library_.num_components == 4;
    library_.out_color_space = isCmyk ? JCS_CMYK : JCS_EXT_RGBA;
    const bool isRead = errors_.run([&] {
      jpeg_start_decompress(&library_);
      while (library_.output_scanline < library_.output_height) {
        auto* row = reinterpret_cast<JSAMPLE*>(pixels + library_.output_scanline * rowBytes);
        jpeg_read_scanlines(&library_, &row, 1);
        if (isCmyk) makeRgb(row);
      }
    });
    return isRead || refuse(reason);
  }

 private:
  bool refuse(std::string* reason) const {
    if (library_.input_scan_number > progress_.largestScanCount) {
      return NSRefuse(reason, "it has more than " + std::to_string(progress_.largestScanCount) + " scans");
    }
    std::string text = kDamaged;
    if (*errors_.firstMessage() != 0) text += std::string(" (") + errors_.firstMessage() + ")";
    return NSRefuse(reason, text);
  }

  void limitScans(std::uint64_t pixels, std::uint64_t fileSize) {
    const std::uint64_t scans =
        std::max(kScannedPixels, kScannedPixelsPerByte * fileSize) / std::max(pixels, std::uint64_t{1});
    progress_.largestScanCount = static_cast<int>(std::clamp<std::uint64_t>(scans, 1, kLargestScanCount));
  }
  static void checkScans(j_common_ptr common) {
    const auto* const library = reinterpret_cast<j_decompress_ptr>(common);
    const int largest = reinterpret_cast<const Progress*>(library->progress)->largestScanCount;
    if (library->input_scan_number > largest) common->err->error_exit(common);
  }

  // Inks are stored the other way round: what light they let through.
  void makeRgb(JSAMPLE* row) const {
    for (JDIMENSION x = 0; x < library_.output_width; ++x, row += 4) {
      for (int color = 0; color < 3; ++color) row[color] = product(row[color], row[3]);
      row[3] = 0xFF;
    }
  }

  void readResolution() {
    if (!library_.saw_JFIF_marker || library_.X_density == 0 || library_.Y_density == 0) return;
    const double x = library_.X_density;
    const double y = library_.Y_density;
    if (library_.density_unit == 1) info_.metadata.resolution = Resolution{x, y, Resolution::Unit::Inch};
    if (library_.density_unit == 2) info_.metadata.resolution = Resolution{x, y, Resolution::Unit::Centimeter};
    if (x != y) info_.metadata.pixelAspect = y / x;
  }

  void readExif() {
    for (jpeg_saved_marker_ptr marker = library_.marker_list; marker != nullptr; marker = marker->next) {
      const std::span<const std::uint8_t> data(marker->data, marker->data_length);
      if (marker->marker != kExifMarker || data.size() < sizeof kExifName) continue;
      if (std::memcmp(data.data(), kExifName, sizeof kExifName) != 0) continue;
      const auto block = data.subspan(sizeof kExifName);
      info_.orientation = exifOrientation(block);
      info_.metadata.exif = uprightExif(block);
      takeExifResolution(info_.metadata.exif, &info_.metadata);
      return;
    }
  }

  // A damaged profile is as none.
  void readProfile() {
    JOCTET* profile = nullptr;
    unsigned size = 0;
    const bool isRead = errors_.run([&] { jpeg_read_icc_profile(&library_, &profile, &size); });
    if (isRead && profile != nullptr) {
      const std::unique_ptr<JOCTET, decltype(&std::free)> owner(profile, &std::free);
      info_.metadata.color.iccProfile.assign(profile, profile + size);
    }
    errors_.forget();
  }

  JpegErrors errors_;
  jpeg_decompress_struct library_{};
  Progress progress_;
};

}  // namespace

std::unique_ptr<ImageReader> openJpeg(std::span<const std::uint8_t> file, std::string* reason) {
  if (file.size() < 3 || std::memcmp(file.data(), "\xFF\xD8\xFF", 3) != 0) {
    NSRefuse(reason, "it is not a JPEG file");
    return nullptr;
  }
  auto reader = std::make_unique<JpegReader>();
  return reader->open(file, reason) ? std::move(reader) : nullptr;
}

}  // namespace host
