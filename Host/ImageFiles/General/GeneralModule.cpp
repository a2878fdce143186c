// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/ImageFileModule.h"

#include "Host/ImageFiles/Drawing.h"
#include "Host/ImageFiles/Reading.h"
#include "Host/ImageFiles/SilentStandardError.h"
#include "Host/ImageFiles/Writing.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Visibility.h"

#include <OpenImageIO/imageio.h>
#include <exception>
#include <new>

namespace host {
namespace {

// Runs a step that may throw (the library, or memory that ran out) and returns false instead.
template <class Step>
bool guarded(std::string* reason, Step step) {
  const SilentStandardError silent;
  try {
    return step();
  } catch (const std::bad_alloc&) {
    NSRefuse(reason, "there is not enough memory for it");
  } catch (const std::exception& error) {
    NSRefuse(reason, error.what());
  }
  return false;
}

class OpenImageIOModule : public ImageFileModule {
 public:
  OpenImageIOModule() {
    OIIO::attribute("debug", 0);             // no remarks on standard error: failures have a reason
    OIIO::attribute("tiff:multithread", 0);  // tiles that are inflated side by side fail without a word
  }

  bool read(std::span<const std::uint8_t> file, std::uint64_t maximumBytes, ImagePixels* image,
            std::string* reason) override {
    return guarded(reason, [&] { return readImage(file, maximumBytes, image, reason); });
  }
  bool write(const ImagePixels& image, FileFormat format, Depth depth, std::vector<std::uint8_t>* file,
             std::string* reason) override {
    return guarded(reason, [&] { return writeImage(image, format, depth, file, reason); });
  }
  bool resize(const ImagePixels& source, ImagePixels* target, std::string* reason) override {
    return guarded(reason, [&] { return resizeImage(source, target, reason); });
  }
  bool drawText(ImagePixels* image, int x, int baseline, const std::string& text, const TextStyle& style,
                std::string* reason) override {
    return guarded(reason, [&] { return drawTextInImage(image, x, baseline, text, style, reason); });
  }
  int textWidth(const std::string& text, const TextStyle& style) override {
    std::string ignored;
    int width = -1;
    guarded(&ignored, [&] {
      width = widthOfText(text, style);
      return true;
    });
    return width;
  }
};

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::ImageFileModule* VortoImageFileModule();
host::ImageFileModule* VortoImageFileModule() {
  static host::OpenImageIOModule module;
  return &module;
}
