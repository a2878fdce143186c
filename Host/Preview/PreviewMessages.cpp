// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewMessages.h"

#include "Host/Clips/MetadataMessage.h"
#include "Host/Preview/BitmapHandover.h"
#include "Host/Preview/PreviewValues.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace host {
namespace {

enum class OrderKind : std::uint8_t { Hello, Inputs, Render, Count, Drop };

void putBitmaps(MessageWriter& message, const std::vector<BitmapRef>& bitmaps, int entries) {
  putList(message, bitmaps, [&](const BitmapRef& bitmap) { putBitmap(message, *bitmap, entries); });
}

std::vector<BitmapRef> takeBitmaps(MessageReader& message, int entries) {
  return takeListOf<BitmapRef>(message, [&] { return takeBitmap(message, entries); });
}

void putOrder(MessageWriter& message, const PreviewHello& hello, int) {
  message.value(OrderKind::Hello);
  put(message, hello.setup);
  putFlag(message, hello.takesInputs);
  message.value(hello.inputBytes);
}

PreviewHello takeHello(MessageReader& message) {
  PreviewHello hello;
  hello.setup = takeSetup(message);
  hello.takesInputs = takeFlag(message);
  hello.inputBytes = message.value<std::uint64_t>();
  return hello;
}

void putOrder(MessageWriter& message, const InputsOrder& order, int) {
  message.value(OrderKind::Inputs);
  message.value(order.id);
  message.value(order.frame);
  put(message, order.size);
}

InputsOrder takeInputsOrder(MessageReader& message) {
  InputsOrder order;
  order.id = message.value<std::uint64_t>();
  order.frame = message.value<std::uint64_t>();
  order.size = takeSize(message);
  return order;
}

void putOrder(MessageWriter& message, const RenderOrder& order, int entries) {
  message.value(OrderKind::Render);
  message.value(order.id);
  message.value(order.frame);
  putFlag(message, order.isAhead);
  putMaybe(message, order.time, [&](double time) { message.value(time); });
  putList(message, order.changed, [&](const ParameterState& state) {
    message.text(state.key);
    message.bytes(state.state);
  });
  putMaybe(message, order.given, [&](const GivenInputs& given) {
    putBitmaps(message, given.bitmaps, entries);
    message.value(given.depth);
    put(message, given.resultSize);
  });
}

RenderOrder takeRenderOrder(MessageReader& message, int entries) {
  RenderOrder order;
  order.id = message.value<std::uint64_t>();
  order.frame = message.value<std::uint64_t>();
  order.isAhead = takeFlag(message);
  order.time = takeMaybe(message, [&] { return message.value<double>(); });
  order.changed = takeListOf<ParameterState>(message, [&] {
    std::string key = message.text();
    return ParameterState{std::move(key), message.bytes()};
  });
  order.given = takeMaybe(message, [&] {
    GivenInputs given;
    given.bitmaps = takeBitmaps(message, entries);
    given.depth = takeEnumUpTo(message, Depth::Float);
    given.resultSize = takeSize(message);
    return given;
  });
  return order;
}

void putOrder(MessageWriter& message, const CountOrder& order, int) {
  message.value(OrderKind::Count);
  message.value(order.id);
}

void putOrder(MessageWriter& message, const DropOrder&, int) {
  message.value(OrderKind::Drop);
}

// PreviewDied is no message.
enum class ReportKind : std::uint8_t { Opened, Refused, Progress, Inputs, Rendered, Counts, Failed, Dropped, Remark };

void putInput(MessageWriter& message, const PreviewInput& input) {
  message.text(input.path);
  message.value(input.kind);
  put(message, input.info);
  putFlag(message, input.clip != nullptr);
  if (input.clip) put(message, *input.clip);
}

PreviewInput takeInput(MessageReader& message) {
  PreviewInput input;
  input.path = message.text();
  input.kind = takeEnumUpTo(message, Inputs::Kind::Clip);
  input.info = takePictureInfo(message);
  if (takeFlag(message)) input.clip = std::make_shared<const ClipInfo>(takeClipInfo(message));
  return input;
}

void putReport(MessageWriter& message, const PreviewOpened& opened, int, const PictureParts&) {
  message.value(ReportKind::Opened);
  message.value(opened.kind);
  putFlag(message, opened.keepsState);
  message.value(opened.timing);
  message.value(opened.count);
  message.value(opened.start);
  message.value(opened.firstNumber);
  put(message, opened.rate);
  put(message, opened.timeBase);
  message.value(opened.end);
  putMaybe(message, opened.timeCode, [&](const TimeCode& code) {
    message.value(code.timeAndFlags);
    message.value(code.userData);
  });
  message.bytes(
      {reinterpret_cast<const std::uint8_t*>(opened.shown.data()), opened.shown.size() * sizeof(std::int64_t)});
  putList(message, opened.inputs, [&](const PreviewInput& input) { putInput(message, input); });
  putMaybe(message, opened.depth, [&](Depth depth) { message.value(depth); });
  put(message, opened.space);
}

std::vector<std::int64_t> takeTimes(MessageReader& message) {
  const Bytes bytes = message.bytes();
  std::vector<std::int64_t> times(bytes.size() / sizeof(std::int64_t));
  if (!times.empty()) std::memcpy(times.data(), bytes.data(), times.size() * sizeof times[0]);
  return times;
}

PreviewOpened takeOpened(MessageReader& message) {
  PreviewOpened opened;
  opened.kind = takeEnumUpTo(message, EffectKind::BlendMode);
  opened.keepsState = takeFlag(message);
  opened.timing = takeEnumUpTo(message, PreviewOpened::Timing::Frames);
  opened.count = message.value<std::uint64_t>();
  opened.start = message.value<std::uint64_t>();
  opened.firstNumber = message.value<std::uint32_t>();
  opened.rate = takeRational(message);
  opened.timeBase = takeRational(message);
  opened.end = message.value<std::int64_t>();
  opened.timeCode = takeMaybe(message, [&] {
    const auto time = message.value<std::uint32_t>();
    return TimeCode{time, message.value<std::uint32_t>()};
  });
  opened.shown = takeTimes(message);
  opened.inputs = takeListOf<PreviewInput>(message, [&] { return takeInput(message); });
  opened.depth = takeMaybe(message, [&] { return takeEnumUpTo(message, Depth::Float); });
  opened.space = takeColorSpace(message);
  const bool isSane = opened.count > 0 && opened.start < opened.count && opened.rate.numerator > 0 &&
                      opened.timeBase.numerator > 0 && (opened.shown.empty() || opened.shown.size() == opened.count);
  if (!isSane) refuseMessage();
  return opened;
}

void putReport(MessageWriter& message, const PreviewRefused& refused, int, const PictureParts&) {
  message.value(ReportKind::Refused);
  message.value(refused.code);
  message.text(refused.text);
}

PreviewRefused takeRefused(MessageReader& message) {
  PreviewRefused refused;
  refused.code = takeEnumUpTo(message, ExitCode::Effect);
  refused.text = message.text();
  return refused;
}

void putReport(MessageWriter& message, const PreviewProgress& progress, int, const PictureParts&) {
  message.value(ReportKind::Progress);
  message.value(progress.id);
  message.value(progress.phase);
}

PreviewProgress takeProgress(MessageReader& message) {
  const auto id = message.value<std::uint64_t>();
  return {id, takeEnumUpTo(message, PreviewPhase::Rendering)};
}

void putReport(MessageWriter& message, const PreviewInputs& inputs, int entries, const PictureParts&) {
  message.value(ReportKind::Inputs);
  message.value(inputs.id);
  message.value(inputs.frame);
  message.value(inputs.time);
  putBitmaps(message, inputs.bitmaps, entries);
  message.value(inputs.depth);
  for (const PictureSize& size : {inputs.fullSize, inputs.resultSize, inputs.fullResult}) put(message, size);
  put(message, inputs.space);
}

PreviewInputs takeInputs(MessageReader& message, int entries) {
  PreviewInputs inputs;
  inputs.id = message.value<std::uint64_t>();
  inputs.frame = message.value<std::uint64_t>();
  inputs.time = message.value<double>();
  inputs.bitmaps = takeBitmaps(message, entries);
  inputs.depth = takeEnumUpTo(message, Depth::Float);
  for (PictureSize* size : {&inputs.fullSize, &inputs.resultSize, &inputs.fullResult}) *size = takeSize(message);
  inputs.space = takeColorSpace(message);
  return inputs;
}

void putReport(MessageWriter& message, const PreviewRendered& rendered, int entries, const PictureParts& parts) {
  const PreviewPicture& picture = rendered.picture;
  message.value(ReportKind::Rendered);
  message.value(rendered.id);
  message.value(picture.frame);
  put(message, picture.size);
  put(message, picture.beforeSize);
  putFlag(message, picture.isFull);
  message.value(picture.depth);
  put(message, picture.space);
  for (const PictureParts::Part part : {parts.before, parts.fileBefore, parts.fileInfo}) message.value(part);
  putBitmap(message, *picture.result, entries);
  if (parts.before == PictureParts::Part::New) putBitmap(message, *picture.before, entries);
  if (parts.fileBefore == PictureParts::Part::New) putBitmap(message, *picture.fileBefore, entries);
  if (parts.fileInfo == PictureParts::Part::New) put(message, *picture.fileInfo);
  putFlag(message, rendered.isAhead);
  message.value(rendered.reading);
  message.value(rendered.rendering);
}

PreviewRendered takeRendered(MessageReader& message, int entries, PictureParts* parts) {
  PreviewRendered rendered;
  PreviewPicture& picture = rendered.picture;
  rendered.id = message.value<std::uint64_t>();
  picture.frame = message.value<std::uint64_t>();
  picture.size = takeSize(message);
  picture.beforeSize = takeSize(message);
  picture.isFull = takeFlag(message);
  picture.depth = takeEnumUpTo(message, Depth::Float);
  picture.space = takeColorSpace(message);
  for (PictureParts::Part* part : {&parts->before, &parts->fileBefore, &parts->fileInfo}) {
    *part = takeEnumUpTo(message, PictureParts::Part::New);
  }
  picture.result = takeBitmap(message, entries);
  if (parts->before == PictureParts::Part::New) picture.before = takeBitmap(message, entries);
  if (parts->fileBefore == PictureParts::Part::New) picture.fileBefore = takeBitmap(message, entries);
  if (parts->fileInfo == PictureParts::Part::New) {
    picture.fileInfo = std::make_shared<const PictureInfo>(takePictureInfo(message));
  }
  rendered.isAhead = takeFlag(message);
  rendered.reading = message.value<double>();
  rendered.rendering = message.value<double>();
  if (!std::isfinite(rendered.reading) || !std::isfinite(rendered.rendering)) refuseMessage();
  return rendered;
}

void putReport(MessageWriter& message, const PreviewCounts& counts, int, const PictureParts&) {
  message.value(ReportKind::Counts);
  message.value(counts.id);
  message.value(counts.frame);
  for (const TCHistogram* side : {&counts.input, &counts.result}) {
    message.bytes({reinterpret_cast<const std::uint8_t*>(side), sizeof *side});
  }
}

PreviewCounts takeCounts(MessageReader& message) {
  PreviewCounts counts;
  counts.id = message.value<std::uint64_t>();
  counts.frame = message.value<std::uint64_t>();
  for (TCHistogram* side : {&counts.input, &counts.result}) {
    const Bytes bytes = message.bytes();
    if (bytes.size() != sizeof *side) refuseMessage();
    std::memcpy(side, bytes.data(), sizeof *side);
  }
  return counts;
}

void putReport(MessageWriter& message, const PreviewFailed& failed, int, const PictureParts&) {
  message.value(ReportKind::Failed);
  message.value(failed.id);
  message.value(failed.phase);
  message.value(failed.code);
  message.text(failed.text);
}

PreviewFailed takeFailed(MessageReader& message) {
  PreviewFailed failed;
  failed.id = message.value<std::uint64_t>();
  failed.phase = takeEnumUpTo(message, PreviewPhase::Rendering);
  failed.code = takeEnumUpTo(message, ExitCode::Effect);
  failed.text = message.text();
  return failed;
}

void putReport(MessageWriter& message, const PreviewDropped& dropped, int, const PictureParts&) {
  message.value(ReportKind::Dropped);
  message.value(dropped.id);
}

void putReport(MessageWriter& message, const Remark& remark, int, const PictureParts&) {
  message.value(ReportKind::Remark);
  message.text(remark.text);
  message.text(remark.about);
}

Remark takeRemark(MessageReader& message) {
  std::string text = message.text();
  return {std::move(text), message.text()};
}

void putReport(MessageWriter&, const PreviewDied&, int, const PictureParts&) {
  refuseMessage();
}

PreviewReport takeReport(MessageReader& message, int entries, PictureParts* parts) {
  switch (takeEnumUpTo(message, ReportKind::Remark)) {
    case ReportKind::Opened:
      return takeOpened(message);
    case ReportKind::Refused:
      return takeRefused(message);
    case ReportKind::Progress:
      return takeProgress(message);
    case ReportKind::Inputs:
      return takeInputs(message, entries);
    case ReportKind::Rendered:
      return takeRendered(message, entries, parts);
    case ReportKind::Counts:
      return takeCounts(message);
    case ReportKind::Failed:
      return takeFailed(message);
    case ReportKind::Dropped:
      return PreviewDropped{message.value<std::uint64_t>()};
    case ReportKind::Remark:
      break;
  }
  return takeRemark(message);
}

}  // namespace

Bytes messageOf(const PreviewOrder& order, int entries) {
  MessageWriter message;
  std::visit([&](const auto& each) { putOrder(message, each, entries); }, order);
  return message.message();
}

PreviewOrder takePreviewOrder(const Bytes& bytes, int entries) {
  MessageReader message(bytes);
  switch (takeEnumUpTo(message, OrderKind::Drop)) {
    case OrderKind::Hello:
      return takeHello(message);
    case OrderKind::Inputs:
      return takeInputsOrder(message);
    case OrderKind::Render:
      return takeRenderOrder(message, entries);
    case OrderKind::Count:
      return CountOrder{message.value<std::uint64_t>()};
    case OrderKind::Drop:
      break;
  }
  return DropOrder();
}

Bytes messageOf(const PreviewReport& report, int entries, const PictureParts& parts) {
  MessageWriter message;
  std::visit([&](const auto& each) { putReport(message, each, entries, parts); }, report);
  return message.message();
}

PreviewReport takePreviewReport(const Bytes& bytes, int entries, PictureParts* parts) {
  MessageReader message(bytes);
  *parts = {};
  PreviewReport report = takeReport(message, entries, parts);
  if (!message.isAtEnd()) refuseMessage();
  return report;
}

}  // namespace host
