// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/RenderTiming.h"

#include "Host/Clips/ClipFormats.h"
#include "Host/Clips/ClipInfo.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Messages/Remark.h"
#include "Host/Rendering/ClipPlan.h"
#include "Host/Rendering/FrameTimes.h"
#include "Host/Rendering/SequencePlan.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace host {
namespace {

[[noreturn]] void refuse(const std::string& message) {
  throw Failure(ExitCode::Usage, message);
}

std::optional<Rational> rateOption(const char* option, const std::string& text) {
  if (text.empty()) return std::nullopt;
  const auto rate = parsedFrameRate(text);
  if (!rate)
    refuse(std::string(option) + " " + text +
           ": give 0.001 to 1000000 frames per second, as in 25, 29.97 or 30000/1001");
  return rate;
}

std::optional<double> secondsOption(const char* option, const std::string& text) {
  if (text.empty()) return std::nullopt;
  const auto seconds = parsedSeconds(text);
  if (!seconds)
    refuse(std::string(option) + " " + text + ": give seconds, or minutes and seconds, as in 12.5 or 1:02.5");
  return seconds;
}

std::optional<ChunkedFrames> framesOption(const RenderOptions& options) {
  if (options.timing.frames.empty()) return std::nullopt;
  return parsedChunkedFrames(options.timing.frames);
}

WhenShort whenShortOption(const std::string& text) {
  if (text.empty()) return WhenShort::Hold;
  const auto value = whenShortNamed(text);
  if (!value) refuse("--when-short " + text + ": give hold, loop or end");
  return *value;
}

// The options of clips alone, where nothing is one.
void refuseClipOptions(const TimingOptions& timing) {
  for (const auto& [option, text] : {std::pair("--fps", &timing.fps), std::pair("--start", &timing.start),
                                     std::pair("--duration", &timing.duration)}) {
    if (!text->empty()) refuse(std::string(option) + ": neither an input nor the output is a clip");
  }
}

std::vector<std::optional<FrameRange>> existing(const Inputs& inputs) {
  std::vector<std::optional<FrameRange>> ranges(inputs.count());
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    if (inputs.kind(i) == Inputs::Kind::Sequence) ranges[i] = inputs.existingFramesOf(i);
  }
  return ranges;
}

// Frames by their numbers. Sequences with other ones are refused, unless it is said what becomes of them.
std::unique_ptr<RenderPlan> numberedPlan(const RenderOptions& options, const SequencePlan::Wishes& wishes,
                                         const Inputs& inputs, std::optional<FrameRange> wanted) {
  if (options.timing.whenShort.empty()) {
    const FrameRange frames = inputs.checkedFrames(wanted);
    std::vector<std::optional<FrameRange>> sources(inputs.count());
    for (std::size_t i = 0; i < inputs.count(); ++i) {
      if (inputs.kind(i) == Inputs::Kind::Sequence) sources[i] = frames;
    }
    return std::make_unique<SequencePlan>(frames, sources, wishes);
  }
  const auto sources = existing(inputs);
  const WhenShort whenShort = whenShortOption(options.timing.whenShort);
  std::optional<FrameRange> frames = wanted;
  for (const auto& source : sources) {
    if (!source || wanted) continue;
    if (!frames) {
      frames = source;
    } else if (whenShort == WhenShort::End) {
      frames = FrameRange{std::max(frames->first, source->first), std::min(frames->last, source->last)};
    } else {
      frames = FrameRange{std::min(frames->first, source->first), std::max(frames->last, source->last)};
    }
  }
  if (frames && frames->first > frames->last) refuse("--when-short end: the inputs have no frame together");
  return std::make_unique<SequencePlan>(frames.value_or(FrameRange{}), sources, wishes, whenShort);
}

std::unique_ptr<ClipPlan> playedPlan(const RenderOptions& options, ClipWishes wishes, const Inputs& inputs,
                                     const std::vector<const ClipInfo*>& clips) {
  const TimingOptions& timing = options.timing;
  wishes.fps = rateOption("--fps", timing.fps);
  wishes.isRetimed = timing.isRetimed;
  if (timing.rate) wishes.sequenceRate = parsedFrameRate(numberText(*timing.rate));
  wishes.start = secondsOption("--start", timing.start);
  wishes.duration = secondsOption("--duration", timing.duration);
  wishes.whenShort = whenShortOption(timing.whenShort);
  if (wishes.frames && (wishes.start || wishes.duration)) refuse("--frames: give it, or --start and --duration");
  std::vector<PlayedInput> played;
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    PlayedInput input{inputs.path(i), clips[i], std::nullopt};
    if (inputs.kind(i) == Inputs::Kind::Sequence) input.sequence = inputs.existingFramesOf(i);
    played.push_back(std::move(input));
  }
  return std::make_unique<ClipPlan>(std::move(played), wishes);
}

