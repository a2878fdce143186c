// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrReader.h"

#include "Host/ImageFiles/Exr/ExrBlocks.h"
#include "Host/ImageFiles/Exr/ExrCodec.h"
#include "Host/ImageFiles/Exr/ExrLayers.h"
#include "Host/ImageFiles/Exr/ExrMetadata.h"
#include "Host/ImageFiles/Exr/PixelPlacement.h"
#include "Host/ImageFiles/Guarded.h"

#include <utility>

namespace host::exr {
namespace {

class ExrReader : public ImageReader {
 public:
  ExrReader(File file, const Selection& selection) : file_(std::move(file)), selection_(selection) {
    info_.width = static_cast<std::uint32_t>(part().display.width());
    info_.height = static_cast<std::uint32_t>(part().display.height());
    info_.sample = SampleType::Float;
    info_.depth = selection.depth;
    info_.channels = selection.kind;
    info_.alpha = hasAlpha(selection.kind) ? AlphaKind::Premultiplied : AlphaKind::None;
    info_.orientation = orientationOf(part());
    info_.metadata = metadataOf(part());
  }

  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    return guarded(reason, [&] {
      PixelPlacement placement(part(), selection_, pixels, rowBytes);
      placement.fillOutside();
      return readBlocks(&placement, reason);
    });
  }

 private:
  const Part& part() const { return file_.parts[selection_.part]; }

  bool readBlocks(PixelPlacement* placement, std::string* reason) {
    Decoder decoder(part());
    const std::uint64_t count = blockCount(part());
    for (std::uint64_t i = 0; i < count; ++i) {
      Block block;
      Words words;
      if (!readBlock(file_, selection_.part, i, &block, reason)) return false;
      if (!meets(block.box, part().display)) continue;
      if (!decoder.decode(block, &words, reason)) return false;
      placement->place(block.box, words);
    }
    return true;
  }

  File file_;
  Selection selection_;
};

}  // namespace

std::unique_ptr<ImageReader> openExr(const ReadRequest& request, std::string* reason) {
  File file;
  Selection selection;
  if (!readHeaders(request.file, &file, reason) || !areBlocksWhole(file, reason) ||
      !selectPicture(file, request.layer, &selection, reason) || !checkUnseen(file.parts[selection.part], reason)) {
    return nullptr;
  }
  return std::make_unique<ExrReader>(std::move(file), selection);
}

}  // namespace host::exr
