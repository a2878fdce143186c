// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/RenderCommand.h"

#include "Host/Clips/OpenClips.h"
#include "Host/Commands/OptionValues.h"
#include "Host/Commands/RenderTiming.h"
#include "Host/Files/OutputFile.h"
#include "Host/Files/PictureSink.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Files/StandardInput.h"
#include "Host/Jobs/Coordinator.h"
#include "Host/Jobs/Resume.h"
#include "Host/Jobs/Worker.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Messages/Remark.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/FrameRendering.h"
#include "Host/Rendering/FrameTimes.h"
#include "Registry/VRTExecutionTraits.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

namespace host {
namespace {

RenderSetup setupOf(const RenderOptions& options) {
  RenderSetup setup;
  setup.effect = options.effect;
  setup.inputs = options.inputs;
  setup.values = options.values;
  setup.states = options.states;
  setup.framing = parsedFraming(options.framing);
  setup.layout = parsedLayout(options.layout);
  setup.alpha = parsedOutputAlpha(options.alpha);
  setup.channels = parsedChannels(options.channels);
  setup.depth = parsedDepth(options.depth);
  if (setup.depth && setup.layout) {
    throw Failure(ExitCode::Usage, "--pixel-format " + options.layout + " has its own depth: leave --depth out");
  }
  if (setup.layout) setup.depth = setup.layout->depth;
  setup.colors = parsedColors(options.colors, options.inputs);
  return setup;
}

// The part of a clip's target that the command line says.
ClipTarget clipTargetOf(const RenderOptions& options) {
  ClipTarget target;
  const std::string& format = options.encoding.format;
  target.path = options.output;
  target.container = format.empty() ? std::filesystem::path(options.output).extension().string().substr(1) : format;
  target.settings = {options.clip.codec, options.clip.speed, options.clip.sampling, options.encoding.quality};
  return target;
}

std::chrono::seconds patienceOf(const RenderOptions& options) {
  return std::chrono::seconds(static_cast<std::int64_t>(std::ceil(options.clip.patience)));
}

// What is written, and the pictures' sink where it is pictures.
struct Output {
  std::unique_ptr<PictureSink> sink;
  JobOutput job;
};

Output outputOf(const RenderOptions& options) {
  Output output;
  output.job.isVerbose = options.isVerbose;
  output.job.patience = patienceOf(options);
  if (outputKindOf(options) == OutputKind::Clip) {
    output.job.clip = clipTargetOf(options);
    const ClipContainer& container = *clipContainerNamed(output.job.clip.container);
    const ClipSettings& settings = output.job.clip.settings;
    checkClipSettings(clipCodecIn(container, settings.codec), settings);
    output.job.clipHoldsAlpha = holdsAlpha(container, settings);
    checkOutput(options.output);
  } else {
    output.sink =
        std::make_unique<PictureSink>(options.output, options.encoding.format, parsedSettings(options.encoding),
                                      options.timing.rate.value_or(25), options.isVerbose);
    output.job.sink = output.sink.get();
  }
  return output;
}

bool takesStandardInput(const RenderOptions& options) {
  return std::ranges::count(options.inputs, "-") > 0;
}

// The first path that other processes would not find; empty without one.
std::string ownDescriptorIn(const RenderOptions& options) {
  for (const std::string& path : options.inputs) {
    if (isOwnDescriptor(path)) return path;
  }
  for (const auto* const assignments : {&options.values, &options.states}) {
    for (const std::string& text : *assignments) {
      std::string path = text.substr(text.find('=') + 1);
      if (isOwnDescriptor(path)) return path;
    }
  }
  return "";
}

unsigned jobsFor(const RenderOptions& options, bool keepsState) {
  if (keepsState) return 1;
  return options.jobs > 0 ? options.jobs : usualJobs();
}

void openClips(OpenClips& clips, const RenderOptions& options, const Inputs& inputs, unsigned jobs) {
  const std::chrono::seconds patience = patienceOf(options);
  for (std::size_t i = 0; i < inputs.count(); ++i) {
    if (inputs.kind(i) == Inputs::Kind::Clip) clips.open(i, inputs.path(i), slotsOfClip(jobs), patience);
  }
}

void checkResumable(const RenderOptions& options, bool keepsState) {
  if (outputKindOf(options) != OutputKind::Sequence) {
    throw Failure(ExitCode::Usage, "--resume: --output " + options.output +
                                       " is written as a whole; only the files of a sequence are there or missing");
  }
  if (keepsState) {
    throw Failure(ExitCode::Usage, "--resume: the effect \"" + options.effect +
                                       "\" keeps a state from frame to frame, or does not say that it keeps none: a "
                                       "frame cannot be rendered without those before it");
  }
}

// Memory that processes share counts as a file.
bool areFilesLimited() {
  rlimit limit{};
  return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
}

void checkPart(const RenderOptions& options, const RenderTiming& timing, bool keepsState) {
  if (!keepsState || timing.part().count == timing.plan().count()) return;
  throw Failure(ExitCode::Usage, "--chunk " + std::to_string(options.timing.chunk) + ": the effect \"" +
                                     options.effect +
                                     "\" keeps a state from frame to frame, or does not say that it keeps none: a "
                                     "chunk cannot be rendered without the frames before it");
}

// Of the plan's frames those that are to be rendered.
FrameList framesToRender(const RenderOptions& options, const RenderTiming& timing, const Output& output) {
  const PlanPart part = timing.part();
  FrameList frames(part.first, part.count);
  if (!options.isResumed) return frames;
  FrameList missing = missingFrames(timing.plan(), frames, *framePattern(options.output),
                                    output.sink->format(Depth::Bits8), parsedFraming(options.framing).size);
  remark(std::to_string(frames.count() - missing.count()) + " of " + std::to_string(frames.count()) +
         (frames.count() == 1 ? " frame is" : " frames are") + " there already");
  return missing;
}

// In this process, one after another.
void renderHere(FrameRendering& rendering, const RenderTiming& timing, const FrameList& frames, const Output& output) {
  const OutputDescription description = output.job.description();
  if (!timing.isSingle()) rendering.begin(timing.plan().frame(0), nullptr, description);
  Progress progress(frames.count());
  for (std::uint64_t done = 0; done < frames.count();) {
    const PlannedFrame frame = timing.plan().frame(frames[done]);
    output.sink->write(rendering.render(frame, description), frame.number);
    progress.finished(++done);
  }
  tellOfClipping(output.sink->clippedPixels(), rendering.inputs().colors().clippedSpace());
}

// The words that say the states, in their order.
std::vector<std::string*> stateWords(std::vector<std::string>& words) {
  std::vector<std::string*> found;
  for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
    if (words[i].starts_with("--state=")) found.push_back(&words[i]);
    if (words[i] == "--state" && i + 1 < words.size()) found.push_back(&words[++i]);
  }
  return found;
}

// Workers that start later are given the files of presets, not names that may mean others by then.
std::vector<std::string> workerArguments(const RenderOptions& options, const std::vector<std::string>& states) {
  std::vector<std::string> arguments = options.commandLine;
  const std::vector<std::string*> words = stateWords(arguments);
  for (std::size_t i = 0; i < words.size() && words.size() == states.size(); ++i) {
    const bool isJoined = words[i]->starts_with("--state=");
    *words[i] = (isJoined ? "--state=" : "") + states[i];
  }
  arguments.insert(arguments.begin() + 1, "--worker");  // behind "render": what follows -- is no option
  return arguments;
}

// An output that holds one rate alone takes frames only within a unit of their places.
void checkTimesHeld(const ClipTarget& target, const RenderTiming& timing) {
  const RenderPlan& plan = timing.plan();
  const ClipContainer& container = *clipContainerNamed(target.container);
  if (container.holdsUneven || plan.timeBase() == unitOfRate(plan.rate())) return;
  const double units = 1 / (valueOf(plan.rate()) * valueOf(plan.timeBase()));
  const PlanPart part = timing.part();
  const std::int64_t first = plan.frame(part.first).shown;
  for (std::uint64_t i = 1; i < part.count; ++i) {
    const auto since = static_cast<double>(plan.frame(part.first + i).shown - first);
    if (std::abs(since - units * static_cast<double>(i)) < 1) continue;
    throw Failure(ExitCode::Usage, "cannot write " + target.path + ": " + container.name +
                                       " holds frames at one rate alone, and these come unevenly: --fps makes them "
                                       "even, a .mkv or .mov keeps their times");
  }
}

bool isRateOfClips(const OpenClips& clips, const Rational& rate) {
  return std::ranges::all_of(clips.infos(), [&](const ClipInfo* info) { return !info || info->rate == rate; });
}

void renderBesides(const RenderOptions& options, const RenderTiming& timing, JobRun run) {
  run.plan = &timing.plan();
  if (run.output.isClip()) {
    const PlanPart part = timing.part();
    const RenderPlan& plan = timing.plan();
    checkTimesHeld(run.output.clip, timing);
    run.output.clip.rate = plan.rate();
    run.output.clip.timeBase = plan.timeBase();
    run.output.clip.audio = timing.audio();
    run.output.keepsTimeCode = options.timing.fps.empty() || isRateOfClips(*run.clips, plan.rate());
    ClipWriter::checkAudio(run.output.clip, run.output.patience);
    const std::uint64_t end = part.first + part.count;
    run.end = end < plan.count() ? plan.frame(end).shown : plan.end();
  }
  renderInJobs(run);
}

// What clips say, without their frames.
class ClipHeaders : public ClipFrames {
 public:
  explicit ClipHeaders(const OpenClips& clips) : infos_(clips.infos()) {}
  const ClipInfo& info(std::size_t input) override { return *infos_[input]; }
  FilePicture frame(std::size_t, std::uint32_t) override {
    throw Failure(ExitCode::Unexpected, "a frame is read where only what clips say is known");
  }

