// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/Tiff/TiffReader.h"
#include "Host/ImageFiles/Tiff/TiffWriter.h"
#include "Platform/Visibility.h"

namespace host {
namespace {

class TiffModule : public ImageFileModule {
 public:
  std::unique_ptr<ImageReader> open(const ReadRequest& request, bool* isOtherKind, std::string* reason) override {
    std::unique_ptr<ImageReader> reader;
    *isOtherKind = false;
    guarded(reason, [&] {
      reader = tiff::openTiff(request, isOtherKind, reason);
      return reader != nullptr;
    });
    return reader;
  }
  bool write(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) override {
    return guarded(reason, [&] { return tiff::writeTiff(request, rows, output, reason); });
  }
};

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::ImageFileModule* VortoImageFileModule();
host::ImageFileModule* VortoImageFileModule() {
  static host::TiffModule module;
  return &module;
}
