// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadColors.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace host {
namespace {

constexpr int kLinesOfHd = 720;

// Kinds of YUV whose names say that their range is full.
bool isFullRangeKind(int format) {
  constexpr std::array kKinds = {AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_YUVJ440P,
                                 AV_PIX_FMT_YUVJ411P};
  return std::ranges::find(kKinds, format) != kKinds.end();
}

// What a file states, which may be none of the values that the library has names for.
template <class Enum>
int codeOf(const Enum& stated) {
  static_assert(sizeof(Enum) == sizeof(int));
  int code = 0;
  std::memcpy(&code, &stated, sizeof code);
  return code;
}

bool isStated(int code) {
  return code != 0 && code != 2 && code < 256;
}

// With the primaries of 525 or 625 lines where it is known how many there are.
int usualPrimaries(const AVFrame& frame) {
  switch (codingOf(frame).matrix) {
    case AVCOL_SPC_BT470BG:
      return AVCOL_PRI_BT470BG;
    case AVCOL_SPC_SMPTE170M:
      return AVCOL_PRI_SMPTE170M;
    case AVCOL_SPC_SMPTE240M:
      return AVCOL_PRI_SMPTE240M;
    case AVCOL_SPC_BT2020_NCL:
      return AVCOL_PRI_BT2020;
    default:
      return AVCOL_PRI_BT709;
  }
}

// Rec. 601's matrix is the same for both systems; frames without a tag are of one by their height.
AVColorSpace untaggedMatrix(int height) {
  if (height >= kLinesOfHd) return AVCOL_SPC_BT709;
  return height == 576 || height == 288 ? AVCOL_SPC_BT470BG : AVCOL_SPC_SMPTE170M;
}

}  // namespace

bool isRgb(const AVPixFmtDescriptor& layout) {
  return (layout.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0 || layout.nb_components < 3;
}

YuvCoding codingOf(const AVFrame& frame) {
  const bool isFull = codeOf(frame.color_range) == AVCOL_RANGE_JPEG || isFullRangeKind(frame.format);
  switch (codeOf(frame.colorspace)) {
    case AVCOL_SPC_BT709:
    case AVCOL_SPC_FCC:
    case AVCOL_SPC_BT470BG:
    case AVCOL_SPC_SMPTE170M:
    case AVCOL_SPC_SMPTE240M:
    case AVCOL_SPC_BT2020_NCL:
      return {frame.colorspace, isFull};
    case AVCOL_SPC_BT2020_CL:
      return {AVCOL_SPC_BT2020_NCL, isFull};
    default:
      return {untaggedMatrix(frame.height), isFull};
  }
}

std::optional<CodePoints> codePointsOf(const AVFrame& frame) {
  const bool isRgbFrame = isRgb(*av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format)));
  const bool hasPrimaries = isStated(codeOf(frame.color_primaries));
  const bool hasTransfer = isStated(codeOf(frame.color_trc));
  if (isRgbFrame && !hasPrimaries && !hasTransfer) return std::nullopt;
  const int primaries = hasPrimaries ? codeOf(frame.color_primaries)
                        : isRgbFrame ? AVCOL_PRI_BT709
                                     : usualPrimaries(frame);
  const int usualTransfer = isRgbFrame ? AVCOL_TRC_IEC61966_2_1 : AVCOL_TRC_BT709;
  const int transfer = hasTransfer ? codeOf(frame.color_trc) : usualTransfer;
  return CodePoints{static_cast<std::uint8_t>(primaries), static_cast<std::uint8_t>(transfer), 0, true};
}

std::string matrixRemark(const AVFrame& frame) {
  const int code = codeOf(frame.colorspace);
  const bool isKnown = !isStated(code) || code == AVCOL_SPC_BT2020_CL || codingOf(frame).matrix == code;
  if (isKnown || isRgb(*av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format)))) return "";
  const char* name = code < AVCOL_SPC_NB ? av_color_space_name(static_cast<AVColorSpace>(code)) : nullptr;
  return std::string("its matrix, ") + (name ? name : "a reserved one") +
         ", is not known; it is read as if it stated none";
}

}  // namespace host
