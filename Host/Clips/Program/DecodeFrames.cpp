// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/DecodeFrames.h"

#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/OpenInput.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace host {
namespace {

// A key frame that is nearer than this is decoded towards, not sought.
constexpr std::int64_t kNear = 16;

// Pictures larger than this are decoded one at a time: every thread would hold some of them.
constexpr std::int64_t kLargePicture = std::int64_t{40} << 20;

// Of a codec that fails without an end.
constexpr int kMostErrors = 10000;

// Alpha of VP8 and VP9 is beside the picture, where not every decoder sees it.
const AVCodec* decoderOf(const AVStream& stream) {
  const AVDictionaryEntry* alpha = av_dict_get(stream.metadata, "alpha_mode", nullptr, 0);
  if (alpha && std::strcmp(alpha->value, "1") == 0) {
    const AVCodecID codec = stream.codecpar->codec_id;
    const char* name = codec == AV_CODEC_ID_VP9 ? "libvpx-vp9" : codec == AV_CODEC_ID_VP8 ? "libvpx" : "";
    if (const AVCodec* found = avcodec_find_decoder_by_name(name)) return found;
  }
  return avcodec_find_decoder(stream.codecpar->codec_id);
}

}  // namespace

FrameDecoder::FrameDecoder(const std::string& path, AvInput input, int stream)
    : path_(path), input_(std::move(input)), streamIndex_(stream), packet_(newPacket()) {
  last_.frame = newFrame();
  next_.frame = newFrame();
  openCodec();
}

void FrameDecoder::openCodec() {
  const AVCodecParameters& parameters = *stream().codecpar;
  const AVCodec* decoder = decoderOf(stream());
  if (!decoder) {
    throw Failure(ExitCode::Input, std::string("nothing decodes its codec, ") + avcodec_get_name(parameters.codec_id));
  }
  codec_.reset(avcodec_alloc_context3(decoder));
  if (!codec_ || avcodec_parameters_to_context(codec_.get(), &parameters) < 0) throw std::bad_alloc();
  codec_->pkt_timebase = stream().time_base;
  codec_->thread_count = 0;
  // Four samples of 8 bits a pixel; of deeper ones the readers look at the size themselves.
  codec_->max_pixels = (std::int64_t{1} << 30) - 1;
  if (std::int64_t{parameters.width} * parameters.height > kLargePicture) codec_->thread_type = FF_THREAD_SLICE;
  const LoggedError logged;
  if (const int error = avcodec_open2(codec_.get(), decoder, nullptr); error < 0) {
    throw Failure(ExitCode::Input, logged.reason(error));
  }
}

void FrameDecoder::begin(const std::function<void()>& goesOn) {
  index_ = indexPackets(*input_, stream(), goesOn);
  rewind();
  const std::int64_t first = firstPlace();
  index_.times.erase(index_.times.begin(), index_.times.begin() + first);
  last_.place -= first;
  if (first > 0) {
    const std::string cut =
        "its first " + (first > 1 ? std::to_string(first) + " frames" : "frame") + " cannot be decoded";
    index_.remark = cut + (index_.remark.empty() ? "" : "; " + index_.remark);
  }
}

std::int64_t FrameDecoder::firstPlace() {
  const LoggedError logged;
  if (!decodeNext()) {
    const std::string reason = logged.reason(AVERROR_INVALIDDATA);
    throw Failure(ExitCode::Input, "none of its frames can be decoded: " + reason);
  }
  std::swap(last_, next_);
  return index_.isCounted ? 0 : last_.place;
}

void FrameDecoder::reopen() {
  input_ = openInput(path_);
  if (streamIndex_ >= static_cast<int>(input_->nb_streams)) {
    throw Failure(ExitCode::Input, "it changed while it was read");
  }
}

// Before the first frame that can be decoded.
void FrameDecoder::rewind() {
  if (!index_.keys.empty() && seekTo(index_.keys.front())) return;
  forget();
  reopen();
}

// What was decoded, and what the codec holds.
void FrameDecoder::forget() {
  avcodec_flush_buffers(codec_.get());
  av_packet_unref(packet_.get());
  isPacketHeld_ = isDrained_ = hasErrors_ = false;
  errors_ = 0;
  counted_ = 0;
  for (Placed* placed : {&last_, &next_}) {
    av_frame_unref(placed->frame.get());
    placed->place = -1;
  }
}

// Goes on behind what was sought to the key packet itself, as containers know places only roughly.
bool FrameDecoder::findPacket(const KeyPacket& key) {
  while (readPacket()) {
    if ((packet_->flags & AV_PKT_FLAG_KEY) != 0 && packet_->pts == key.time) return true;
    const bool isBeyond = key.order != AV_NOPTS_VALUE && packet_->dts != AV_NOPTS_VALUE && packet_->dts > key.order;
    av_packet_unref(packet_.get());
    isPacketHeld_ = false;
    if (isBeyond) return false;
  }
  return false;
}

