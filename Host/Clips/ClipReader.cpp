// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipReader.h"

#include "Host/Clips/ReaderMessages.h"
#include "Host/Clips/SecondsText.h"
#include "Host/Messages/Failure.h"

#include <utility>

namespace host {
namespace {

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
}

std::string deathText(ChildProcess& process) {
  return "the decoder's process died of it (" + process.ending() + ")";
}

}  // namespace

ClipReader::ClipReader(const std::string& path, FrameSlots& slots, std::chrono::seconds patience)
    : path_(path),
      slots_(&slots),
      patience_(patience),
      process_(helperProgram("vorto-clips"), {"read"}, slots.descriptors()) {
  MessageWriter request;
  request.text(path);
  request.value(static_cast<std::uint32_t>(slots.count()));
  process_.socket().send(request.message());
  const Bytes told = received("");
  MessageReader message(told);
  const auto kind = message.value<ReaderMessage>();
  if (kind == ReaderMessage::Refused) refuse(path_, message.text());
  if (kind != ReaderMessage::Info) refuse(path_, "the decoder's process tells something else");
  info_ = takeClipInfo(message);
}

// What the process says next. `what` stands before the reason of a failure.
Bytes ClipReader::received(const std::string& what) {
  Bytes message;
  do {
    switch (process_.socket().receive(&message, patience_)) {
      case MessageSocket::Received::Message:
        break;
      case MessageSocket::Received::End:
        refuse(path_, (what.empty() ? "" : what + ": ") + deathText(process_));
      case MessageSocket::Received::Nothing:
        process_.stop();
        refuse(path_, (what.empty() ? "opening it" : what) + " took longer than " +
                          secondsText(static_cast<double>(patience_.count())) + " s");
    }
  } while (MessageReader(message).value<ReaderMessage>() == ReaderMessage::Working);
  return message;
}

void ClipReader::want(std::uint32_t frame, std::size_t slot) {
  wanted_.push_back({frame, slot, false});
  MessageWriter message;
  message.value(frame);
  message.value(static_cast<std::uint32_t>(slot));
  process_.socket().send(message.message());
}

ClipReader::Frame ClipReader::frame() {
  if (wanted_.empty()) throw Failure(ExitCode::Unexpected, "no frame of " + path_ + " is wanted");
  Frame result = wanted_.front();
  wanted_.pop_front();
  const std::string name = "frame " + std::to_string(result.frame);
  const Bytes told = received(name);
  MessageReader message(told);
  const auto kind = message.value<ReaderMessage>();
  const auto frame = message.value<std::uint32_t>();
  const auto slot = message.value<std::uint32_t>();
  const bool isIt = frame == result.frame && slot == result.slot;
  if (isIt && kind == ReaderMessage::NoFrame) refuse(path_, name + ": " + message.text());
  const PictureInfo& picture = info_.picture;
  const FrameKind expected{picture.width, picture.height, picture.sample, Channels::RGBA, picture.alpha};
  if (!isIt || kind != ReaderMessage::Frame || slots_->kind(slot) != expected) {
    refuse(path_, name + ": the decoder's process tells something else");
  }
  result.isDamaged = message.value<std::uint8_t>() != 0;
  return result;
}

}  // namespace host
