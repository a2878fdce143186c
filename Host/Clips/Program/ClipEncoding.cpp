// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ClipEncoding.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/EncoderSetup.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace host {
namespace {

std::optional<AudioPackets> audioOf(const ClipTarget& target, const ClipContainer& container) {
  if (!target.audio) return std::nullopt;
  return AudioPackets(*target.audio, container);
}

}  // namespace

const ClipContainer& containerOf(const ClipTarget& target) {
  const ClipContainer* container = clipContainerNamed(target.container);
  if (!container) throw Failure(ExitCode::Usage, "cannot write " + target.path + ": no clip has that extension");
  return *container;
}

ClipEncoding::ClipEncoding(const ClipTarget& target, const std::function<void()>& goesOn)
    : goesOn_(goesOn),
      target_(target),
      container_(containerOf(target)),
      storage_(clipStorage(container_, target.settings, target.kind, target.bits)),
      colors_(encodeColors(target.metadata.color, storage_)),
      audio_(audioOf(target, container_)),
      muxer_(target_, container_, goesOn_),
      encoder_(openEncoder(target_, container_, storage_, colors_, muxer_.wantsHeader())),
      frames_(target.kind, *encoder_, colors_) {
  muxer_.addVideo(*encoder_);
  for (std::size_t i = 0; audio_ && i < audio_->count(); ++i) muxer_.addAudio(audio_->stream(i));
  muxer_.begin();
}

void ClipEncoding::refuse(const std::string& reason) const {
  throw Failure(ExitCode::Output, "cannot write " + target_.path + ": " + reason);
}

AvFrame ClipEncoding::frame(const FrameKind& kind, const std::byte* pixels) {
  if (!(kind == target_.kind)) refuse("a frame has another size or kind than the clip");
  return frames_.frame(pixels);
}

// A time of frames that come regularly may be rounded to the unit.
void ClipEncoding::checkTime(std::int64_t time) const {
  if (!times_.empty() && time <= times_.back()) refuse("a frame comes before the one that it follows");
  const double regular = static_cast<double>(times_.size()) / av_q2d(avRational(target_.rate));
  const double difference = static_cast<double>(time) - regular / av_q2d(avRational(target_.timeBase));
  if (container_.holdsUneven || std::abs(difference) < 1) return;
  refuse(std::string(container_.name) +
         " holds frames at one rate alone, and these come unevenly: give a .mkv or .mov");
}

void ClipEncoding::encode(AvFrame frame, std::int64_t time) {
  if (times_.empty()) first_ = time;
  checkTime(time - first_);
  frame->pts = static_cast<std::int64_t>(times_.size());
  times_.push_back(time - first_);
  send(frame.get());
  muxReady();
}

void ClipEncoding::send(const AVFrame* frame) {
  const LoggedError logged;
  int error = avcodec_send_frame(encoder_.get(), frame);
  while (error >= 0) {
    AvPacket packet = newPacket();
    error = avcodec_receive_packet(encoder_.get(), packet.get());
    goesOn_();
    if (error >= 0) packets_.push_back(std::move(packet));
  }
  if (error != AVERROR(EAGAIN) && error != AVERROR_EOF) refuse(logged.reason(error));
}

// Encoders see frames at one rate, whatever their times: what they make of a frame depends on frames alone. Decoding
// may be due before the first frame is shown.
std::int64_t ClipEncoding::timeOf(std::int64_t frame) const {
  if (frame >= 0) return times_.at(static_cast<std::size_t>(frame));
  const std::int64_t step = av_rescale_q(1, encoder_->time_base, avRational(target_.timeBase));
  return frame * std::max<std::int64_t>(step, 1);
}

// A packet's duration is known once the next frame's time is.
void ClipEncoding::muxReady() {
  const AVRational unit = avRational(target_.timeBase);
  while (!packets_.empty()) {
    AVPacket& packet = *packets_.front();
    if (packet.pts < 0 || packet.pts + 1 >= static_cast<std::int64_t>(times_.size())) return;
    const std::int64_t decoded = packet.dts == AV_NOPTS_VALUE ? packet.pts : packet.dts;
    packet.duration = timeOf(packet.pts + 1) - timeOf(packet.pts);
    packet.pts = timeOf(packet.pts);
    packet.dts = timeOf(decoded);
    muxAudio(packet.dts);
    muxer_.write(packet, 0, unit);
    packets_.pop_front();
  }
}

void ClipEncoding::muxAudio(std::int64_t until) {
  if (!audio_) return;
  const AVRational unit = avRational(target_.timeBase);
  for (;;) {
    AudioPackets::Packet* next = audio_->packet();
    if (!next || av_compare_ts(next->packet->dts, next->unit, until, unit) >= 0) return;
    if (!muxer_.writeForeign(*next->packet, static_cast<int>(next->track) + 1, next->unit)) audio_->leaveOut();
    audio_->next();
  }
}

void ClipEncoding::finish(std::int64_t end) {
  if (times_.empty()) refuse("there are no frames");
  if (end - first_ <= times_.back()) refuse("it ends before its last frame");
  times_.push_back(end - first_);
  send(nullptr);
  muxReady();
  if (!packets_.empty()) refuse("the encoder lost frames");
  muxAudio(times_.back());
  muxer_.finish();
}

}  // namespace host
