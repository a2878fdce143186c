// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

// Scaling by nearest neighbours and conversions of depth.

namespace {

using Format = VortoPixelFormat;

void scale(VortoBitmap& destination, VortoBitmap& source) {
  destination.copyWithScaling(source);
}

void convert(VortoBitmap& destination, VortoBitmap& source) {
  destination.copyWithScalingAndDepthConversion(source);
}

}  // namespace

std::vector<Row> scaleRows() {
  std::vector<Row> rows;
  const auto add = [&rows](Format::Code to, Format::Code from, const char* suffix) {
    rows.push_back({.task = Task::Scale,
                    .name = std::string("copyWithScaling ") + layoutName(from) + suffix,
                    .destination = to,
                    .source = from,
                    .work = scale,
                    .shape = Shape::Scaled});
  };
  for (const Format::Code code : {Format::RGBA8, Format::ARGB8, Format::RGBA16, Format::RGB16, Format::LuminanceAlpha16,
                                  Format::Luminance16, Format::RGBAHalfFloat, Format::RGBAFloat}) {
    add(code, code, "");
  }
  add(Format::ARGB8, Format::YUV8, " to ARGB8");
  return rows;
}

std::vector<Row> depthRows() {
  std::vector<Row> rows;
  for (const Shape shape : {Shape::Whole, Shape::Scaled}) {
    for (const Format::Code to : {Format::ARGB8, Format::RGBA16, Format::RGBAFloat}) {
      for (const Format::Code from :
           {Format::RGBA8, Format::ARGB8, Format::RGBA16, Format::RGBAHalfFloat, Format::RGBAFloat}) {
        rows.push_back({.task = Task::ConvertDepth,
                        .name = std::string(shape == Shape::Scaled ? "scaled " : "") + "depth " + layoutName(from) +
                                " to " + layoutName(to),
                        .destination = to,
                        .source = from,
                        .work = convert,
                        .shape = shape});
      }
    }
  }
  return rows;
}
