// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"
#include "TarnCore/TCHash128.h"

// Output conversions, the life of a bitmap that comes and goes with every frame, and the fingerprint.

namespace {

using Format = VortoPixelFormat;

struct Output {
  const char* name;
  bool unpremultiply, opaque, alphaToGray;
};

Row copyingOutput(const Output& output) {
  const auto convert = [output](VortoBitmap& destination, VortoBitmap& source) {
    destination.copyWithOutputConversion(source, output.unpremultiply, output.opaque, output.alphaToGray, kBackground);
  };
  return {.task = Task::Other,
          .name = std::string("copyWithOutputConversion ") + output.name,
          .destination = Format::ARGB8,
          .source = Format::ARGB8,
          .work = convert};
}

Row outputInPlace(const Output& output) {
  const auto convert = [output](VortoBitmap& bitmap, VortoBitmap&) {
    bitmap.doOutputConversion(output.unpremultiply, output.opaque, output.alphaToGray, kBackground);
  };
  return {.task = Task::Other,
          .name = std::string("doOutputConversion ") + output.name,
          .destination = Format::ARGB8,
          .source = Format::ARGB8,
          .work = convert,
          .inPlace = true};
}

void makeTouchRelease(VortoBitmap& like, VortoBitmap&) {
  constexpr std::size_t kPage = 4096;
  const std::unique_ptr<VortoBitmap> bitmap(TCCreateBitmap(like.width, like.height, like.formatCode));
  for (std::size_t i = 0; i < bitmap->accessibleBytes(); i += kPage) bitmap->data[i] = 1;
}

void fingerprint(VortoBitmap& bitmap, VortoBitmap&) {
  VortoHash128 hash(bitmap.data, bitmap.getSize());
  bitmap.data[0] = static_cast<std::uint8_t>(hash.words[0]);
}

}  // namespace

std::vector<Row> wholeRows() {
  std::vector<Row> rows;
  for (const Output& output :
       {Output{"opaque", false, true, false}, Output{"gray", false, false, true},
        Output{"unpremultiplied", true, false, false}, Output{"unpremultiplied, opaque", true, true, false},
        Output{"unpremultiplied, gray", true, false, true}}) {
    rows.push_back(copyingOutput(output));
    rows.push_back(outputInPlace(output));
  }
  rows.push_back({.task = Task::Lifecycle,
                  .name = "bitmap made, touched, released",
                  .destination = Format::RGBA8,
                  .source = Format::RGBA8,
                  .work = makeTouchRelease,
                  .inPlace = true,
                  .frameReads = 0});
  rows.push_back({.task = Task::Fingerprint,
                  .name = "VortoHash128",
                  .destination = Format::RGBA8,
                  .source = Format::RGBA8,
                  .work = fingerprint,
                  .inPlace = true,
                  .frameWrites = 0});
  return rows;
}
