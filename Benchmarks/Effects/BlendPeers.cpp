// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"
#include "Benchmarks/Effects/PeerImages.h"

#if VORTO_HAVE_LIBYUV
#include <libyuv.h>
#endif

// What programmers call for a blend mode.

namespace {

#if VORTO_HAVE_PIXMAN
constexpr std::pair<const char*, pixman_op_t> kOperators[] = {
    {"Over", PIXMAN_OP_OVER},
    {"Plus", PIXMAN_OP_ADD},
    {"Multiply", PIXMAN_OP_MULTIPLY},
    {"Screen", PIXMAN_OP_SCREEN},
    {"Overlay", PIXMAN_OP_OVERLAY},
    {"Darken", PIXMAN_OP_DARKEN},
    {"Lighten", PIXMAN_OP_LIGHTEN},
    {"Color Dodge", PIXMAN_OP_COLOR_DODGE},
    {"Color Burn", PIXMAN_OP_COLOR_BURN},
    {"Hard Light", PIXMAN_OP_HARD_LIGHT},
    {"Soft Light", PIXMAN_OP_SOFT_LIGHT},
    {"Difference", PIXMAN_OP_DIFFERENCE},
    {"Exclusion", PIXMAN_OP_EXCLUSION},
    {"Hue", PIXMAN_OP_HSL_HUE},
    {"Saturation", PIXMAN_OP_HSL_SATURATION},
    {"Color", PIXMAN_OP_HSL_COLOR},
    {"Luminosity", PIXMAN_OP_HSL_LUMINOSITY},
};

// The result takes the background's place.
void composite(pixman_op_t operation, const Frames& frames) {
  const PixmanImage from = pixmanImage(*frames.second);
  const PixmanImage to = pixmanImage(*frames.out);
  pixman_image_composite32(operation, from.get(), nullptr, to.get(), 0, 0, 0, 0, 0, 0,
                           static_cast<int>(frames.out->width), static_cast<int>(frames.out->height));
}
#endif

#if VORTO_HAVE_LIBYUV
void yuvAdd(const Frames& frames) {
  const int width = static_cast<int>(frames.out->width);
  libyuv::ARGBAdd(frames.second->data, width * 4, frames.first->data, width * 4, frames.out->data, width * 4, width,
                  static_cast<int>(frames.out->height));
}
#endif

#if VORTO_HAVE_OPENCV
using Operation = void (*)(const cv::Mat& a, const cv::Mat& b, cv::Mat& out);
constexpr std::pair<const char*, Operation> kOperations[] = {
    {"Plus", [](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::add(a, b, out); }},
    {"Darken", [](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::min(a, b, out); }},
    {"Lighten", [](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::max(a, b, out); }},
    {"Difference", [](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::absdiff(a, b, out); }},
};
#endif

}  // namespace

std::vector<Peer> blendPeersOf(const std::string& effect, std::uint32_t formatCode) {
  const bool bytes = formatCode == VortoPixelFormat::RGBA8;
  std::vector<Peer> peers;
#if VORTO_HAVE_PIXMAN
  for (const auto& [name, operation] : kOperators) {
    if (!bytes || effect != name) continue;
    peers.push_back({"pixman, in place", [op = operation](const Frames& frames) { composite(op, frames); }});
  }
#endif
#if VORTO_HAVE_LIBYUV
  if (bytes && effect == "Plus") peers.push_back({"libyuv", yuvAdd});
#endif
#if VORTO_HAVE_OPENCV
  for (const auto& [name, operation] : kOperations) {
    if (effect != name) continue;
    peers.push_back({"OpenCV, alpha alike", [call = operation](const Frames& frames) {
                       cv::Mat out = matrixOf(*frames.out);
                       call(matrixOf(*frames.first), matrixOf(*frames.second), out);
                     }});
  }
#endif
  return peers;
}