// Containers seek by either time, some to what is behind it.
bool FrameDecoder::seekTo(const KeyPacket& key) {
  const std::int64_t second = av_rescale_q(1, {1, 1}, stream().time_base);
  const std::int64_t order = key.order != AV_NOPTS_VALUE ? key.order : key.time;
  for (const std::int64_t time : {key.time, order, order - second}) {
    forget();
    if (av_seek_frame(input_.get(), streamIndex_, time, AVSEEK_FLAG_BACKWARD) >= 0 && findPacket(key)) return true;
  }
  return false;
}

// Reads a packet of the stream; its time becomes that of its frame.
bool FrameDecoder::readPacket() {
  while (av_read_frame(input_.get(), packet_.get()) >= 0) {
    if (packet_->stream_index == streamIndex_) {
      packet_->pts = frameTime(*packet_);
      isPacketHeld_ = true;
      return true;
    }
    av_packet_unref(packet_.get());
  }
  return false;
}

void FrameDecoder::sendNext() {
  if (!isPacketHeld_ && !readPacket()) {
    isDrained_ = true;
    avcodec_send_packet(codec_.get(), nullptr);
    return;
  }
  const int error = avcodec_send_packet(codec_.get(), packet_.get());
  if (error == AVERROR(EAGAIN)) return;
  if (error < 0) hasErrors_ = true;
  av_packet_unref(packet_.get());
  isPacketHeld_ = false;
}

// A frame from the codec, as next_. False at the end.
bool FrameDecoder::receiveNext() {
  for (;;) {
    const int error = avcodec_receive_frame(codec_.get(), next_.frame.get());
    if (error >= 0) {
      errors_ = 0;
      return true;
    }
    if (error == AVERROR_EOF || (isDrained_ && error == AVERROR(EAGAIN))) return false;
    if (error != AVERROR(EAGAIN)) {
      hasErrors_ = true;
      if (++errors_ > kMostErrors) return false;
    }
    if (!isDrained_) sendNext();
  }
}

std::int64_t FrameDecoder::placeOf(const AVFrame& frame) {
  if (index_.isCounted) return counted_++;
  const std::int64_t time = frame.pts != AV_NOPTS_VALUE ? frame.pts : frame.best_effort_timestamp;
  const auto found = std::ranges::lower_bound(index_.times, time);
  return found != index_.times.end() && *found == time ? found - index_.times.begin() : -1;
}

// The next frame that has a place, as next_. False at the end.
bool FrameDecoder::decodeNext() {
  while (receiveNext()) {
    next_.place = placeOf(*next_.frame);
    if (next_.place <= last_.place || next_.place >= static_cast<std::int64_t>(index_.times.size())) continue;
    next_.isDamaged = next_.frame->decode_error_flags != 0 || (next_.frame->flags & AV_FRAME_FLAG_CORRUPT) != 0;
    return true;
  }
  next_.place = -1;
  return false;
}

// Whether decoding on is the way to a place.
bool FrameDecoder::isNear(std::int64_t place) const {
  if (place < last_.place || last_.place < 0) return false;
  if (index_.isCounted || place - last_.place <= kNear) return true;
  const auto key = std::ranges::upper_bound(index_.keys, index_.times[place], {}, &KeyPacket::time);
  return key == index_.keys.begin() || std::prev(key)->time <= index_.times[last_.place + kNear];
}

// Makes last_ the frame at a place or, where that is missing, the one before it. False when it is not there itself.
bool FrameDecoder::decodeUpTo(std::int64_t place) {
  while (last_.place < place) {
    if (next_.place < 0 && !decodeNext()) return false;
    if (next_.place > place) return false;
    std::swap(last_, next_);
    next_.place = -1;
    hasErrors_ = false;
  }
  return last_.place == place;
}

// Whether decoding from a key packet on begins with its frame, or one that is shown before it. It does not where the
// picture is refreshed little by little.
bool FrameDecoder::startsWith(const KeyPacket& key) {
  if (!seekTo(key) || !decodeNext()) return false;
  const std::int64_t time = index_.times[next_.place];
  const AVPictureType type = next_.frame->pict_type;
  return time < key.time || (time == key.time && type != AV_PICTURE_TYPE_P && type != AV_PICTURE_TYPE_B);
}

bool FrameDecoder::seekAndDecode(std::int64_t place) {
  auto key = std::ranges::upper_bound(index_.keys, index_.times[place], {}, &KeyPacket::time);
  // Where the nearest key frame does not lead there whole, one before it may.
  for (int tries = 0; tries < 3 && key != index_.keys.begin(); ++tries) {
    --key;
    if (startsWith(*key) && decodeUpTo(place) && !last_.isDamaged) return true;
  }
  rewind();
  return decodeUpTo(place);
}

FrameDecoder::Decoded FrameDecoder::frame(std::size_t place) {
  const auto wanted = static_cast<std::int64_t>(place);
  const bool isThere = isNear(wanted) ? decodeUpTo(wanted) : seekAndDecode(wanted);
  if (last_.place < 0) throw Failure(ExitCode::Input, "it cannot be decoded");
  return {last_.frame.get(), isThere ? last_.isDamaged : hasErrors_ || isDrained_};
}

}  // namespace host
