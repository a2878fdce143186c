// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"
#include "Benchmarks/Effects/PeerImages.h"

#include <cstring>

#if VORTO_HAVE_LIBYUV
#include <libyuv.h>
#endif
#if VORTO_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using Format = VortoPixelFormat;
using Work = std::function<void(const Frames&)>;

#if VORTO_HAVE_LIBYUV
using YuvPair = int (*)(const std::uint8_t*, int, const std::uint8_t*, int, std::uint8_t*, int, int, int);

Work yuvPair(YuvPair call) {
  return [call](const Frames& frames) {
    const int width = static_cast<int>(frames.out->width);
    call(frames.second->data, width * 4, frames.first->data, width * 4, frames.out->data, width * 4, width,
         static_cast<int>(frames.out->height));
  };
}

Work yuvInterpolate() {
  return [](const Frames& frames) {
    const int bytes = static_cast<int>(frames.out->width) * 4;
    libyuv::InterpolatePlane(frames.first->data, bytes, frames.second->data, bytes, frames.out->data, bytes, bytes,
                             static_cast<int>(frames.out->height), 95);
  };
}

// In place.
Work yuvTable() {
  return [](const Frames& frames) {
    static std::vector<std::uint8_t> table(256 * 4, 77);
    const int width = static_cast<int>(frames.out->width);
    libyuv::ARGBColorTable(frames.out->data, width * 4, table.data(), 0, 0, width,
                           static_cast<int>(frames.out->height));
  };
}
#endif

#if VORTO_HAVE_OPENCV
template <class Call>
Work openCV(Call call) {
  return [call](const Frames& frames) {
    cv::Mat out = matrixOf(*frames.out);
    call(matrixOf(*frames.first), frames.second ? matrixOf(*frames.second) : cv::Mat(), out);
  };
}

Work openCVMultiply(double one) {
  return openCV([one](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::multiply(a, b, out, 1 / one); });
}

Work openCVMix() {
  return openCV([](const cv::Mat& a, const cv::Mat& b, cv::Mat& out) { cv::addWeighted(a, 0.63, b, 0.37, 0, out); });
}

Work openCVTable() {
  return openCV([](const cv::Mat& a, const cv::Mat&, cv::Mat& out) {
    static const cv::Mat table(1, 256, CV_8UC4, cv::Scalar(1, 2, 3, 4));
    cv::LUT(a, table, out);
  });
}

Work openCVPower() {
  return openCV([](const cv::Mat& a, const cv::Mat&, cv::Mat& out) { cv::pow(a, 0.8333, out); });
}

// The three colors, without their alpha.
Work openCVMap() {
  return openCV([](const cv::Mat& a, const cv::Mat&, cv::Mat&) {
    static const cv::Mat table(1, 256, CV_8UC3, cv::Scalar(1, 2, 3));
    static cv::Mat gray, grays, out;
    cv::cvtColor(a, gray, cv::COLOR_RGBA2GRAY);
    cv::cvtColor(gray, grays, cv::COLOR_GRAY2RGB);
    cv::LUT(grays, table, out);
  });
}
#endif

void add(std::vector<Peer>& peers, const char* name, Work work) {
  peers.push_back({name, std::move(work)});
}

}  // namespace

std::vector<Peer> peersOf(const std::string& effect, std::uint32_t formatCode) {
  const bool bytes = formatCode == Format::RGBA8;
  const bool mixes = effect == "Dissolve" || effect.starts_with("Gradient Wipe") || effect == "Iris";
  std::vector<Peer> peers = blendPeersOf(effect, formatCode);
  if (effect == "Solid Color") {
    add(peers, "memset", [](const Frames& frames) { std::memset(frames.out->data, 77, frames.out->getSize()); });
  }
#if VORTO_HAVE_LIBYUV
  if (bytes && effect == "Over") add(peers, "libyuv", yuvPair(&libyuv::ARGBBlend));
  if (bytes && effect == "Multiply") add(peers, "libyuv, alpha alike", yuvPair(&libyuv::ARGBMultiply));
  if (bytes && mixes) add(peers, "libyuv, one weight", yuvInterpolate());
  if (bytes && effect == "Levels") add(peers, "libyuv table, in place", yuvTable());
#endif
#if VORTO_HAVE_OPENCV
  if (effect == "Multiply") {
    const double one = bytes ? 255 : formatCode == Format::RGBA16 ? 65535 : 1;
    add(peers, "OpenCV, alpha alike", openCVMultiply(one));
  }
  if (mixes) add(peers, "OpenCV, one weight", openCVMix());
  if (bytes && effect == "Levels") add(peers, "OpenCV table", openCVTable());
  if (formatCode == Format::RGBAFloat && effect == "Levels") add(peers, "OpenCV pow alone", openCVPower());
  if (bytes && effect == "Gradient Map") add(peers, "OpenCV, three channels", openCVMap());
#endif
  return peers;
}
