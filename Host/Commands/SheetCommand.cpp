// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/SheetCommand.h"

#include "Host/Color/DisplayPicture.h"
#include "Host/Commands/Captions.h"
#include "Host/Commands/SheetLayout.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Resampling.h"
#include "Host/Rendering/ColorFlow.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace host {
namespace {

constexpr std::uint8_t kGroundGray = 38;

MutableBitmapRef emptySheet(const SheetLayout& layout) {
  if (layout.width() * layout.height() > kLargestBitmapBytes / 4) {
    throw Failure(ExitCode::Usage, "the sheet would be too large: " + std::to_string(layout.width()) + " x " +
                                       std::to_string(layout.height()) + " pixels");
  }
  auto sheet = newUnsetBitmap(static_cast<std::uint32_t>(layout.width()), static_cast<std::uint32_t>(layout.height()),
                              VortoPixelFormat::RGBA8, "the sheet");
  const std::size_t bytes = bytesPerRow(*sheet) * sheet->height;
  for (std::size_t i = 0; i < bytes; ++i) sheet->data[i] = i % 4 == 3 ? 255 : kGroundGray;
  return sheet;
}

// The picture as premultiplied floats of sRGB, at most as large as a cell's picture.
BitmapRef fittedPicture(const std::string& path) {
  const BitmapRef picture = readForDisplay(path);
  const auto [width, height] = SheetLayout::fitted(picture->width, picture->height);
  return scaledBitmap(picture, {width, height}, {});
}

std::uint8_t overGround(float color, float alpha) {
  const float value = color * 255.0f + (1.0f - alpha) * kGroundGray;
  return static_cast<std::uint8_t>(value > 0 ? std::min(value + 0.5f, 255.0f) : 0.0f);  // NaN is 0
}

void place(const VortoBitmap& picture, const SheetLayout::Cell& cell, VortoBitmap& sheet) {
  const std::size_t left = cell.x + (SheetLayout::PictureWidth - picture.width) / 2;
  const std::size_t top = cell.y + (SheetLayout::PictureHeight - picture.height) / 2;
  for (std::size_t y = 0; y < picture.height; ++y) {
    const auto* pixel = reinterpret_cast<const float*>(picture.data + y * bytesPerRow(picture));
    std::uint8_t* out = sheet.data + (top + y) * bytesPerRow(sheet) + 4 * left;
    for (std::size_t x = 0; x < picture.width; ++x, pixel += 4, out += 4) {
      for (std::size_t c = 0; c < 3; ++c) out[c] = overGround(pixel[c], pixel[3]);
    }
  }
}

std::vector<std::string> captionsFor(const SheetOptions& options) {
  if (!options.labels.empty() && options.labels.size() != options.files.size()) {
    throw Failure(ExitCode::Usage, std::to_string(options.labels.size()) + " labels were given for " +
                                       std::to_string(options.files.size()) + " pictures");
  }
  std::vector<std::string> captions = options.labels;
  if (captions.empty()) {
    for (const std::string& file : options.files) captions.push_back(std::filesystem::path(file).stem().string());
  }
  return captions;
}

}  // namespace

void runSheet(const SheetOptions& options) {
  const FileFormat format = fileFormatOf(options.output);
  checkOutput(options.output);
  const std::vector<std::string> captions = captionsFor(options);
  const SheetLayout layout(options.files.size(), options.columns);
  const MutableBitmapRef sheet = emptySheet(layout);
  Progress progress(options.files.size());
  for (std::size_t i = 0; i < options.files.size(); ++i) {
    const SheetLayout::Cell cell = layout.cell(i);
    place(*fittedPicture(options.files[i]), cell, *sheet);
    drawCaption(captions[i], cell, *sheet);
    progress.finished(i + 1);
  }
  OutputPicture picture{sheet, Depth::Bits8, Channels::RGB, {}};
  ColorFlow({}).toOutput(picture, format, options.output);
  writePicture(options.output, picture);
}

}  // namespace host