// The first clip's, in the part of it that is rendered.
std::optional<ClipAudio> audioOf(const RenderOptions& options, const Inputs& inputs, const ClipPlan* plan,
                                 const std::vector<const ClipInfo*>& clips) {
  if (options.clip.isSilent) return std::nullopt;
  ClipAudio audio{options.clip.audio, 0, std::nullopt};
  const auto first = std::ranges::find_if(clips, [](const ClipInfo* clip) { return clip && clip->hasAudio; });
  if (audio.path.empty()) {
    if (first == clips.end()) return std::nullopt;
    audio.path = inputs.path(static_cast<std::size_t>(first - clips.begin()));
    audio.start = (*first)->delay;
  }
  if (plan) {
    audio.start += plan->startSeconds();
    audio.duration = plan->durationSeconds();
  }
  audio.start += secondsOption("--audio-start", options.clip.audioStart).value_or(0);
  if (options.timing.isRetimed) {
    refuse("--retime changes the duration, and the audio of " + audio.path + " does not: give --no-audio");
  }
  return audio;
}

PlanPart chunkOf(const RenderOptions& options, std::uint64_t count) {
  const unsigned wanted = options.timing.chunk;
  if (wanted == 0) return {0, count};
  const auto frames = framesOption(options);
  if (!frames || !frames->chunk) refuse("--chunk: say of how many frames, as in --frames 1-96x8");
  const std::uint64_t first = std::uint64_t{wanted - 1} * *frames->chunk;
  if (first >= count) {
    refuse("--chunk " + std::to_string(wanted) + ": --frames " + options.timing.frames + " has " +
           std::to_string((count + *frames->chunk - 1) / *frames->chunk) + " chunks");
  }
  return {first, std::min<std::uint64_t>(*frames->chunk, count - first)};
}

bool isOneFrame(const RenderOptions& options, const std::optional<ChunkedFrames>& frames) {
  return frames && (frames->frames.count() == 1 || (options.timing.chunk > 0 && frames->chunk == 1u));
}

}  // namespace

ChunkedFrames parsedChunkedFrames(const std::string& text) {
  const std::size_t cross = text.find('x');
  ChunkedFrames result{parsedFrameRange(text.substr(0, cross)), std::nullopt};
  if (cross == std::string::npos) return result;
  std::uint32_t chunk = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data() + cross + 1, end, chunk);
  if (parsed.ec != std::errc() || parsed.ptr != end || chunk == 0) {
    refuse("--frames " + text + ": give how many frames a chunk has behind the x, as in 1-96x8");
  }
  result.chunk = chunk;
  return result;
}

OutputKind outputKindOf(const RenderOptions& options) {
  if (options.output == "-") return OutputKind::Stream;
  const std::string& format = options.encoding.format;
  if (format.empty() ? clipContainerOf(options.output) : clipContainerNamed(format)) return OutputKind::Clip;
  return framePattern(options.output) ? OutputKind::Sequence : OutputKind::Picture;
}

RenderTiming::RenderTiming(const RenderOptions& options, EffectKind kind, const Inputs& inputs,
                           const std::vector<const ClipInfo*>& clips) {
  const OutputKind output = outputKindOf(options);
  const auto frames = framesOption(options);
  const bool isMoving = inputs.areSequence() || inputs.haveClip() || frames;
  if (output == OutputKind::Picture && isMoving && !isOneFrame(options, frames)) {
    refuse("the output of a sequence needs the frame's number in its name, as in out.%04d.png");
  }
  if (isMoving || output == OutputKind::Sequence || output == OutputKind::Clip) {
    if (!isMoving) refuse("--output " + options.output + " is a sequence: give its frames with --frames A-B");
  }
  isSingle_ = !isMoving;
  const std::optional<FrameRange> wanted = frames ? std::optional(frames->frames) : std::nullopt;
  const ClipPlan* played = nullptr;
  if (options.timing.isRetimed && options.timing.fps.empty()) refuse("--retime: give the rate with --fps");
  const bool playsSequences = inputs.areSequence() && output == OutputKind::Clip && !options.timing.fps.empty();
  if (inputs.haveClip() || playsSequences) {
    ClipWishes wishes;
    wishes.kind = kind;
    wishes.time = options.time;
    wishes.frames = wanted;
    auto plan = playedPlan(options, wishes, inputs, clips);
    played = plan.get();
    plan_ = std::move(plan);
  } else {
    if (output != OutputKind::Clip || !options.timing.fps.empty()) refuseClipOptions(options.timing);
    const auto rate = parsedFrameRate(numberText(options.timing.rate.value_or(25)));
    if (!rate && output == OutputKind::Clip) refuse("--rate: a clip takes 0.001 to 1000000 frames per second");
    plan_ = numberedPlan(options, {kind, options.timing.rate.value_or(25), rate.value_or(Rational{}), options.time},
                         inputs, wanted);
  }
  if (output == OutputKind::Clip) audio_ = audioOf(options, inputs, played, clips);
  if (output == OutputKind::Clip && options.timing.chunk > 0) {
    refuse("--chunk: a clip is written as a whole; render its frames into a sequence");
  }
  part_ = chunkOf(options, plan_->count());
}

}  // namespace host
