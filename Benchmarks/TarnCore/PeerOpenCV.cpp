// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

#if VORTO_HAVE_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cfloat>

namespace {

using Format = VortoPixelFormat;

int typeOf(Format::Code code) {
  switch (code) {
    case Format::YUV8:
      return CV_8UC2;
    case Format::RGBA16:
      return CV_16UC4;
    case Format::RGB16:
      return CV_16UC3;
    case Format::LuminanceAlpha16:
      return CV_16UC2;
    case Format::Luminance16:
      return CV_16UC1;
    case Format::RGBAHalfFloat:
      return CV_16FC4;
    case Format::RGBAFloat:
      return CV_32FC4;
    default:
      return CV_8UC4;
  }
}

// The pixels of a bitmap, which stay its own.
cv::Mat matOf(VortoBitmap& bitmap) {
  return cv::Mat(static_cast<int>(bitmap.height), static_cast<int>(bitmap.width), typeOf(bitmap.formatCode),
                 bitmap.data);
}

cv::Mat sourceOf(const Row& row, VortoBitmap& from, const cv::Mat& to) {
  const cv::Mat whole = matOf(from);
  return row.shape == Shape::Cropped ? whole(cv::Rect(240, 120, to.cols, to.rows)) : whole;
}

double largest(int type) {
  switch (CV_MAT_DEPTH(type)) {
    case CV_8U:
      return 255;
    case CV_16U:
      return 65535;
    default:
      return 1;
  }
}

// A value in the place of alpha and another one in the colors'.
cv::Scalar pixel(const Row& row, double color, double alpha) {
  if (row.source == Format::ARGB8) return {alpha, color, color, color};
  if (row.source == Format::LuminanceAlpha16) return {color, alpha};
  return {color, color, color, alpha};
}

Work onOne(std::function<void(cv::Mat&, cv::Mat&)> work) {
  return [work = std::move(work)](VortoBitmap& to, VortoBitmap&) {
    cv::Mat from = matOf(to);
    cv::Mat same = matOf(to);
    work(from, same);
  };
}

Work invertAlpha(const Row& row) {
  if (row.source == Format::RGBAHalfFloat) return nullptr;
  if (row.source == Format::RGBAFloat) {
    return onOne([](cv::Mat& a, cv::Mat& b) { cv::absdiff(a, cv::Scalar(0, 0, 0, 1), b); });  // colors are not negative
  }
  const cv::Scalar mask = pixel(row, 0, largest(typeOf(row.source)));
  return onOne([mask](cv::Mat& a, cv::Mat& b) { cv::bitwise_xor(a, mask, b); });
}

Work constantAlpha(const Row& row) {
  if (row.source == Format::RGBAHalfFloat) return nullptr;
  if (row.source == Format::RGBAFloat) {
    const cv::Scalar least = pixel(row, -FLT_MAX, 1);
    return onOne([least](cv::Mat& a, cv::Mat& b) { cv::max(a, least, b); });  // alpha is not above 1
  }
  const cv::Scalar mask = pixel(row, 0, largest(typeOf(row.source)));
  return onOne([mask](cv::Mat& a, cv::Mat& b) { cv::bitwise_or(a, mask, b); });
}

Work mixing(std::vector<int> pairs) {
  return [pairs = std::move(pairs)](VortoBitmap& to, VortoBitmap& from) {
    const cv::Mat a = matOf(from);
    cv::Mat b = matOf(to);
    cv::mixChannels(&a, 1, &b, 1, pairs.data(), pairs.size() / 2);
  };
}

Work duplicateAlpha(const Row& row) {
  if (row.source == Format::RGBAHalfFloat) return nullptr;
  if (row.source == Format::ARGB8) return mixing({0, 1, 0, 2, 0, 3});
  return mixing({3, 0, 3, 1, 3, 2});
}

Work reorder(const Row& row) {
  if (row.flipped || row.inPlace) return nullptr;
  if (row.source == Format::ARGB8) return mixing({1, 0, 2, 1, 3, 2, 0, 3});
  return mixing({3, 0, 0, 1, 1, 2, 2, 3});
}

Work recoloring(const Row& row, int code) {
  if (row.flipped || typeOf(row.source) != CV_8UC4) return nullptr;
  return [code](VortoBitmap& to, VortoBitmap& from) {
    const cv::Mat a = matOf(from);
    cv::Mat b = matOf(to);
    cv::cvtColor(a, b, code);
  };
}

Work copying(const Row& row) {
  return [row](VortoBitmap& to, VortoBitmap& from) {
    cv::Mat b = matOf(to);
    const cv::Mat a = sourceOf(row, from, b);
    if (row.flipped) return cv::flip(a, b, 0);
    a.copyTo(b);
  };
}

Work fromYUV(const Row& row) {
  if (row.flipped || row.source != Format::YUV8) return nullptr;
  return [row](VortoBitmap& to, VortoBitmap& from) {
    cv::Mat b = matOf(to);
    cv::cvtColor(sourceOf(row, from, b), b, cv::COLOR_YUV2BGRA_UYVY);
  };
}

void scale(VortoBitmap& to, VortoBitmap& from) {
  cv::Mat b = matOf(to);
  cv::resize(matOf(from), b, b.size(), 0, 0, cv::INTER_NEAREST);
}

// Halves become floats first; the order of channels is not changed but from RGBA8 to ARGB8.
Work depth(const Row& row) {
  if (row.shape == Shape::Whole && typeOf(row.source) == typeOf(row.destination)) {
    return row.source == row.destination ? copying(row) : reorder(row);
  }
  const auto scaled = std::make_shared<cv::Mat>();
  const auto floats = std::make_shared<cv::Mat>();
  return [scaled, floats](VortoBitmap& to, VortoBitmap& from) {
    cv::Mat b = matOf(to);
    cv::Mat a = matOf(from);
    if (a.size() != b.size()) {
      cv::Mat& out = a.type() == b.type() ? b : *scaled;
      cv::resize(a, out, b.size(), 0, 0, cv::INTER_NEAREST);
      if (a.type() == b.type()) return;
      a = *scaled;
    }
    if (a.depth() == CV_16F && b.depth() != CV_32F) {
      a.convertTo(*floats, CV_32F);
      a = *floats;
    }
    a.convertTo(b, b.type(), largest(b.type()) / largest(a.type()));
  };
}

}  // namespace

Work openCVWork(const Row& row) {
  static const bool oneThread = (cv::setNumThreads(1), true);
  if (!oneThread) return nullptr;
  switch (row.task) {
    case Task::InvertAlpha:
      return invertAlpha(row);
    case Task::ConstantAlpha:
      return constantAlpha(row);
    case Task::DuplicateAlpha:
      return duplicateAlpha(row);
    case Task::Premultiply:
      return recoloring(row, cv::COLOR_RGBA2mRGBA);
    case Task::Unpremultiply:
      return recoloring(row, cv::COLOR_mRGBA2RGBA);
    case Task::Reorder:
      return reorder(row);
    case Task::Flip:
      return onOne([](cv::Mat& a, cv::Mat& b) { cv::flip(a, b, 0); });
    case Task::Clone:
      return [](VortoBitmap&, VortoBitmap& from) { (void)matOf(from).clone(); };
    case Task::Copy:
      return copying(row);
    case Task::ConvertYUV:
      return fromYUV(row);
    case Task::Scale:
      return row.source == row.destination ? scale : Work();
    case Task::ConvertDepth:
      return depth(row);
    default:
      return nullptr;
  }
}

#else
Work openCVWork(const Row&) {
  return nullptr;
}
#endif