 private:
  const std::vector<const ClipInfo*> infos_;
};

}  // namespace

RenderOutlook renderOutlook(const RenderOptions& options) {
  checkTime(options.time);
  if (options.timing.rate) checkRate(*options.timing.rate);
  const RenderSetup setup = setupOf(options);
  const Output output = outputOf(options);
  loadEffects(options.python);
  FrameRendering rendering(setup);
  OpenClips clips(setup.inputs.size());
  openClips(clips, options, rendering.inputs(), 1);
  const RenderTiming timing(options, rendering.effect().kind(), rendering.inputs(), clips.infos());
  const RenderPlan& plan = timing.plan();
  if (output.job.isClip()) {
    ClipTarget target = output.job.clip;
    target.audio = timing.audio();
    checkTimesHeld(target, timing);
    ClipWriter::checkAudio(target, output.job.patience);
  }
  RenderOutlook outlook;
  outlook.readsStandardInput = takesStandardInput(options) || wasStandardInputRead();
  if (!timing.isSingle() && !outlook.readsStandardInput) {
    ClipHeaders headers(clips);
    rendering.begin(plan.frame(0), &headers, output.job.description());
    outlook.outputSpace = rendering.inputs().colors().outputSpace();
  }
  outlook.output = outputKindOf(options);
  outlook.keepsState = keepsState(rendering.effect().patch());
  outlook.hasClip = rendering.inputs().haveClip();
  outlook.frames = plan.count();
  outlook.firstNumber = plan.frame(0).number;
  outlook.rate = plan.rate();
  outlook.isEven = plan.isEven();
  outlook.audio = timing.audio();
  outlook.states = rendering.states();
  return outlook;
}

