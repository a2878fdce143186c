// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

// The operations that change pixels where they are.

namespace {

using Format = VortoPixelFormat;

Row inPlace(Task task, const std::string& operation, Format::Code code, void (*work)(VortoBitmap&)) {
  const Work onDestination = [work](VortoBitmap& bitmap, VortoBitmap&) { work(bitmap); };
  return {.task = task,
          .name = operation + " " + layoutName(code),
          .destination = code,
          .source = code,
          .work = onDestination,
          .inPlace = true};
}

void unpremultiply(VortoBitmap& bitmap) {
  bitmap.unpremultiply(kBackground);
}

}  // namespace

std::vector<Row> inPlaceRows() {
  constexpr Format::Code kWithAlpha[] = {Format::RGBA8, Format::ARGB8, Format::RGBA16, Format::RGBAHalfFloat,
                                         Format::RGBAFloat};
  std::vector<Row> rows;
  const auto add = [&rows](Task task, const char* name, Format::Code code, void (*work)(VortoBitmap&)) {
    rows.push_back(inPlace(task, name, code, work));
  };
  const auto addToAll = [&](Task task, const char* name, void (*work)(VortoBitmap&)) {
    for (const Format::Code code : kWithAlpha) add(task, name, code, work);
  };
  const auto invert = [](VortoBitmap& b) { b.invertAlpha(); };
  const auto constant = [](VortoBitmap& b) { b.setConstantAlpha(1); };
  addToAll(Task::InvertAlpha, "invertAlpha", invert);
  add(Task::InvertAlpha, "invertAlpha", Format::LuminanceAlpha16, invert);
  addToAll(Task::ConstantAlpha, "setConstantAlpha", constant);
  add(Task::ConstantAlpha, "setConstantAlpha", Format::LuminanceAlpha16, constant);
  addToAll(Task::DuplicateAlpha, "duplicateAlphaToRGB", [](VortoBitmap& b) { b.duplicateAlphaToRGB(); });
  for (const Format::Code code : {Format::RGBA8, Format::ARGB8}) {
    add(Task::Premultiply, "preMult", code, [](VortoBitmap& b) { b.preMult(); });
  }
  addToAll(Task::Unpremultiply, "unpremultiply", unpremultiply);
  rows.push_back(inPlace(Task::Unpremultiply, "unpremultiply mostly opaque", Format::RGBA8, unpremultiply));
  rows.back().mostlyOpaque = true;
  add(Task::Unpremultiply, "unPreMult", Format::ARGB8, [](VortoBitmap& b) { b.unPreMult(); });

  // The layout is put back, so that every call works.
  add(Task::Reorder, "convertToARGB", Format::RGBA8, [](VortoBitmap& b) {
    b.convertToARGB();
    b.formatCode = Format::RGBA8;
  });
  add(Task::Reorder, "convertToRGBA", Format::ARGB8, [](VortoBitmap& b) {
    b.convertToRGBA();
    b.formatCode = Format::ARGB8;
  });
  for (const Format::Code code : {Format::RGBA16, Format::RGBAFloat}) {
    add(Task::Reorder, "convertToARGB", code, [](VortoBitmap& b) { b.convertToARGB(); });
    add(Task::Reorder, "convertToRGBA", code, [](VortoBitmap& b) { b.convertToRGBA(); });
  }
  for (const Format::Code code : {Format::RGBA8, Format::YUV8, Format::RGBA16, Format::RGB16, Format::LuminanceAlpha16,
                                  Format::Luminance16, Format::RGBAFloat}) {
    add(Task::Flip, "flip", code, [](VortoBitmap& b) { b.flip(); });
  }
  return rows;
}
