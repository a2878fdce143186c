// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Files/FrameStream.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Processes/Message.h"
#include "Host/Rendering/RenderPlan.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace host {

// What a coordinator and its workers say to each other. Every function that takes one out of a message throws Failure
// for what cannot be one.

// First of all: what is true of all frames.
struct WorkerHello {
  std::uint32_t slots = 0;                             // that the worker was given
  std::vector<std::shared_ptr<const ClipInfo>> clips;  // by input; null where one is no clip
  PlannedFrame first;                                  // of the plan, which decides for all
  bool isInputKept = false;                            // the standard input, which was given to the worker
};

// A frame to render.
struct FrameTask {
  PlannedFrame frame;
  std::vector<std::uint32_t> slots;  // by input: where the frame of a clip lies; 0 where there is none
  std::uint32_t outputSlot = 0;      // where it goes, unless it goes into a file of its own
  std::optional<Channels> channels;  // that it is to have, where the first frame decided it
  bool isFirst = false;              // of those that are rendered: says what files do not keep
};

// What was put into a task's slot.
struct StoredFrame {
  StreamFrame stream;          // for the standard output
  Depth depth = Depth::Bits8;  // for a clip, with the next
  FileMetadata metadata;
};

struct FailureReport {
  ExitCode code = ExitCode::Unexpected;
  std::string message;
};

// What became of a task.
struct FrameResult {
  std::uint64_t index = 0;
  std::vector<Remark> remarks;  // in the order in which they were made
  std::uint64_t clippedPixels = 0;
  std::string clippedSpace;  // the color space outside of which they lay
  StoredFrame stored;
  std::optional<FailureReport> failure;
};

// What a worker is told. After the end it ends by itself.
struct WorkerEnd {};
using WorkerOrder = std::variant<WorkerHello, FrameTask, WorkerEnd>;

Bytes messageOf(const WorkerOrder& order);
WorkerOrder takeOrder(const Bytes& message);
Bytes messageOf(const FrameResult& result);
FrameResult takeResult(const Bytes& message);

}  // namespace host
