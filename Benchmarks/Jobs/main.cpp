// SPDX-License-Identifier: BSD-3-Clause
// Whole commands beside those of other programs for the same job, with their usual settings, one thread each but
// for clips: processor time and most memory, the median of several runs in turns, and how large the file became. Then
// long sequences with one process and with two: the time on the clock.
//
//   jobs VORTO PHOTO FOLDER [ROUNDS]
//
// The inputs are made in FOLDER of a photograph, by the other programs.
#include "Benchmarks/Jobs/Command.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Program {
  const char* name;
  const char* command;  // without the output, which stands for @; null where the program cannot do the job
};

struct Job {
  const char* name;
  const char* output;  // the file whose size is told
  Program programs[4];
};

// The other programs' gamma is what Levels does with a gamma of 1.2; ffmpeg, which has no such filter for floats, reads
// and writes alone there.
constexpr Job kJobs[] = {
    {"Levels, 512 x 512 PNG",
     "o.png",
     {{"vorto", "render Levels -i small.png --set levels.gamma=1.2 -o @"},
      {"ffmpeg", "-i small.png -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) @"},
      {"oiiotool", "small.png --powc 0.8333 -o @"},
      {"convert", "small.png -gamma 1.2 @"}}},
    {"Levels, 4K PNG",
     "o.png",
     {{"vorto", "render Levels -i large.png --set levels.gamma=1.2 -o @"},
      {"ffmpeg", "-i large.png -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) @"},
      {"oiiotool", "large.png --powc 0.8333 -o @"},
      {"convert", "large.png -gamma 1.2 @"}}},
    {"Levels, 4K PNG, 16 bits",
     "o.png",
     {{"vorto", "render Levels -i deep.png --set levels.gamma=1.2 -o @"},
      {"ffmpeg", "-i deep.png -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) @"},
      {"oiiotool", "deep.png --powc 0.8333 -o @"},
      {"convert", "deep.png -gamma 1.2 @"}}},
    {"Levels, 4K JPEG",
     "o.jpg",
     {{"vorto", "render Levels -i large.jpg --set levels.gamma=1.2 -o @"},
      {"ffmpeg",
       "-i large.jpg -vf format=gbrp,lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) -pix_fmt yuvj444p "
       "-q:v 1 @"},
      {"oiiotool", "large.jpg --powc 0.8333 --compression jpeg:95 --attrib jpeg:subsampling 4:4:4 -o @"},
      {"convert", "large.jpg -gamma 1.2 -quality 95 -sampling-factor 4:4:4 @"}}},
    {"Gradient Map, 4K JPEG",
     "o.jpg",
     {{"vorto", "render Gradient_Map -i large.jpg -o @"},
      {"ffmpeg", "-i large.jpg -vf format=gray,format=gbrp,pseudocolor=preset=magma -pix_fmt yuvj444p -q:v 1 @"},
      {"oiiotool", "large.jpg --colormap magma --compression jpeg:95 --attrib jpeg:subsampling 4:4:4 -o @"},
      {"convert", "large.jpg -colorspace gray map.png -clut -quality 95 -sampling-factor 4:4:4 @"}}},
    {"Over, two 4K PNG",
     "o.png",
     {{"vorto", "render Over -i large.png over.png -o @"},
      {"ffmpeg", "-i large.png -i over.png -filter_complex overlay=format=gbrp @"},
      {"oiiotool", "over.png large.png --ch R,G,B,A=1 --over -o @"},
      {"convert", "large.png over.png -composite @"}}},
    {"Levels, 12 frames of 1080p PNG",
     "o.12.png",
     {{"vorto", "render Levels -i frame.%d.png --frames 1-12 --jobs 1 --set levels.gamma=1.2 -o o.%d.png"},
      {"ffmpeg",
       "-start_number 1 -i frame.%d.png -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) o.%d.png"},
      {"oiiotool", "--frames 1-12 frame.%d.png --powc 0.8333 -o o.%d.png"},
      {"convert", "frame.%d.png[1-12] -gamma 1.2 -scene 1 o.%d.png"}}},
    {"Levels, 4K TIFF",
     "o.tif",
     {{"vorto", "render Levels -i large.tif --set levels.gamma=1.2 -o @"},
      {"ffmpeg",
       "-i large.tif -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) -compression_algo raw @"},
      {"oiiotool", "large.tif --powc 0.8333 --compression none -o @"},
      {"convert", "large.tif -gamma 1.2 -compress none @"}}},
    {"Levels, 4K half EXR (zip)",
     "o.exr",
     {{"vorto", "render Levels -i large.exr --set levels.gamma=1.2 -o @"},
      {"ffmpeg", "-i large.exr -compression zip16 -format half @"},
      {"oiiotool", "large.exr --powc 0.8333 -d half --compression zip -o @"},
      {"convert", nullptr}}},
    {"Over, two 4K half EXR (zip)",
     "o.exr",
     {{"vorto", "render Over -i large.exr over.exr -o @"},
      {"ffmpeg", nullptr},
      {"oiiotool", "over.exr large.exr --over -d half --compression zip -o @"},
      {"convert", nullptr}}},
    {"Levels, 50 frames of 1080p H.264",
     "o.mp4",
     {{"vorto", "render Levels -i clip.mp4 --set levels.gamma=1.2 -o @"},
      {"ffmpeg",
       "-i clip.mp4 -vf lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) -c:v libx264 -preset medium "
       "-crf "
       "18 -pix_fmt yuv420p -c:a copy @"}}},
    {"Gradient Map, 50 frames of 1080p H.264",
     "o.mp4",
     {{"vorto", "render Gradient_Map -i clip.mp4 -o @"},
      {"ffmpeg",
       "-i clip.mp4 -vf format=gray,format=gbrp,pseudocolor=preset=magma -c:v libx264 -preset medium -crf 18 -pix_fmt "
       "yuv420p -c:a copy @"}}},
    {"Levels, 50 frames of 1080p ProRes",
     "o.mov",
     {{"vorto", "render Levels -i clip.mov --set levels.gamma=1.2 -o @"},
      {"ffmpeg",
       "-i clip.mov -vf format=gbrp16,lutrgb=r=gammaval(0.8333):g=gammaval(0.8333):b=gammaval(0.8333) -c:v prores_ks "
       "-profile:v 3 -pix_fmt yuv422p10 @"}}},
};

