// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/IndexPackets.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/SecondsText.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace host {
namespace {

// More frames than two weeks have at 25 in a second.
constexpr std::size_t kMostFrames = std::size_t{1} << 25;

// Time stamps that leave room for sums and differences.
constexpr std::int64_t kLargestTime = std::int64_t{1} << 60;

bool isUsable(std::int64_t time) {
  return time != AV_NOPTS_VALUE && std::abs(time) < kLargestTime;
}

// What the packets of the clip said, before it is known which of it can be used.
struct Gathered {
  std::vector<std::int64_t> shown;    // times of frames that say when they are shown
  std::vector<std::int64_t> decoded;  // decoding times
  std::vector<KeyPacket> keys;
  std::size_t frames = 0;
  bool isJoined = false;            // times begin again, as of files that were put one behind another
  std::size_t withoutTime = 0;      // frames that do not say when they are shown
  std::int64_t end = INT64_MIN;     // of the frame that is shown last, where packets say how long theirs is
  double lastSecond = 0;            // at which a packet of any stream is over
  std::optional<double> damagedAt;  // the second before which something of the file could not be read, first
  int error = 0;                    // which ended reading
};

// VP8 and VP9 know frames that are only decoded, for others to refer to.
bool isHidden(const AVPacket& packet, AVCodecID codec) {
  if (packet.size < 1) return false;
  const unsigned first = packet.data[0];
  if (codec == AV_CODEC_ID_VP8) return (first & 0x10) == 0;
  if (codec != AV_CODEC_ID_VP9 || (packet.data[packet.size - 1] & 0xE0) == 0xC0) return false;
  const bool isProfile3 = (first & 0x30) == 0x30;
  const unsigned flags = isProfile3 ? first : first >> 1;  // existing frame, no key frame, shown
  return (flags & 4) == 0 && (flags & 1) == 0;
}

void gather(const AVPacket& packet, const AVStream& stream, Gathered* gathered) {
  if (isHidden(packet, stream.codecpar->codec_id)) return;
  const std::int64_t time = frameTime(packet);
  // Decoding can also start with a frame that is not shown, as in front of where an edit list begins.
  if (isUsable(time) && (packet.flags & AV_PKT_FLAG_KEY) != 0) {
    gathered->keys.push_back({time, isUsable(packet.dts) ? packet.dts : AV_NOPTS_VALUE});
  }
  if ((packet.flags & AV_PKT_FLAG_DISCARD) != 0) return;
  const std::int64_t second = av_rescale_q(1, {1, 1}, stream.time_base);
  ++gathered->frames;
  if (!isUsable(packet.pts)) ++gathered->withoutTime;
  if (isUsable(packet.dts)) {
    const bool isFirst = gathered->decoded.empty();
    if (!isFirst && packet.dts < gathered->decoded.back() - second) gathered->isJoined = true;
    gathered->decoded.push_back(packet.dts);
  }
  if (!isUsable(time)) return;
  gathered->shown.push_back(time);
  if (packet.duration > 0 && packet.duration < kLargestTime) {
    gathered->end = std::max(gathered->end, time + packet.duration);
  }
}

void noteEnd(const AVPacket& packet, const AVFormatContext& input, Gathered* gathered) {
  const std::int64_t time = frameTime(packet);
  if (!isUsable(time)) return;
  const std::int64_t end = time + std::clamp<std::int64_t>(packet.duration, 0, kLargestTime);
  const double second = static_cast<double>(end) * av_q2d(input.streams[packet.stream_index]->time_base);
  const double start = isUsable(input.start_time) ? static_cast<double>(input.start_time) / AV_TIME_BASE : 0;
  gathered->lastSecond = std::max(gathered->lastSecond, second - start);
}

Gathered gatherAll(AVFormatContext& input, const AVStream& stream, const std::function<void()>& goesOn) {
  Gathered gathered;
  const LoggedError logged;
  const AvPacket packet = newPacket();
  while ((gathered.error = av_read_frame(&input, packet.get())) >= 0) {
    noteEnd(*packet, input, &gathered);
    const bool isDamaged = (packet->flags & AV_PKT_FLAG_CORRUPT) != 0 || logged.isOfFile();
    if (isDamaged && !gathered.damagedAt) gathered.damagedAt = gathered.lastSecond;
    if (packet->stream_index == stream.index) gather(*packet, stream, &gathered);
    av_packet_unref(packet.get());
    if (gathered.frames > kMostFrames) throw Failure(ExitCode::Input, "it has more frames than can be counted");
    goesOn();
  }
  return gathered;
}

void sortTimes(std::vector<std::int64_t>* times) {
  std::ranges::sort(*times);
  times->erase(std::unique(times->begin(), times->end()), times->end());
}

// Of a codec whose frames come in the order in which they are shown the decoding times do as well.
bool comesInOrder(const AVStream& stream) {
  const AVCodecDescriptor* descriptor = avcodec_descriptor_get(stream.codecpar->codec_id);
  return stream.codecpar->video_delay == 0 || (descriptor && (descriptor->props & AV_CODEC_PROP_INTRA_ONLY) != 0);
}

AVRational nominalRate(const AVStream& stream) {
  for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate}) {
    if (rate.num > 0 && rate.den > 0) return rate;
  }
  return {25, 1};
}

