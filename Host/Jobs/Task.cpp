// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/Task.h"

#include "Host/Clips/MetadataMessage.h"

#include <type_traits>
#include <utility>

namespace host {
namespace {

enum class OrderKind : std::uint8_t { Hello, Task, End };

[[noreturn]] void refuse() {
  throw Failure(ExitCode::Unexpected, "a helper process sent what nobody understands");
}

bool takeFlag(MessageReader& message) {
  return message.value<std::uint8_t>() != 0;
}

template <class Enum>
Enum takeEnum(MessageReader& message, Enum last) {
  const auto value = message.value<Enum>();
  if (value < Enum{} || value > last) refuse();
  return value;
}

// Every item takes a byte at least, so that a count that is wrong ends with the message and not with the memory.
template <class Item, class Take>
std::vector<Item> takeList(MessageReader& message, Take take) {
  std::vector<Item> items;
  for (auto count = message.value<std::uint64_t>(); count > 0; --count) items.push_back(take(message));
  return items;
}

void put(MessageWriter& message, const std::vector<std::uint32_t>& numbers) {
  message.value<std::uint64_t>(numbers.size());
  for (const std::uint32_t number : numbers) message.value(number);
}

std::vector<std::uint32_t> takeNumbers(MessageReader& message) {
  return takeList<std::uint32_t>(message, [](MessageReader& from) { return from.value<std::uint32_t>(); });
}

void put(MessageWriter& message, const PlannedFrame& frame) {
  message.value(frame.index);
  message.value(frame.number);
  put(message, frame.sources);
  message.value(frame.time);
  message.value(frame.shown);
}

PlannedFrame takePlannedFrame(MessageReader& message) {
  PlannedFrame frame;
  frame.index = message.value<std::uint64_t>();
  frame.number = message.value<std::uint32_t>();
  frame.sources = takeNumbers(message);
  frame.time = message.value<double>();
  frame.shown = message.value<std::int64_t>();
  return frame;
}

void put(MessageWriter& message, const WorkerHello& hello) {
  message.value(OrderKind::Hello);
  message.value(hello.slots);
  message.value<std::uint64_t>(hello.clips.size());
  for (const auto& clip : hello.clips) {
    message.value<std::uint8_t>(clip != nullptr);
    if (clip) put(message, *clip);
  }
  put(message, hello.first);
  message.value<std::uint8_t>(hello.isInputKept);
}

WorkerHello takeHello(MessageReader& message) {
  WorkerHello hello;
  hello.slots = message.value<std::uint32_t>();
  using Clip = std::shared_ptr<const ClipInfo>;
  hello.clips = takeList<Clip>(message, [](MessageReader& from) {
    return takeFlag(from) ? std::make_shared<const ClipInfo>(takeClipInfo(from)) : nullptr;
  });
  hello.first = takePlannedFrame(message);
  hello.isInputKept = takeFlag(message);
  return hello;
}

void put(MessageWriter& message, const FrameTask& task) {
  message.value(OrderKind::Task);
  put(message, task.frame);
  put(message, task.slots);
  message.value(task.outputSlot);
  message.value<std::uint8_t>(task.channels.has_value());
  message.value(task.channels.value_or(Channels{}));
  message.value<std::uint8_t>(task.isFirst);
}

FrameTask takeTask(MessageReader& message) {
  FrameTask task;
  task.frame = takePlannedFrame(message);
  task.slots = takeNumbers(message);
  task.outputSlot = message.value<std::uint32_t>();
  const bool areChannelsTold = takeFlag(message);
  const auto channels = takeEnum(message, Channels::RGBA);
  if (areChannelsTold) task.channels = channels;
  task.isFirst = takeFlag(message);
  return task;
}

void put(MessageWriter& message, const WorkerEnd&) {
  message.value(OrderKind::End);
}

void put(MessageWriter& message, const StoredFrame& stored) {
  message.value(stored.stream.width);
  message.value(stored.stream.height);
  message.value<std::uint8_t>(stored.stream.isDeep);
  message.value(stored.depth);
  put(message, stored.metadata);
}

StoredFrame takeStored(MessageReader& message) {
  StoredFrame stored;
  stored.stream.width = message.value<std::uint32_t>();
  stored.stream.height = message.value<std::uint32_t>();
  stored.stream.isDeep = takeFlag(message);
  stored.depth = takeEnum(message, Depth::Float);
  stored.metadata = takeMetadata(message);
  return stored;
}

Remark takeRemark(MessageReader& message) {
  Remark remark;
  remark.text = message.text();
  remark.about = message.text();
  return remark;
}

}  // namespace

Bytes messageOf(const WorkerOrder& order) {
  MessageWriter message;
  std::visit([&](const auto& each) { put(message, each); }, order);
  return message.message();
}

WorkerOrder takeOrder(const Bytes& bytes) {
  MessageReader message(bytes);
  switch (takeEnum(message, OrderKind::End)) {
    case OrderKind::Hello:
      return takeHello(message);
    case OrderKind::Task:
      return takeTask(message);
    case OrderKind::End:
      break;
  }
  return WorkerEnd();
}

Bytes messageOf(const FrameResult& result) {
  MessageWriter message;
  message.value(result.index);
  message.value<std::uint64_t>(result.remarks.size());
  for (const Remark& remark : result.remarks) {
    message.text(remark.text);
    message.text(remark.about);
  }
  message.value(result.clippedPixels);
  message.text(result.clippedSpace);
  put(message, result.stored);
  message.value<std::uint8_t>(result.failure.has_value());
  if (result.failure) {
    message.value(result.failure->code);
    message.text(result.failure->message);
  }
  return message.message();
}

FrameResult takeResult(const Bytes& bytes) {
  MessageReader message(bytes);
  FrameResult result;
  result.index = message.value<std::uint64_t>();
  result.remarks = takeList<Remark>(message, takeRemark);
  result.clippedPixels = message.value<std::uint64_t>();
  result.clippedSpace = message.text();
  result.stored = takeStored(message);
  if (takeFlag(message)) {
    FailureReport failure;
    failure.code = takeEnum(message, ExitCode::Effect);
    failure.message = message.text();
    result.failure = std::move(failure);
  }
  return result;
}

}  // namespace host
