// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/AudioPackets.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/ClipMuxer.h"
#include "Host/Clips/Program/OpenInput.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <limits>
#include <string_view>
#include <utility>

namespace host {
namespace {

constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

// What muxers take that players do not, or write without being able to tell its times.
bool isHeld(const ClipContainer& container, AVCodecID codec) {
  constexpr std::array kInAvi = {AV_CODEC_ID_PCM_S16LE, AV_CODEC_ID_PCM_S24LE, AV_CODEC_ID_PCM_U8,
                                 AV_CODEC_ID_MP2,       AV_CODEC_ID_MP3,       AV_CODEC_ID_AC3};
  if (container.name == std::string_view("AVI")) return std::ranges::count(kInAvi, codec) > 0;
  const AVOutputFormat* format = av_guess_format(muxerName(container), nullptr, nullptr);
  return format && avformat_query_codec(format, codec, FF_COMPLIANCE_NORMAL) == 1;
}

std::string codecTitle(AVCodecID codec) {
  std::string name = avcodec_get_name(codec);
  for (char& c : name) {
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  }
  return name;
}

}  // namespace

std::int64_t firstFrameTime(const AVFormatContext& input) {
  for (unsigned i = 0; i < input.nb_streams; ++i) {
    const AVStream& stream = *input.streams[i];
    const bool isVideo = stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
    if (!isVideo || (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) continue;
    if (stream.start_time != AV_NOPTS_VALUE) return av_rescale_q(stream.start_time, stream.time_base, AV_TIME_BASE_Q);
  }
  return 0;
}

int opusPadding(const AVCodecParameters& codec) {
  if (codec.codec_id != AV_CODEC_ID_OPUS || codec.extradata_size < 12) return 0;
  return codec.extradata[10] + 256 * codec.extradata[11];
}

AudioPackets::AudioPackets(const ClipAudio& audio, const ClipContainer& container)
    : audio_(audio),
      hasEditLists_(container.name == std::string_view("MP4") || container.name == std::string_view("QuickTime")) {
  open();
  chooseTracks(container);
  findBounds();
  read();
  const Packet* first = packet();
  const bool isLate =
      first && first->packet->pts > std::max<std::int64_t>(2 * first->packet->duration, first->unit.den / 10);
  if (isLate && container.name == std::string_view("AVI")) {
    refuse("its audio begins after its video, which AVI cannot say: give --no-audio to leave it out");
  }
}

void AudioPackets::refuse(const std::string& reason) const {
  throw Failure(ExitCode::Input, audio_.path + ": " + reason);
}

void AudioPackets::open() {
  std::error_code ignored;
  const std::filesystem::file_status status = std::filesystem::status(audio_.path, ignored);
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    refuse("its audio cannot be read: it is no regular file");
  }
  try {
    input_ = openInput(audio_.path, Wanted::Audio);
  } catch (const Failure& failure) {
    refuse(std::string("its audio cannot be read: ") + failure.what());
  }
}

void AudioPackets::chooseTracks(const ClipContainer& container) {
  for (unsigned i = 0; i < input_->nb_streams; ++i) {
    AVStream& stream = *input_->streams[i];
    const AVCodecParameters& codec = *stream.codecpar;
    stream.discard = AVDISCARD_ALL;
    if (codec.codec_type != AVMEDIA_TYPE_AUDIO) continue;
    if (!isHeld(container, codec.codec_id)) {
      refuse(std::string(container.name) + " does not hold its " + codecTitle(codec.codec_id) +
             " audio: give --no-audio to leave it out");
    }
    if (codec.sample_rate <= 0) refuse("its audio cannot be read: it states no rate");
    stream.discard = AVDISCARD_DEFAULT;
    Track track;
    track.stream = &stream;
    track.unit = {1, codec.sample_rate};
    tracks_.push_back(std::move(track));
  }
  if (tracks_.empty()) refuse("it has no audio");
}

// Decoders leave out the first samples of some codecs, which a file may place before the start. What else is there only
// edit lists can leave out.
void AudioPackets::findBounds() {
  const double start = static_cast<double>(firstFrameTime(*input_)) / AV_TIME_BASE + audio_.start;
  for (Track& track : tracks_) {
    const double rate = track.unit.den;
    track.start = std::llround(start * rate);
    track.end = audio_.duration ? std::llround(*audio_.duration * rate) : kForever;
    track.earliest = hasEditLists_ ? 0 : -opusPadding(*track.stream->codecpar);
    track.grain = av_rescale_q_rnd(1, track.stream->time_base, track.unit, AV_ROUND_UP);
  }
  // Tracks lie beside each other, though not exactly.
  const auto early = static_cast<std::int64_t>((start - 2) * AV_TIME_BASE);
  if (audio_.start > 2) avformat_seek_file(input_.get(), -1, std::numeric_limits<std::int64_t>::min(), early, early, 0);
}

bool AudioPackets::isOver() const {
  return std::ranges::all_of(tracks_, &Track::isOver);
}

void AudioPackets::next() {
  ready_.pop_front();
  if (ready_.empty()) read();
}

void AudioPackets::read() {
  while (ready_.empty() && !isAtEnd_) {
    AvPacket packet = newPacket();
    const int error = av_read_frame(input_.get(), packet.get());
    isAtEnd_ = error < 0 || isOver();
    if (error < 0 && error != AVERROR_EOF) endAt(avErrorText(error));
    if (isAtEnd_) return;
    const auto track = std::ranges::find(tracks_, input_->streams[packet->stream_index], &Track::stream);
    if (track != tracks_.end()) add(std::move(packet), static_cast<std::size_t>(track - tracks_.begin()));
  }
}

// What has been read before is there.
void AudioPackets::endAt(const std::string& fault) {
  if (!hasPackets_) refuse("its audio cannot be read: " + fault);
  fault_ = fault;
}

std::string AudioPackets::remark() const {
  std::string text;
  if (damaged_ > 0) {
    text = std::to_string(damaged_) + (damaged_ == 1 ? " packet of its audio is" : " packets of its audio are") +
           " damaged and left out";
  }
  if (!fault_.empty()) text += (text.empty() ? "" : "; ") + ("its audio cannot be read to its end: " + fault_);
  return text.empty() ? "" : audio_.path + ": " + text;
}

void AudioPackets::add(AvPacket packet, std::size_t index) {
  Track& track = tracks_[index];
  const AVRational from = track.stream->time_base;
  const std::int64_t time = packet->pts != AV_NOPTS_VALUE ? packet->pts : packet->dts;
  const bool isTimed = time != AV_NOPTS_VALUE;
  if (!isTimed && !hasPackets_) refuse("its audio cannot be copied: packets have no times");
  hasPackets_ = true;
  if (!isTimed || (packet->flags & AV_PKT_FLAG_CORRUPT) != 0) return leaveOut();
  // The file's unit may be coarser than a sample: packets that follow each other keep doing so.
  const auto samples = static_cast<int>(av_rescale_q(packet->duration, from, track.unit));
  const std::int64_t placed = samples > 0 ? av_rescale_delta(from, time, track.unit, samples, &track.last, track.unit)
                                          : av_rescale_q(time, from, track.unit);
  packet->pts = packet->dts = placed - track.start;
  packet->duration = samples;
  if (packet->pts >= track.end) {
    track.isOver = true;
    return;
  }
  const std::int64_t early = track.earliest - packet->pts;
  if (early > 0 && early < track.grain) packet->pts = packet->dts = track.earliest;
  if (packet->pts < track.earliest) {
    if (hasEditLists_) track.before = std::move(packet);
    return;
  }
  if (AvPacket before = std::move(track.before); before && before->pts + before->duration >= -1) {
    ready_.push_back({std::move(before), index, track.unit});
  }
  ready_.push_back({std::move(packet), index, track.unit});
}

}  // namespace host
