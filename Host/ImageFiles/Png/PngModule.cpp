// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/Png/Reading.h"
#include "Host/ImageFiles/Png/Writing.h"
#include "Platform/Visibility.h"

namespace host {
namespace {

class PngModule : public ImageFileModule {
 public:
  std::unique_ptr<ImageReader> open(const ReadRequest& request, bool* isOtherKind, std::string* reason) override {
    *isOtherKind = false;
    return guarded(reason, [&] { return openPng(request.file, reason); });
  }
  bool write(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) override {
    return guarded(reason, [&] { return writePng(request, rows, output, reason); });
  }
};

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::ImageFileModule* VortoImageFileModule();
host::ImageFileModule* VortoImageFileModule() {
  static host::PngModule module;
  return &module;
}