PacketIndex counted(Gathered&& gathered, const AVStream& stream) {
  PacketIndex index;
  index.isCounted = true;
  index.timeBase = stream.time_base;
  index.times = std::move(gathered.decoded);
  sortTimes(&index.times);
  if (index.times.size() == gathered.frames && !gathered.isJoined) return index;
  index.timeBase = av_inv_q(nominalRate(stream));
  index.times.resize(gathered.frames);
  for (std::size_t i = 0; i < index.times.size(); ++i) index.times[i] = static_cast<std::int64_t>(i);
  return index;
}

PacketIndex timed(Gathered&& gathered, const AVStream& stream) {
  PacketIndex index;
  index.timeBase = stream.time_base;
  index.times = std::move(gathered.shown);
  sortTimes(&index.times);
  index.keys = std::move(gathered.keys);
  std::ranges::sort(index.keys, {}, &KeyPacket::time);
  return index;
}

// When the last frame is over: as its packet says, else after as long as frames last on the average.
std::int64_t endOf(const PacketIndex& index, const AVStream& stream, std::int64_t stated) {
  const std::vector<std::int64_t>& times = index.times;
  if (!index.isCounted && stated > times.back()) return stated;
  const double nominal = 1 / (av_q2d(nominalRate(stream)) * av_q2d(index.timeBase));
  const double frames = static_cast<double>(times.size() - 1);
  const double average = frames > 0 ? static_cast<double>(times.back() - times.front()) / frames : nominal;
  return times.back() + std::max<std::int64_t>(1, std::llround(std::min(average, 1e15)));
}

// How long a file says that it is, in seconds; 0 when it does not. That may be the time of its longest stream.
double statedSeconds(const AVFormatContext& input, const AVStream& stream, double frame) {
  // The library corrects the length of an AVI by what is there, not the count of its frames.
  const bool isAvi = std::strcmp(input.iformat->name, "avi") == 0;
  const double counted = isAvi ? static_cast<double>(stream.nb_frames) * frame : 0;
  const bool isStated =
      isUsable(input.duration) && input.duration > 0 && input.duration_estimation_method == AVFMT_DURATION_FROM_STREAM;
  return std::max(counted, isStated ? static_cast<double>(input.duration) / AV_TIME_BASE : 0);
}

// What a file that was cut says is more than it holds.
std::string remarkOn(const Gathered& gathered, const AVFormatContext& input, const AVStream& stream) {
  const double frame = 1 / av_q2d(nominalRate(stream));
  const double stated = statedSeconds(input, stream, frame);
  if (stated > gathered.lastSecond + std::max(2.5 * frame, 0.1)) {
    return "it ends early: it states " + secondsText(stated) + " s and holds " + secondsText(gathered.lastSecond);
  }
  if (gathered.error != AVERROR_EOF) return "it cannot be read to its end: " + avErrorText(gathered.error);
  if (!gathered.damagedAt) return "";
  return "parts of it are damaged, the first before " + secondsText(*gathered.damagedAt) + " s";
}

}  // namespace

std::int64_t frameTime(const AVPacket& packet) {
  return packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
}

PacketIndex indexPackets(AVFormatContext& input, AVStream& stream, const std::function<void()>& goesOn) {
  Gathered gathered = gatherAll(input, stream, goesOn);
  if (gathered.frames == 0) {
    throw Failure(ExitCode::Input, gathered.error == AVERROR_EOF ? "it holds no frame" : avErrorText(gathered.error));
  }
  const bool lacksTimes = gathered.shown.size() < gathered.frames;
  const bool isCounted = gathered.isJoined || lacksTimes || (gathered.withoutTime > 0 && !comesInOrder(stream));
  const std::string remark = remarkOn(gathered, input, stream);
  const std::int64_t stated = gathered.end;
  PacketIndex index = isCounted ? counted(std::move(gathered), stream) : timed(std::move(gathered), stream);
  index.end = endOf(index, stream, stated);
  index.remark = remark;
  return index;
}

}  // namespace host
