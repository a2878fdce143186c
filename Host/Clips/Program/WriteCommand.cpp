// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ClipEncoding.h"
#include "Host/Clips/Program/Commands.h"
#include "Host/Clips/Program/SignOfLife.h"
#include "Host/Clips/WriterMessages.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Signals.h"
#include "Host/Processes/ChildProcess.h"

#include <cstdlib>
#include <new>

namespace host {
namespace {

MessageWriter report(WriterReport kind) {
  MessageWriter message;
  message.value(kind);
  return message;
}

void writeClip(MessageSocket& socket, MessageReader& opening) {
  const ClipTarget target = takeClipTarget(opening);
  FrameSlots slots(kFirstInherited, opening.value<std::uint64_t>());
  SignOfLife life(socket, report(WriterReport::Working));
  ClipEncoding clip(target, [&] { life.goesOn(); });
  socket.send(report(WriterReport::Ready).message());
  for (Bytes bytes; socket.receive(&bytes);) {
    MessageReader message(bytes);
    if (message.value<WriterOrder>() == WriterOrder::Finish) {
      clip.finish(message.value<std::int64_t>());
      MessageWriter finished = report(WriterReport::Finished);
      finished.text(clip.remark());
      socket.send(finished.message());
      return;
    }
    const auto slot = message.value<std::uint64_t>();
    const auto time = message.value<std::int64_t>();
    AvFrame frame = clip.frame(slots.kind(slot), slots.pixels(slot));
    MessageWriter taken = report(WriterReport::Written);
    taken.value(slot);
    socket.send(taken.message());
    clip.encode(std::move(frame), time);
  }
}

void serve(MessageSocket& socket) {
  Bytes bytes;
  if (!socket.receive(&bytes)) return;
  MessageReader message(bytes);
  if (message.value<WriterOrder>() == WriterOrder::Open) return writeClip(socket, message);
  const ClipTarget target = takeClipTarget(message);
  if (target.audio) AudioPackets(*target.audio, containerOf(target));
  socket.send(report(WriterReport::Ready).message());
}

int fail(MessageSocket& socket, ExitCode code, const std::string& reason) {
  MessageWriter message = report(WriterReport::Failed);
  message.value(code);
  message.text(reason);
  socket.send(message.message());
  return static_cast<int>(code);
}

}  // namespace

int runWriter() {
  prepareForSignals();
  // Of an encoder that prints on its own.
  ::setenv("SVT_LOG", "0", 1);
  MessageSocket socket(kChildSocket);
  try {
    serve(socket);
    return 0;
  } catch (const Failure& failure) {
    return fail(socket, failure.code, failure.what());
  } catch (const std::bad_alloc&) {
    return fail(socket, ExitCode::Unexpected, "no memory is left to write the clip");
  } catch (const std::exception& failure) {
    return fail(socket, ExitCode::Unexpected, failure.what());
  }
}

}  // namespace host
