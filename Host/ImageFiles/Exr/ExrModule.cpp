// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrReader.h"
#include "Host/ImageFiles/Exr/ExrWriter.h"
#include "Host/ImageFiles/Guarded.h"
#include "Platform/Visibility.h"

namespace host {
namespace {

class ExrModule : public ImageFileModule {
 public:
  std::unique_ptr<ImageReader> open(const ReadRequest& request, bool* isOtherKind, std::string* reason) override {
    std::unique_ptr<ImageReader> reader;
    *isOtherKind = false;
    guarded(reason, [&] {
      reader = exr::openExr(request, reason);
      return reader != nullptr;
    });
    return reader;
  }
  bool write(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) override {
    return guarded(reason, [&] { return exr::writeExr(request, rows, output, reason); });
  }
};

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::ImageFileModule* VortoImageFileModule();
host::ImageFileModule* VortoImageFileModule() {
  static host::ExrModule module;
  return &module;
}
