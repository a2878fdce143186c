// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/EncoderSetup.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Messages/Failure.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>

namespace host {
namespace {

using Options = std::map<std::string, std::string>;

// An encoder by the library's name, with its options.
struct Encoder {
  std::string name;
  Options options;
};

std::string text(double value) {
  return std::to_string(static_cast<int>(std::lround(value)));
}

std::string qualityText(const ClipCodec& codec, int quality) {
  if (quality < 0) return std::to_string(codec.quality.usual);
  return text(codec.quality.worst + (codec.quality.best - codec.quality.worst) * (quality - 1) / 99);
}

// The quick encoder of AV1 takes 4:2:0 of even sizes from 64 pixels on; the other takes all.
bool takesQuickAv1(const ClipTarget& target, const ClipStorage& storage) {
  const FrameKind& kind = target.kind;
  return storage.sampling == "420" && kind.width >= 64 && kind.height >= 64 && kind.width % 2 == 0 &&
         kind.height % 2 == 0;
}

const char* proresProfile(const ClipStorage& storage, int quality) {
  if (storage.sampling == "444") return quality > 90 ? "4444xq" : "4444";
  if (quality < 0 || quality > 75) return "hq";
  return quality > 50 ? "standard" : quality > 25 ? "lt" : "proxy";
}

const char* dnxhrProfile(const ClipStorage& storage, int quality) {
  if (storage.sampling == "444") return "dnxhr_444";
  if (storage.bits > 8) return "dnxhr_hqx";
  if (quality < 0 || quality > 66) return "dnxhr_hq";
  return quality > 33 ? "dnxhr_sq" : "dnxhr_lb";
}

Encoder encoderOf(const ClipCodec& codec, const ClipTarget& target, const ClipStorage& storage) {
  const std::string name = codec.name;
  const std::string speed = target.settings.speed.empty() ? codec.usualSpeed : target.settings.speed;
  const int quality = target.settings.quality;
  if (name == "h264") return {"libx264", {{"preset", speed}, {"crf", qualityText(codec, quality)}}};
  // It neither prints its settings nor writes them, with its version, into the clip.
  if (name == "hevc") {
    return {"libx265",
            {{"preset", speed}, {"crf", qualityText(codec, quality)}, {"x265-params", "log-level=none:info=0"}}};
  }
  if (name == "vp9") {
    return {"libvpx-vp9",
            {{"deadline", "good"},
             {"cpu-used", speed},
             {"crf", qualityText(codec, quality)},
             {"b", "0"},
             {"row-mt", "1"},
             {"tile-columns", "2"}}};
  }
  if (name == "av1" && takesQuickAv1(target, storage)) {
    return {"libsvtav1", {{"preset", speed}, {"crf", qualityText(codec, quality)}}};
  }
  if (name == "av1") {
    return {"libaom-av1",
            {{"cpu-used", text(std::min(std::atoi(speed.c_str()), 8))},
             {"crf", qualityText(codec, quality)},
             {"b", "0"},
             {"row-mt", "1"}}};
  }
  if (name == "prores") return {"prores_ks", {{"profile", proresProfile(storage, quality)}}};
  if (name == "dnxhr") return {"dnxhd", {{"profile", dnxhrProfile(storage, quality)}}};
  if (name == "ffv1") {
    Options options = {{"level", "3"}, {"g", "1"}};
    // More parts of large frames, so that many processors have one each.
    if (target.kind.width >= 1280 && target.kind.height >= 720) options["slices"] = "16";
    return {"ffv1", options};
  }
  return {"png", {{"pred", "mixed"}}};
}

AVPixelFormat pixelFormatOf(const ClipCodec& codec, const ClipStorage& storage) {
  const bool isDeep = storage.bits > 8;
  std::string name;
  if (storage.sampling != "rgb") {
    name = std::string(storage.hasAlpha ? "yuva" : "yuv") + storage.sampling + "p";
    if (isDeep) name += std::to_string(storage.bits);
  } else if (codec.name == std::string_view("png")) {
    name = storage.hasAlpha ? (isDeep ? "rgba64be" : "rgba") : (isDeep ? "rgb48be" : "rgb24");
  } else {
    name = storage.hasAlpha ? (isDeep ? "rgba64" : "bgra") : (isDeep ? "rgb48" : "bgr0");
  }
  return av_get_pix_fmt(name.c_str());
}

// Where a decoder finds the chroma samples, of those that say.
AVChromaLocation chromaLocation(const ClipStorage& storage) {
  return storage.sampling == "420" ? AVCHROMA_LOC_CENTER : AVCHROMA_LOC_UNSPECIFIED;
}

void describe(AVCodecContext& context, const ClipTarget& target, const ClipStorage& storage,
              const EncodeColors& colors) {
  context.width = static_cast<int>(target.kind.width);
  context.height = static_cast<int>(target.kind.height);
  context.framerate = avRational(target.rate);
  context.time_base = av_inv_q(context.framerate);
  context.color_primaries = colors.primaries;
  context.color_trc = colors.transfer;
  context.colorspace = colors.matrix;
  context.color_range = colors.range;
  context.chroma_sample_location = chromaLocation(storage);
  if (target.metadata.pixelAspect) context.sample_aspect_ratio = av_d2q(*target.metadata.pixelAspect, 10000);
  context.thread_count = 0;
  context.flags |= AV_CODEC_FLAG_BITEXACT;
}

}  // namespace

AVRational avRational(const Rational& rational) {
  return {rational.numerator, static_cast<int>(rational.denominator)};
}

AvCodec openEncoder(const ClipTarget& target, const ClipContainer& container, const ClipStorage& storage,
                    const EncodeColors& colors, bool hasHeader) {
  const ClipCodec& codec = clipCodecIn(container, target.settings.codec);
  const Encoder encoder = encoderOf(codec, target, storage);
  const auto refuse = [&](const std::string& reason) {
    throw Failure(ExitCode::Output, "cannot write " + target.path + ": " + codec.title + ": " + reason);
  };
  const AVCodec* found = avcodec_find_encoder_by_name(encoder.name.c_str());
  if (!found) refuse("the encoder " + encoder.name + " is not installed");
  AvCodec context(avcodec_alloc_context3(found));
  if (!context) throw std::bad_alloc();
  describe(*context, target, storage, colors);
  context->pix_fmt = pixelFormatOf(codec, storage);
  if (hasHeader) context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;

  AVDictionary* options = nullptr;
  for (const auto& [key, value] : encoder.options) av_dict_set(&options, key.c_str(), value.c_str(), 0);
  const LoggedError logged;
  const int error = avcodec_open2(context.get(), found, &options);
  const AVDictionaryEntry* unknown = av_dict_get(options, "", nullptr, AV_DICT_IGNORE_SUFFIX);
  const std::string leftOver = unknown ? unknown->key : "";
  av_dict_free(&options);
  if (error < 0) refuse(logged.reason(error));
  if (!leftOver.empty()) refuse("the encoder " + encoder.name + " knows no option " + leftOver);
  return context;
}

}  // namespace host
