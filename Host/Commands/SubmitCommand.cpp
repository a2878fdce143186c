// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/SubmitCommand.h"

#include "Host/Commands/RenderTiming.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Files/OutputFile.h"
#include "Host/Jobs/Resume.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Utf8.h"
#include "Host/Rendering/FrameTimes.h"
#include "Host/Submission/BatchScript.h"
#include "Host/Submission/ShellText.h"
#include "Host/Submission/Slurm.h"
#include "TarnCore/TCHash128.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kUsualChunk = 10;
constexpr std::uint64_t kMostTasks = 1000;  // in an array, as Slurm comes
constexpr const char* kFrameName = "frame.%08d.png";

// Options that say how a clip is encoded: of its frames none, of its assembly all.
constexpr const char* kEncoding[] = {"--codec", "--speed", "--sampling", "--quality", "--no-audio", "--verbose"};
// Those that are of no use to tasks, or that these have of their own.
constexpr const char* kNotOfTasks[] = {"--frames", "--chunk", "--jobs", "--resume"};
constexpr const char* kNotOfFrames[] = {"--output", "--format", "--audio", "--audio-start"};

[[noreturn]] void refuse(const std::string& message) {
  throw Failure(ExitCode::Usage, message);
}

std::string wholePath(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::absolute(path, error);
  return error ? path : whole.lexically_normal().string();
}

std::string thisProgram() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (error) throw Failure(ExitCode::Unexpected, "cannot find where this program is: " + error.message());
  return program.string();
}

