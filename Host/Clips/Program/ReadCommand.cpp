// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/Commands.h"
#include "Host/Clips/Program/ReadClip.h"
#include "Host/Clips/Program/SignOfLife.h"
#include "Host/Clips/ReaderMessages.h"
#include "Host/Messages/Failure.h"
#include "Host/Processes/ChildProcess.h"

#include <memory>
#include <string>

namespace host {
namespace {

MessageWriter started(ReaderMessage kind) {
  MessageWriter message;
  message.value(kind);
  return message;
}

// The clip, or null when the other end has been told why there is none.
std::unique_ptr<Clip> openedClip(const std::string& path, MessageSocket& socket) {
  SignOfLife life(socket, started(ReaderMessage::Working));
  try {
    auto clip = std::make_unique<Clip>(path, [&] { life.goesOn(); });
    MessageWriter message = started(ReaderMessage::Info);
    put(message, clip->info());
    socket.send(message.message());
    return clip;
  } catch (const Failure& failure) {
    MessageWriter message = started(ReaderMessage::Refused);
    message.text(failure.what());
    socket.send(message.message());
    return nullptr;
  }
}

MessageWriter readFrame(Clip& clip, FrameSlots& slots, std::uint32_t frame, std::uint32_t slot) {
  try {
    const bool isDamaged = clip.read(frame, slots, slot);
    MessageWriter message = started(ReaderMessage::Frame);
    message.value(frame);
    message.value(slot);
    message.value(static_cast<std::uint8_t>(isDamaged));
    return message;
  } catch (const Failure& failure) {
    MessageWriter message = started(ReaderMessage::NoFrame);
    message.value(frame);
    message.value(slot);
    message.text(failure.what());
    return message;
  }
}

}  // namespace

int runReader() {
  MessageSocket socket(kChildSocket);
  Bytes received;
  if (!socket.receive(&received)) return 0;
  MessageReader request(received);
  const std::string path = request.text();
  FrameSlots slots(kFirstInherited, request.value<std::uint32_t>());
  const std::unique_ptr<Clip> clip = openedClip(path, socket);
  while (clip && socket.receive(&received)) {
    MessageReader wanted(received);
    const auto frame = wanted.value<std::uint32_t>();
    const auto slot = wanted.value<std::uint32_t>();
    if (frame >= clip->info().times.size()) throw Failure(ExitCode::Unexpected, "a frame is wanted that is not there");
    if (!socket.send(readFrame(*clip, slots, frame, slot).message())) return 0;
  }
  return 0;
}

}  // namespace host
