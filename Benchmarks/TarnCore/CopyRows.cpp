// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

// The operations that fill a bitmap from another one of its size, or from a part of it.

namespace {

using Format = VortoPixelFormat;

std::string named(const std::string& operation, Format::Code to, Format::Code from) {
  if (to == from) return operation + " " + layoutName(from);
  return operation + " " + layoutName(from) + " to " + layoutName(to);
}

Row copying(Task task, const std::string& operation, Format::Code to, Format::Code from,
            void (VortoBitmap::*method)(const VortoBitmap&), bool flipped = false) {
  return {.task = task,
          .name = named(operation, to, from),
          .destination = to,
          .source = from,
          .work = [method](VortoBitmap& destination, VortoBitmap& source) { (destination.*method)(source); },
          .flipped = flipped};
}

Row cropping(Format::Code to, Format::Code from, bool flipped) {
  const auto crop = [flipped](VortoBitmap& destination, VortoBitmap& source) {
    destination.copyWithCropping(source, 240, 120, flipped);
  };
  return {.task = from == Format::YUV8 ? Task::ConvertYUV : Task::Copy,
          .name = named(flipped ? "copyWithCropping flipped" : "copyWithCropping", to, from),
          .destination = to,
          .source = from,
          .work = crop,
          .shape = Shape::Cropped,
          .flipped = flipped};
}

}  // namespace

std::vector<Row> copyRows() {
  std::vector<Row> rows;
  for (const Format::Code code : {Format::RGBA8, Format::RGBA16, Format::RGBAFloat}) {
    rows.push_back(copying(Task::Clone, "clone", code, code, &VortoBitmap::clone));
    rows.push_back(copying(Task::Copy, "copy", code, code, &VortoBitmap::copy));
    rows.push_back(copying(Task::Copy, "copyWithFlip", code, code, &VortoBitmap::copyWithFlip, true));
    rows.push_back(cropping(code, code, false));
    rows.push_back(cropping(code, code, true));
  }
  rows.push_back(
      copying(Task::Reorder, "copyWithSwizzle", Format::RGBA8, Format::ARGB8, &VortoBitmap::copyWithSwizzleARGBToRGBA));
  rows.push_back(
      copying(Task::Reorder, "copyWithSwizzle", Format::ARGB8, Format::RGBA8, &VortoBitmap::copyWithSwizzleRGBToARGB));
  rows.push_back(copying(Task::Reorder, "copyWithFlipAndSwizzle", Format::RGBA8, Format::ARGB8,
                         &VortoBitmap::copyWithFlipAndSwizzleARGBtoRGBA, true));

  rows.push_back(copying(Task::ConvertYUV, "copy", Format::ARGB8, Format::YUV8, &VortoBitmap::copy));
  rows.push_back(copying(Task::ConvertYUV, "copy", Format::YUV8, Format::ARGB8, &VortoBitmap::copy));
  rows.push_back(
      copying(Task::ConvertYUV, "copyWithFlip", Format::ARGB8, Format::YUV8, &VortoBitmap::copyWithFlip, true));
  rows.push_back(cropping(Format::ARGB8, Format::YUV8, false));
  rows.push_back(cropping(Format::ARGB8, Format::YUV8, true));

  rows.push_back({.task = Task::Unpremultiply,
                  .name = "copyWithUnPreMult ARGB8",
                  .destination = Format::ARGB8,
                  .source = Format::ARGB8,
                  .work = [](VortoBitmap& d, VortoBitmap& s) { d.copyWithUnPreMult(s, kBackground); }});
  return rows;
}
