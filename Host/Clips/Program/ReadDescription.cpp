// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadDescription.h"

#include "Host/Clips/Program/AudioPackets.h"
#include "Host/Clips/Program/IndexRate.h"
#include "Host/Clips/Program/ReadColors.h"
#include "Host/Clips/Program/ReadOrientation.h"
#include "Host/Clips/Program/ReadPixels.h"
#include "Host/Clips/Program/ReadTimeCode.h"
#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <array>
#include <cmath>
#include <utility>

namespace host {
namespace {

Rational rational(AVRational value) {
  return {value.num, static_cast<std::uint32_t>(value.den)};
}

void addRemark(const std::string& text, std::string* remark) {
  if (!text.empty()) *remark += (remark->empty() ? "" : "; ") + text;
}

// As people call it, with the profile where that tells codecs apart.
std::string codecName(const AVCodecParameters& parameters) {
  constexpr std::pair<AVCodecID, const char*> kNames[] = {
      {AV_CODEC_ID_H264, "H.264"},   {AV_CODEC_ID_HEVC, "HEVC"},         {AV_CODEC_ID_VP8, "VP8"},
      {AV_CODEC_ID_VP9, "VP9"},      {AV_CODEC_ID_AV1, "AV1"},           {AV_CODEC_ID_FFV1, "FFV1"},
      {AV_CODEC_ID_MPEG4, "MPEG-4"}, {AV_CODEC_ID_MPEG2VIDEO, "MPEG-2"}, {AV_CODEC_ID_MPEG1VIDEO, "MPEG-1"},
      {AV_CODEC_ID_PNG, "PNG"},      {AV_CODEC_ID_MJPEG, "Motion JPEG"}, {AV_CODEC_ID_DVVIDEO, "DV"},
      {AV_CODEC_ID_RAWVIDEO, "raw"}};
  const char* profile = avcodec_profile_name(parameters.codec_id, parameters.profile);
  if (parameters.codec_id == AV_CODEC_ID_PRORES) {
    const bool is422 = profile && profile[0] != '4' && profile[0] != 'X';
    return std::string("ProRes") + (is422 ? " 422 " : " ") + (profile ? profile : "");
  }
  if (parameters.codec_id == AV_CODEC_ID_DNXHD) return profile ? profile : "DNxHD";
  for (const auto& [id, name] : kNames) {
    if (id == parameters.codec_id) return name;
  }
  const AVCodecDescriptor* descriptor = avcodec_descriptor_get(parameters.codec_id);
  return descriptor && descriptor->long_name ? descriptor->long_name : avcodec_get_name(parameters.codec_id);
}

bool hasStream(const AVFormatContext& input, AVMediaType type) {
  for (unsigned i = 0; i < input.nb_streams; ++i) {
    if (input.streams[i]->codecpar->codec_type == type) return true;
  }
  return false;
}

std::optional<double> pixelAspect(const FrameDecoder& decoder, const AVFrame& first, bool isTurned) {
  AVRational aspect = av_guess_sample_aspect_ratio(const_cast<AVFormatContext*>(&decoder.input()), &decoder.stream(),
                                                   const_cast<AVFrame*>(&first));
  if (isTurned) std::swap(aspect.num, aspect.den);
  if (aspect.num <= 0 || aspect.den <= 0 || aspect.num == aspect.den) return std::nullopt;
  return av_q2d(aspect);
}

// Audio lies beside what the file says, of which the first frames may be left out.
double delayOf(const FrameDecoder& decoder) {
  const PacketIndex& index = decoder.index();
  if (index.isCounted) return 0;
  const std::int64_t first = av_rescale_q(index.times.front(), index.timeBase, AV_TIME_BASE_Q);
  return static_cast<double>(first - firstFrameTime(decoder.input())) / AV_TIME_BASE;
}

PictureInfo describedPicture(const FrameDecoder& decoder, const AVFrame& first) {
  const PixelKind kind = pixelKindOf(first);
  const bool isTurned = rowsBecomeColumns(orientationOf(decoder.stream()));
  PictureInfo picture;
  picture.width = static_cast<std::uint32_t>(isTurned ? first.height : first.width);
  picture.height = static_cast<std::uint32_t>(isTurned ? first.width : first.height);
  picture.sample = kind.sample;
  picture.depth = kind.sample == SampleType::UInt8 ? Depth::Bits8 : Depth::Bits16;
  picture.channels = kind.channels;
  picture.alpha = hasAlpha(kind.channels) ? AlphaKind::Straight : AlphaKind::None;
  picture.metadata.color.codePoints = codePointsOf(first);
  picture.metadata.pixelAspect = pixelAspect(decoder, first, isTurned);
  return picture;
}

}  // namespace

ClipInfo describedClip(const FrameDecoder& decoder, const AVFrame& first) {
  const PacketIndex& index = decoder.index();
  const AVStream& stream = decoder.stream();
  const std::array stated = {stream.avg_frame_rate, stream.r_frame_rate};
  const FrameRate rate = frameRateOf(index.times, index.timeBase, stated);
  ClipInfo info;
  info.picture = describedPicture(decoder, first);
  info.rate = rational(rate.rate);
  info.isUneven = rate.isUneven;
  info.timeBase = rational(index.timeBase);
  info.times = index.times;
  info.end = index.end;
  info.delay = delayOf(decoder);
  info.hasAudio = hasStream(decoder.input(), AVMEDIA_TYPE_AUDIO);
  info.codec = codecName(*stream.codecpar);
  info.sampling = av_get_pix_fmt_name(static_cast<AVPixelFormat>(first.format));
  info.picture.metadata.frameRate = info.rate;
  info.picture.metadata.timeCode = timeCodeOf(decoder.input(), stream, rate.rate);
  info.remark = index.remark;
  addRemark(matrixRemark(first), &info.remark);
  if (first.interlaced_frame) addRemark("its frames are interlaced, and read as they are woven", &info.remark);
  return info;
}

}  // namespace host
