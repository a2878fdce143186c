// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Drawing.h"
#include "Host/ImageFiles/General/Reading.h"
#include "Host/ImageFiles/General/SilentStandardError.h"
#include "Host/ImageFiles/General/Writing.h"
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/ImageFileModule.h"
#include "Platform/Visibility.h"

#include <OpenImageIO/imageio.h>

namespace host {
namespace {

template <class Step>
auto silently(std::string* reason, Step step) -> decltype(step()) {
  const SilentStandardError silent;
  return guarded(reason, step);
}

class GuardedReader : public ImageReader {
 public:
  explicit GuardedReader(std::unique_ptr<ImageReader> reader) : reader_(std::move(reader)) { info_ = reader_->info(); }
  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    return silently(reason, [&] { return reader_->readPixels(pixels, rowBytes, reason); });
  }

 private:
  std::unique_ptr<ImageReader> reader_;
};

class GeneralModule : public ImageFileModule, public DrawingModule {
 public:
  GeneralModule() {
    OIIO::attribute("debug", 0);             // no remarks on standard error: failures have a reason
    OIIO::attribute("tiff:multithread", 0);  // tiles that are inflated side by side fail without a word
    OIIO::attribute("threads", 1);
    OIIO::attribute("exr_threads", -1);
  }

  std::unique_ptr<ImageReader> open(const ReadRequest& request, bool*, std::string* reason) override {
    return silently(reason, [&]() -> std::unique_ptr<ImageReader> {
      auto reader = openImage(request, reason);
      return reader ? std::make_unique<GuardedReader>(std::move(reader)) : nullptr;
    });
  }
  bool write(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) override {
    return silently(reason, [&] { return writeImage(request, rows, output, reason); });
  }

  bool drawText(const DrawingSurface& surface, int x, int baseline, const std::string& text, const TextStyle& style,
                std::string* reason) override {
    return silently(reason, [&] { return drawTextInImage(surface, x, baseline, text, style, reason); });
  }
  int textWidth(const std::string& text, const TextStyle& style) override {
    int width = -1;
    silently(nullptr, [&] {
      width = widthOfText(text, style);
      return true;
    });
    return width;
  }
};

GeneralModule& theModule() {
  static GeneralModule module;
  return module;
}

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::ImageFileModule* VortoImageFileModule();
host::ImageFileModule* VortoImageFileModule() {
  return &host::theModule();
}

extern "C" TARN_EXPORT host::DrawingModule* VortoDrawingModule();
host::DrawingModule* VortoDrawingModule() {
  return &host::theModule();
}