std::string counted(std::uint64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

template <std::size_t count>
bool isOneOf(const std::string& name, const char* const (&names)[count]) {
  return std::any_of(std::begin(names), std::end(names), [&](const char* one) { return name == one; });
}

// How the frames are dealt out.
struct Chunks {
  std::uint64_t frames = 0;
  std::uint32_t first = 0;  // its number
  std::uint32_t size = 1;
  std::uint64_t count() const { return (frames + size - 1) / size; }
  std::string range() const { return std::to_string(first) + "-" + std::to_string(first + frames - 1); }
};

Chunks chunksOf(const RenderOptions& options, const RenderOutlook& outlook) {
  Chunks chunks{outlook.frames, outlook.firstNumber, kUsualChunk};
  const std::string& frames = options.timing.frames;
  const auto told = frames.empty() ? std::nullopt : parsedChunkedFrames(frames).chunk;
  const std::uint64_t fewest = (outlook.frames + kMostTasks - 1) / kMostTasks;
  chunks.size = told.value_or(static_cast<std::uint32_t>(std::max<std::uint64_t>(kUsualChunk, fewest)));
  if (!outlook.keepsState) return chunks;
  if (told && chunks.count() > 1) {
    refuse(
        "--frames " + frames + ": the effect \"" + options.effect +
        "\" keeps a state from frame to frame, or does not say that it keeps none; its frames are one chunk: leave x" +
        std::to_string(*told) + " out");
  }
  chunks.size = static_cast<std::uint32_t>(outlook.frames);
  return chunks;
}

void checkForFarm(const RenderOptions& options, const RenderOutlook& outlook) {
  if (outlook.output == OutputKind::Picture || outlook.output == OutputKind::Stream) {
    refuse("--output " + options.output + ": a farm renders a sequence, as in out.%04d.png, or a clip");
  }
  if (outlook.readsStandardInput) refuse("the standard input cannot be read on a farm");
  if (options.timing.chunk > 0) refuse("--chunk: the tasks of the farm are the chunks");
  if (!options.timing.start.empty() || !options.timing.duration.empty()) {
    refuse("--start and --duration: say it in frames, --frames " + std::to_string(outlook.firstNumber) + "-" +
           std::to_string(outlook.firstNumber + outlook.frames - 1));
  }
}

// A clip is assembled from its frames, which come one like another.
void checkClipForFarm(const RenderOptions& options, const RenderOutlook& outlook) {
  if (!outlook.hasClip && !options.timing.fps.empty()) refuse("--fps of sequences: say how they play with --rate");
  if (!outlook.isEven) refuse("the frames of the first clip come unevenly: give a rate with --fps");
  if (parsedFrameRate(numberText(valueOf(outlook.rate))) != outlook.rate) {
    refuse("the first clip has " + std::to_string(outlook.rate.numerator) + "/" +
           std::to_string(outlook.rate.denominator) +
           " frames per second, which --rate cannot say: give a rate with --fps");
  }
}

// The words of a render command: its options, with those that it is given besides, and the effect behind them.
class RenderWords {
 public:
  RenderWords() : words_{shellWord(thisProgram()), "render"} {}
  void add(const GivenOption& option) {
    if (option.values.empty()) addRaw(option.name);
    for (const std::string& value : option.values) add(option.name, value);
  }
  void add(const std::string& name, const std::string& value) {
    words_.push_back(value.empty() ? name + " ''" : name + "=" + shellWord(value));
  }
  void addRaw(const std::string& word) { words_.push_back(word); }
  const std::vector<std::string>& words() const { return words_; }
  std::vector<std::string> of(const std::string& effect) {
    words_.insert(words_.end(), {"--", shellWord(effect)});
    return std::move(words_);
  }

 private:
  std::vector<std::string> words_;
};

// What jobs of a submission have in common.
BatchJob newJob(const SubmitOptions& options, const std::string& logs, const std::string& name) {
  BatchJob job;
  job.name = name;
  job.options = options.slurm;
  job.retries = options.retries;
  job.folder = fs::current_path().string();
  for (const char* const variable : {"VORTO_PLUGIN_PATH", "OCIO"}) {
    if (const char* value = std::getenv(variable)) job.environment.emplace_back(variable, value);
  }
  job.log = batchFileName(logs) + "/";
  return job;
}

std::string pluralFrames(std::uint32_t size) {
  return size == 1 ? "one in each task" : std::to_string(size) + " in each task";
}

// Of the frames those whose files are there: tasks go on behind them.
void tellOfFrames(const FramePattern& pattern, const Chunks& chunks, FileFormat format) {
  const FrameRange range{chunks.first, static_cast<std::uint32_t>(chunks.first + chunks.frames - 1)};
  const auto isThere = [&](std::uint32_t frame) { return isPictureThere(pattern.path(frame), format); };
  const auto there = std::ranges::count_if(framesThere(pattern, range), isThere);
  if (there > 0) {
    remark(std::to_string(there) + " of " + counted(chunks.frames, "frame") + (there == 1 ? " is" : " are") +
           " there already and stay; remove what is to be rendered anew");
  }
}

struct Submission {
  const SubmitOptions& options;
  const RenderCommandLine& render;
  const RenderOutlook& outlook;
  Chunks chunks;
  std::string logs;
  std::string name;
  std::string mark;  // of a clip's frames

  bool isClip() const { return outlook.output == OutputKind::Clip; }
  std::string framesFolder() const { return wholePath(render.options.output) + ".frames-" + mark; }
  std::string framesPattern() const { return framesFolder() + "/" + kFrameName; }
  std::string script(const std::string& job) const { return logs + "/" + job + ".sh"; }
};

FileFormat formatOfFrames(const Submission& submission) {
  if (submission.isClip()) return FileFormat::Png;
  const std::string& told = submission.render.options.encoding.format;
  return told.empty() ? fileFormatOf(submission.render.options.output) : fileFormatNamed(told);
}

// That its frames are to be in, too, so that they are converted once; empty where they keep what their inputs state.
std::string spaceOfClip(const Submission& submission) {
  const std::string& told = submission.render.options.colors.output;
  const auto& space = submission.outlook.outputSpace;
  if (!submission.isClip() || !told.empty()) return told;
  return space && space->kind == ColorSpace::Kind::Known ? spaceText(*space) : "";
}

// What makes the pictures as they are: no names of theirs, and not how they are dealt out.
RenderWords wordsOfPictures(const Submission& submission) {
  RenderWords words;
  for (const GivenOption& option : submission.render.given) {
    const bool isOfClip =
        submission.isClip() && (isOneOf(option.name, kEncoding) || isOneOf(option.name, kNotOfFrames));
    if (isOfClip || isOneOf(option.name, kNotOfTasks)) continue;
    words.add(option.name == "--state" ? GivenOption{option.name, submission.outlook.states} : option);
  }
  const std::string space = spaceOfClip(submission);
  if (!space.empty() && submission.render.options.colors.output.empty()) words.add("--output-space", space);
  return words;
}

// Eight letters that tell these frames from those that another command line makes, elsewhere or of other effects.
std::string markOfFrames(const Submission& submission) {
  const BatchJob job = newJob(submission.options, submission.logs, submission.name);
  std::string text =
      submission.chunks.range() + " " + shellWord(submission.render.options.effect) + " " + shellWord(job.folder);
  for (const auto& [name, value] : job.environment) text += " " + name + "=" + shellWord(value);
  const RenderWords pictures = wordsOfPictures(submission);
  for (const std::string& word : pictures.words()) text += " " + word;
  const VortoHash128 hash(reinterpret_cast<const unsigned char*>(text.data()), static_cast<std::uint32_t>(text.size()));
  std::array<char, 9> mark{};
  std::snprintf(mark.data(), mark.size(), "%08x", static_cast<unsigned>(hash.words[0]));
  return mark.data();
}

BatchJob framesJob(const Submission& submission) {
  const Chunks& chunks = submission.chunks;
  BatchJob job = newJob(submission.options, submission.logs, submission.name);
  job.after = submission.options.after;
  job.tasks = chunks.count();
  job.log += "%A_%a.log";
  job.remarks = {"Frames " + chunks.range() + " of " + submission.render.options.effect + ", " +
                     pluralFrames(chunks.size) + "; made by vorto submit.",
                 "A task runs without Slurm as well: SLURM_ARRAY_TASK_ID=1 sh " + job.name + ".sh"};
  RenderWords words = wordsOfPictures(submission);
  if (submission.isClip()) {
    job.preparation = {"mkdir -p " + shellWord(submission.framesFolder())};
    words.add("--output", submission.framesPattern());
  }
  words.add("--frames", chunks.range() + "x" + std::to_string(chunks.size));
  words.addRaw("--chunk=\"$SLURM_ARRAY_TASK_ID\"");
  if (!submission.outlook.keepsState) words.addRaw("--resume");
  words.addRaw("--jobs=\"${SLURM_CPUS_PER_TASK:-1}\"");
  job.words = words.of(submission.render.options.effect);
  return job;
}

// --array in all the spellings that getopt_long takes: the beginning of its name, -a, and that behind other flags.
bool isArray(const std::string& option) {
  const std::string name = option.substr(0, option.find_first_of("= "));
  if (name.starts_with("--")) return name.size() > 3 && std::string_view("--array").starts_with(name);
  const std::size_t letter = name.find_first_not_of("-HIOQWhksvV");
  return letter != std::string::npos && name[letter] == 'a';
}

// Levels leave a picture as it is unless they are set.
BatchJob clipJob(const Submission& submission) {
  BatchJob job = newJob(submission.options, submission.logs, submission.name + "-clip");
  job.log += "%j.log";
  std::erase_if(job.options, isArray);
  job.remarks = {"The clip of the frames that " + submission.name + ".sh renders; made by vorto submit."};
  RenderWords words;
  words.add("--input", submission.framesPattern());
  words.add("--frames", submission.chunks.range());
  words.add("--output", submission.render.options.output);
  words.add("--rate", numberText(valueOf(submission.outlook.rate)));
  for (const GivenOption& option : submission.render.given) {
    if (isOneOf(option.name, kEncoding) || option.name == "--format") words.add(option);
  }
  if (const std::string space = spaceOfClip(submission); !space.empty()) words.add("--output-space", space);
  if (const auto& audio = submission.outlook.audio) {
    words.add("--audio", audio->path);
    if (audio->start > 0) words.add("--audio-start", numberText(audio->start));
  }
  words.addRaw("--jobs=\"${SLURM_CPUS_PER_TASK:-1}\"");
  job.words = words.of("Levels");
  const std::string folder = shellWord(submission.framesFolder());
  job.cleanup = {"find " + folder + " -maxdepth 1 -type f '(' -name 'frame.*.png' -o -name '.write-*' ')' -delete",
                 "rmdir " + folder};
  return job;
}

void makeFolder(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Failure(ExitCode::Output, "cannot make the folder " + folder + ": " + error.message());
}

// Whether a script may have that name: there is no file, or this script.
bool isFreeFor(const std::string& path, const std::string& script) {
  std::error_code error;
  if (!fs::exists(path, error)) return true;
  if (!fs::is_regular_file(path, error) || fs::file_size(path, error) != script.size()) return false;
  std::string there(script.size(), 0);
  std::ifstream(path, std::ios::binary).read(there.data(), static_cast<std::streamsize>(there.size()));
  return there == script;
}

// Of the frames, and of the clip, with a number in their names where those of another submission are there: its tasks
// may have to be run again.
std::vector<BatchJob> jobsOf(Submission& submission) {
  const std::string name = submission.name;
  for (unsigned number = 2;; ++number) {
    std::vector<BatchJob> jobs{framesJob(submission)};
    if (submission.isClip()) jobs.push_back(clipJob(submission));
    const auto isFree = [&](const BatchJob& job) { return isFreeFor(submission.script(job.name), batchScript(job)); };
    if (std::ranges::all_of(jobs, isFree)) return jobs;
    submission.name = name + "-" + std::to_string(number);
  }
}

void writeScript(const Submission& submission, const BatchJob& job) {
  const std::string script = batchScript(job);
  replaceFile(submission.script(job.name), {reinterpret_cast<const std::uint8_t*>(script.data()), script.size()});
}

std::string submitClip(const Submission& submission, const BatchJob& job, const std::string& after) {
  try {
    return submitScript(submission.script(job.name), after);
  } catch (const Failure& failure) {
    throw Failure(failure.code,
                  failure.what() + ("; job " + after + ", which renders the frames, is in the queue: scancel " + after +
                                    " takes it out"));
  }
}

// "in.exr" of "in.%04d.exr"
std::string nameWithoutNumber(const FramePattern& pattern) {
  const std::string before = fs::path(pattern.before).filename().string();
  return before + pattern.after.substr(before.ends_with('.') && pattern.after.starts_with('.') ? 1 : 0);
}

void tellHowToFollow(const Submission& submission, const std::string& number, const std::string& clipNumber,
                     const BatchJob& frames) {
  const std::string jobs = clipNumber.empty() ? number : number + "," + clipNumber;
  const std::string cancelled = clipNumber.empty() ? number : number + " " + clipNumber;
  printText("  see      squeue --jobs=" + jobs + "\n  cancel   scancel " + cancelled +
            "\n  after    sacct --jobs=" + jobs + " --format=JobID,State,ExitCode,NodeList,Elapsed\n  logs     " +
            printable(submission.logs) + "/" + number + "_*.log\n  again    sbatch --array=K " +
            printable(shellWord(submission.script(frames.name))) + "\n");
}

}  // namespace