// What makes the inputs; $ is the photograph.
constexpr const char* kInputs[] = {
    "convert $ -resize 3840x2160! -strip -depth 8 PNG24:large.png",
    "convert large.png -resize 512x512! PNG24:small.png",
    "convert large.png -quality 92 large.jpg",
    "oiiotool large.png -d uint16 --mulc 0.999 -o deep.png",
    "oiiotool large.png --compression none -o large.tif",
    "oiiotool large.png --ch R,G,B,A=1 --colorconvert sRGB linear -d half --compression zip -o large.exr",
    "convert -size 3840x2160 radial-gradient:white-black mask.png",
    "convert large.png -flop mask.png -alpha off -compose CopyOpacity -composite -depth 8 PNG32:over.png",
    "oiiotool over.png --colorconvert sRGB linear -d half --compression zip -o over.exr",
    "convert -size 1x256 gradient:white-black -rotate 90 map.png",
    "convert large.png -resize 1920x1080! PNG24:frame.1.png",
    "ffmpeg -v error -y -loop 1 -framerate 25 -t 2 -i large.png -f lavfi -t 2 -i sine=frequency=440 -vf "
    "crop=1920:1080:x=20*n:y=10*n -c:v libx264 -crf 18 -pix_fmt yuv420p -c:a aac clip.mp4",
    "ffmpeg -v error -y -i clip.mp4 -an -c:v prores_ks -profile:v 3 -pix_fmt yuv422p10 clip.mov",
    "oiiotool frame.1.png --ch R,G,B,A=1 --colorconvert sRGB linear -d half --compression zip -o frame.1.exr",
};

// Of 96 frames that are one file under many names.
constexpr int kFrames = 96;
constexpr Program kSequences[] = {
    {"Levels, 96 frames of 1080p PNG", "render Levels -i many.%d.png --set levels.gamma=1.2 -o o.%d.png"},
    {"Levels, 96 frames of 1080p half EXR", "render Levels -i many.%d.exr --set levels.gamma=1.2 -o o.%d.exr"},
};

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
    text.replace(at, what.size(), by);
  }
  return text;
}

bool makeInputs(const std::string& photo, const std::string& folder) {
  for (const char* line : kInputs) {
    if (runCommand(folder, wordsOf(replaced(line, "$", photo))).succeeded) continue;
    std::fprintf(stderr, "jobs: this failed: %s\n", line);
    return false;
  }
  for (int frame = 2; frame <= 12; ++frame) {
    fs::copy_file(folder + "/frame.1.png", folder + "/frame." + std::to_string(frame) + ".png",
                  fs::copy_options::overwrite_existing);
  }
  for (const char* extension : {".png", ".exr"}) {
    for (int frame = 1; frame <= kFrames; ++frame) {
      const std::string path = folder + "/many." + std::to_string(frame) + extension;
      fs::remove(path);
      fs::create_hard_link(folder + "/frame.1" + extension, path);
    }
  }
  return true;
}