void runRender(const RenderOptions& options) {
  if (options.isWorker) {
    Output output;
    return runWorker(options.python, [&] {
      output = outputOf(options);
      return WorkerParts{setupOf(options), output.job};
    });
  }
  if (options.tellsProgress) {
    Progress::tellInLines();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);  // nobody would hear of it any more
  }
  checkTime(options.time);
  if (options.timing.rate) checkRate(*options.timing.rate);
  const RenderSetup setup = setupOf(options);
  const Output output = outputOf(options);
  if (outputKindOf(options) != OutputKind::Picture) keepStandardInputWhenRead();

  loadEffects(options.python);
  FrameRendering rendering(setup);
  const bool hasState = keepsState(rendering.effect().patch());
  if (options.isResumed) checkResumable(options, hasState);
  std::size_t clipCount = 0;
  for (std::size_t i = 0; i < rendering.inputs().count(); ++i) {
    if (rendering.inputs().kind(i) == Inputs::Kind::Clip) ++clipCount;
  }
  const unsigned jobs = workersThatFit(jobsFor(options, hasState), clipCount, output.job.usesSlots());
  OpenClips clips(setup.inputs.size());
  openClips(clips, options, rendering.inputs(), jobs);
  const RenderTiming timing(options, rendering.effect().kind(), rendering.inputs(), clips.infos());
  checkPart(options, timing, hasState);
  const FrameList frames = framesToRender(options, timing, output);
  if (frames.isEmpty()) return;
  const bool canBeHere = output.sink && !rendering.inputs().haveClip();
  const std::string own = ownDescriptorIn(options);
  if (!own.empty() && !canBeHere) {
    throw Failure(ExitCode::Usage, own + " is open in this process alone, and clips take others: give the file itself");
  }
  const bool mustBeHere = canBeHere && (!own.empty() || (output.job.usesSlots() && areFilesLimited()));
  const auto workers = static_cast<unsigned>(std::min<std::uint64_t>(mustBeHere ? 1 : jobs, frames.count()));
  if (workers == 1 && canBeHere) {
    renderHere(rendering, timing, frames, output);
    return;
  }
  if (takesStandardInput(options)) keepStandardInput();
  JobRun run;
  run.frames = frames;
  run.workers = workers;
  run.keepsState = hasState;
  run.arguments = workerArguments(options, rendering.states());
  run.clips = &clips;
  run.output = output.job;
  renderBesides(options, timing, std::move(run));
}

}  // namespace host
