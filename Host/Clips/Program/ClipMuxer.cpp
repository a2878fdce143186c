// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ClipMuxer.h"

#include "Host/Clips/Program/AudioPackets.h"
#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/EncoderSetup.h"
#include "Host/Clips/TimeCodes.h"
#include "Host/Messages/Failure.h"

#include <new>

namespace host {
const char* muxerName(const ClipContainer& container) {
  const std::string name = container.name;
  if (name == "MP4") return "mp4";
  if (name == "QuickTime") return "mov";
  if (name == "Matroska") return "matroska";
  return name == "WebM" ? "webm" : "avi";
}

ClipMuxer::ClipMuxer(const ClipTarget& target, const ClipContainer& container, const std::function<void()>& goesOn)
    : target_(target), file_(target.path, goesOn) {
  AVFormatContext* context = nullptr;
  check(avformat_alloc_output_context2(&context, nullptr, muxerName(container), nullptr));
  context_.reset(context);
  // No dates, versions or random numbers in the file.
  context->flags |= AVFMT_FLAG_BITEXACT;
  // What comes before 0 decoders leave out.
  context->avoid_negative_ts = 0;
  file_.connect(*context);
}

bool ClipMuxer::wantsHeader() const {
  return (context_->oformat->flags & AVFMT_GLOBALHEADER) != 0;
}

AVStream& ClipMuxer::newStream() {
  AVStream* stream = avformat_new_stream(context_.get(), nullptr);
  if (!stream) throw std::bad_alloc();
  return *stream;
}

void ClipMuxer::addVideo(const AVCodecContext& encoder) {
  AVStream& stream = newStream();
  check(avcodec_parameters_from_context(stream.codecpar, &encoder));
  const std::string muxer = context_->oformat->name;
  // Some players know this one of the two names alone.
  if (encoder.codec_id == AV_CODEC_ID_HEVC && (muxer == "mp4" || muxer == "mov")) {
    stream.codecpar->codec_tag = MKTAG('h', 'v', 'c', '1');
  }
  stream.time_base = muxer == "avi" ? encoder.time_base : avRational(target_.timeBase);
  stream.avg_frame_rate = encoder.framerate;
  stream.r_frame_rate = encoder.framerate;
  stream.sample_aspect_ratio = encoder.sample_aspect_ratio;
  stream.disposition = AV_DISPOSITION_DEFAULT;
  if (target_.metadata.timeCode) {
    av_dict_set(&stream.metadata, "timecode",
                timeCodeText(*target_.metadata.timeCode, av_q2d(avRational(target_.rate))).c_str(), 0);
  }
}

void ClipMuxer::addAudio(const AVStream& source) {
  AVStream& stream = newStream();
  check(avcodec_parameters_copy(stream.codecpar, source.codecpar));
  stream.codecpar->codec_tag = 0;
  stream.codecpar->initial_padding = opusPadding(*source.codecpar);
  stream.time_base = source.time_base;
  stream.disposition = source.disposition;
  for (const char* key : {"language", "title"}) {
    const AVDictionaryEntry* entry = av_dict_get(source.metadata, key, nullptr, 0);
    if (entry) av_dict_set(&stream.metadata, key, entry->value, 0);
  }
}

void ClipMuxer::begin() {
  AVDictionary* options = nullptr;
  // What players need first comes first.
  if (std::string(context_->oformat->name) == "mp4") av_dict_set(&options, "movflags", "+faststart", 0);
  const LoggedError logged;
  const int error = avformat_write_header(context_.get(), &options);
  av_dict_free(&options);
  check(error, error < 0 ? logged.reason(error) : "");
}

// In Matroska times of Opus begin with what decoders leave out, which readers take off; its muxer leaves that to us.
std::int64_t ClipMuxer::delayOf(const AVCodecParameters& codec) const {
  const std::string name = context_->oformat->name;
  return name == "matroska" || name == "webm" ? opusPadding(codec) : 0;
}

int ClipMuxer::put(AVPacket& packet, int stream, AVRational unit) {
  const std::int64_t delay = delayOf(*context_->streams[stream]->codecpar);
  packet.pts += delay;
  packet.dts += delay;
  packet.stream_index = stream;
  av_packet_rescale_ts(&packet, unit, context_->streams[stream]->time_base);
  return av_write_frame(context_.get(), &packet);
}

void ClipMuxer::write(AVPacket& packet, int stream, AVRational unit) {
  const LoggedError logged;
  const int error = put(packet, stream, unit);
  check(error, error < 0 ? logged.reason(error) : "");
  check(context_->pb->error);
}

// Muxers parse audio to rewrite its headers, and take no time twice.
bool ClipMuxer::writeForeign(AVPacket& packet, int stream, AVRational unit) {
  const int error = put(packet, stream, unit);
  check(context_->pb->error);
  if (error == AVERROR_INVALIDDATA || error == AVERROR(EINVAL)) {
    check(0);
    return false;
  }
  check(error);
  return true;
}

void ClipMuxer::finish() {
  const LoggedError logged;
  const int error = av_write_trailer(context_.get());
  check(error, error < 0 ? logged.reason(error) : "");
  avio_flush(context_->pb);
  check(context_->pb->error);
  file_.commit();
}

// That the file could not be written comes first, as all else follows from it.
void ClipMuxer::check(int error, const std::string& logged) {
  if (error >= 0 && file_.fault().empty()) return;
  const std::string reason = !file_.fault().empty() ? file_.fault() : logged.empty() ? avErrorText(error) : logged;
  throw Failure(ExitCode::Output, "cannot write " + target_.path + ": " + reason);
}

}  // namespace host