// One thread, and nothing asked. Codecs of clips have the threads that they take, in both programs.
std::vector<std::string> commandOf(const Program& program, const Job& job, const std::string& vorto) {
  const std::string line = replaced(program.command, "@", job.output);
  std::vector<std::string> words = wordsOf(line);
  for (std::string& word : words) word = replaced(word, "Gradient_Map", "Gradient Map");
  const std::string name = program.name;
  std::vector<std::string> start = {name};
  if (name == "vorto") start = {vorto};
  const bool isOfClips = line.find("clip.") != std::string::npos;
  if (name == "ffmpeg") start = {name, "-y", "-v", "error"};
  if (name == "ffmpeg" && !isOfClips) start.insert(start.end(), {"-threads", "1", "-filter_threads", "1"});
  if (name == "oiiotool") start = {name, "--threads", "1"};
  words.insert(words.begin(), start.begin(), start.end());
  if (name == "ffmpeg" && !isOfClips) words.insert(words.end() - 1, {"-threads", "1"});
  return words;
}

struct Runs {
  std::vector<double> seconds;
  double mebibytes = 0;
  std::uintmax_t bytes = 0;
};

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

void measure(const Job& job, const std::string& vorto, const std::string& folder, int rounds,
             std::map<std::string, Runs>* results) {
  for (int round = 0; round < rounds; ++round) {
    for (const Program& program : job.programs) {
      if (!program.command) continue;
      const Cost cost = runCommand(folder, commandOf(program, job, vorto));
      if (!cost.succeeded) continue;
      Runs& runs = (*results)[program.name];
      runs.seconds.push_back(cost.seconds);
      runs.mebibytes = std::max(runs.mebibytes, cost.mebibytes);
      runs.bytes = fs::file_size(folder + "/" + job.output);
    }
  }
}

// Whether it could be measured.
bool printSequence(const Program& sequence, const std::string& vorto, const std::string& folder, int rounds) {
  std::vector<double> seconds[2];
  bool succeeded = true;
  for (int round = 0; round < rounds; ++round) {
    for (int jobs = 1; jobs <= 2; ++jobs) {
      std::vector<std::string> words = wordsOf(sequence.command);
      words.insert(words.begin(), vorto);
      words.insert(words.end(), {"--jobs", std::to_string(jobs)});
      const Cost cost = runCommand(folder, words);
      succeeded = succeeded && cost.succeeded;
      seconds[jobs - 1].push_back(cost.wallSeconds);
    }
  }
  const double one = median(seconds[0]);
  const double two = median(seconds[1]);
  std::printf("%s\n  --jobs 1  %7.2f s\n  --jobs 2  %7.2f s   %.2f times as fast%s\n", sequence.name, one, two,
              one / two, succeeded ? "" : ", failed");
  return succeeded;
}

void print(const Job& job, const std::map<std::string, Runs>& results) {
  std::printf("%s\n", job.name);
  double bestTime = 1e9;
  double bestMemory = 1e9;
  for (const auto& [name, runs] : results) {
    if (name == "vorto") continue;
    bestTime = std::min(bestTime, median(runs.seconds));
    bestMemory = std::min(bestMemory, runs.mebibytes);
  }
  for (const Program& program : job.programs) {
    if (!program.name) continue;
    const auto found = results.find(program.name);
    if (found == results.end()) {
      std::printf("  %-9s %s\n", program.name, program.command ? "failed" : "-");
      continue;
    }
    const Runs& runs = found->second;
    std::printf("  %-9s %7.1f ms  %6.1f MiB  %8ju bytes", program.name, median(runs.seconds) * 1e3, runs.mebibytes,
                runs.bytes);
    if (found->first == "vorto") {
      std::printf("   %.2f of the fastest, %.2f of the smallest", median(runs.seconds) / bestTime,
                  runs.mebibytes / bestMemory);
    }
    std::printf("\n");
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: jobs VORTO PHOTO FOLDER [ROUNDS]\n");
    return 2;
  }
  const std::string vorto = fs::absolute(argv[1]);
  const std::string photo = fs::absolute(argv[2]);
  const std::string folder = argv[3];
  const int rounds = argc > 4 ? std::atoi(argv[4]) : 5;
  fs::create_directories(folder);
  setenv("MAGICK_THREAD_LIMIT", "1", 1);
  if (!makeInputs(photo, folder)) return 1;
  bool complete = true;
  for (const Job& job : kJobs) {
    std::map<std::string, Runs> results;
    measure(job, vorto, folder, std::max(rounds, 1), &results);
    print(job, results);
    complete = complete && results.contains("vorto");
    std::fflush(stdout);
  }
  for (const Program& sequence : kSequences) {
    complete = printSequence(sequence, vorto, folder, std::max(rounds, 1)) && complete;
  }
  return complete ? 0 : 1;
}