void runSubmit(const SubmitOptions& options, const RenderCommandLine& render) {
  if (options.after.find_first_not_of("0123456789:") != std::string::npos) {
    refuse("--after " + options.after + ": give the number of a job, or several, as in 17:18");
  }
  const RenderOutlook outlook = renderOutlook(render.options);
  checkForFarm(render.options, outlook);
  if (outlook.output == OutputKind::Clip) checkClipForFarm(render.options, outlook);
  const fs::path output = wholePath(render.options.output);
  Submission submission{options, render, outlook, chunksOf(render.options, outlook), "", "", ""};
  submission.logs = wholePath(options.logs.empty() ? (output.parent_path() / "logs").string() : options.logs);
  if (submission.isClip()) submission.mark = markOfFrames(submission);
  const auto pattern = framePattern(submission.isClip() ? submission.framesPattern() : render.options.output);
  submission.name = batchName(submission.isClip() ? output.filename().string() : nameWithoutNumber(*pattern));

  const std::vector<BatchJob> jobs = jobsOf(submission);
  if (options.isDryRun) {
    printText(batchScript(jobs[0]));
    if (submission.isClip()) printText("\n# Behind it, sbatch --dependency=afterok:JOB:\n" + batchScript(jobs[1]));
    return;
  }
  if (!outlook.keepsState) tellOfFrames(*pattern, submission.chunks, formatOfFrames(submission));
  makeFolder(submission.logs);
  for (const BatchJob& job : jobs) writeScript(submission, job);
  const std::string number = submitScript(submission.script(jobs[0].name), "");
  std::string clipNumber;
  printText("Job " + number + ": frames " + submission.chunks.range() + " in " +
            counted(submission.chunks.count(), "task") + "\n");
  if (submission.isClip()) {
    clipNumber = submitClip(submission, jobs[1], number);
    printText("Job " + clipNumber + ": " + printable(render.options.output) + " of them\n");
  }
  tellHowToFollow(submission, number, clipNumber, jobs[0]);
}

}  // namespace host
