// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"
#include "Benchmarks/Effects/PeerImages.h"

#include <map>

#if VORTO_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

#if VORTO_HAVE_OPENCV
using Call = std::function<void(const cv::Mat& in, cv::Mat& out)>;

// On the channels as they are, premultiplied.
Call blur(double sigma) {
  return
      [sigma](const cv::Mat& in, cv::Mat& out) { cv::GaussianBlur(in, out, {}, sigma, sigma, cv::BORDER_REPLICATE); };
}

// About the middle, 17 degrees clockwise and a tenth larger.
Call turn(int interpolation) {
  return [interpolation](const cv::Mat& in, cv::Mat& out) {
    const cv::Point2f middle(static_cast<float>(in.cols) / 2 - 0.5F, static_cast<float>(in.rows) / 2 - 0.5F);
    cv::warpAffine(in, out, cv::getRotationMatrix2D(middle, -17, 1.1), out.size(), interpolation, cv::BORDER_CONSTANT);
  };
}

// The constants are in the units of the depth; color is taken as it is, premultiplied.
void mixColors(const cv::Mat& in, cv::Mat& out) {
  const float one = in.depth() == CV_8U ? 255 : in.depth() == CV_16U ? 65535 : 1;
  const cv::Mat matrix =
      (cv::Mat_<float>(4, 5) << 1, 0.4F, 0, 0, 0, 0, 1, 0, 0, 0.1F * one, -0.2F, 0, 1, 0, 0, 0, 0, 0, 1, 0);
  cv::transform(in, out, matrix);
}

const std::map<std::string, Call>& calls() {
  static const std::map<std::string, Call> all = {
      {"Invert", [](const cv::Mat& in, cv::Mat& out) { cv::bitwise_not(in, out); }},
      {"Gaussian Blur of 2", blur(2)},
      {"Gaussian Blur of 3", blur(3)},
      {"Gaussian Blur of 10", blur(10)},
      {"Gaussian Blur of 50", blur(50)},
      {"Color Matrix", mixColors},
      {"Transform, nearest", turn(cv::INTER_NEAREST)},
      {"Transform, bilinear", turn(cv::INTER_LINEAR)},
      {"Transform, Lanczos", turn(cv::INTER_LANCZOS4)},
  };
  return all;
}
#endif

}  // namespace

std::vector<Peer> filterPeersOf([[maybe_unused]] const std::string& row, [[maybe_unused]] std::uint32_t formatCode) {
  std::vector<Peer> peers;
#if VORTO_HAVE_OPENCV
  const auto found = calls().find(row);
  const bool isTooLong = row == "Gaussian Blur of 50" && formatCode != VortoPixelFormat::RGBA8;  // seconds a frame
  if (found == calls().end() || isTooLong) return peers;
  peers.push_back({"OpenCV", [call = found->second](const Frames& frames) {
                     cv::Mat out = matrixOf(*frames.out);
                     call(matrixOf(*frames.first), out);
                   }});
#endif
  return peers;
}
