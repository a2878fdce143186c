// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/SheetCommand.h"

#include "Host/Commands/Captions.h"
#include "Host/Commands/SheetLayout.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Pixels.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

namespace host {
namespace {

constexpr std::uint8_t kGroundGray = 38;

ImagePixels emptySheet(const SheetLayout& layout) {
  if (layout.width() * layout.height() > kLargestBitmapBytes / 4) {
    throw Failure(ExitCode::Usage, "the sheet would be too large: " + std::to_string(layout.width()) + " x " +
                                       std::to_string(layout.height()) + " pixels");
  }
  ImagePixels sheet;
  sheet.width = static_cast<std::uint32_t>(layout.width());
  sheet.height = static_cast<std::uint32_t>(layout.height());
  allocatePixels(sheet);
  const auto samples = sheet.samples<std::uint8_t>();
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = i % 4 == 3 ? 255 : kGroundGray;
  return sheet;
}

// The picture as premultiplied floats, at most as large as a cell's picture.
ImagePixels fittedPicture(const std::string& path) {
  ImagePixels picture = readImageFile(path);
  premultiply(picture);
  picture = converted(std::move(picture), SampleType::Float);
  const auto [width, height] = SheetLayout::fitted(picture.width, picture.height);
  if (width == picture.width && height == picture.height) return picture;
  ImagePixels smaller;
  smaller.width = width;
  smaller.height = height;
  smaller.sample = SampleType::Float;
  std::string reason;
  if (!imageFiles().resize(picture, &smaller, &reason)) {
    throw Failure(ExitCode::Unexpected, "cannot scale " + path + ": " + reason);
  }
  return smaller;
}

std::uint8_t overGround(float color, float alpha) {
  const float value = color * 255.0f + (1.0f - alpha) * kGroundGray;
  return static_cast<std::uint8_t>(value > 0 ? std::min(value + 0.5f, 255.0f) : 0.0f);  // NaN is 0
}

void place(const ImagePixels& picture, const SheetLayout::Cell& cell, ImagePixels& sheet) {
  const std::size_t left = cell.x + (SheetLayout::PictureWidth - picture.width) / 2;
  const std::size_t top = cell.y + (SheetLayout::PictureHeight - picture.height) / 2;
  const auto from = picture.samples<float>();
  const auto to = sheet.samples<std::uint8_t>();
  for (std::size_t y = 0; y < picture.height; ++y) {
    for (std::size_t x = 0; x < picture.width; ++x) {
      const float* pixel = &from[4 * (y * picture.width + x)];
      std::uint8_t* out = &to[4 * ((top + y) * sheet.width + left + x)];
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
  fileFormatOf(options.output);
  checkOutput(options.output);
  const std::vector<std::string> captions = captionsFor(options);
  const SheetLayout layout(options.files.size(), options.columns);
  ImagePixels sheet = emptySheet(layout);
  Progress progress(options.files.size());
  for (std::size_t i = 0; i < options.files.size(); ++i) {
    const SheetLayout::Cell cell = layout.cell(i);
    place(fittedPicture(options.files[i]), cell, sheet);
    drawCaption(captions[i], cell, sheet);
    progress.finished(i + 1);
  }
  writeImageFile(options.output, std::move(sheet), Depth::Bits8);
}

}  // namespace host
