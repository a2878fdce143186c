// SPDX-License-Identifier: BSD-3-Clause
// Clips as people render them. They are made and looked into by the programs ffmpeg and ffprobe.
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

// What a shell command prints; a test fails when the command does.
std::string printed(const std::string& command) {
  std::string text;
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::array<char, 4096> part;
  for (std::size_t size; (size = fread(part.data(), 1, part.size(), pipe)) > 0;) text.append(part.data(), size);
  EXPECT_EQ(pclose(pipe), 0) << command << "\n" << text;
  return text;
}

void ffmpeg(const std::string& arguments) {
  printed("ffmpeg -nostdin -v error -y " + arguments);
}

// Of the first stream of a kind ("v", "a"): entries as ffprobe prints them, apart by commas.
std::string probed(const std::string& path, const std::string& stream, const std::string& entries) {
  std::string text = printed("ffprobe -v error -select_streams " + stream + ":0 -show_entries " + entries +
                             " -of csv=p=0 '" + path + "'");
  while (!text.empty() && (text.back() == '\n' || text.back() == ',')) text.pop_back();
  return text;
}

std::string frameCount(const std::string& path) {
  return probed(path, "v", "stream=nb_read_packets -count_packets");
}

std::string frameHashes(const std::string& path, const std::string& format) {
  return printed("ffmpeg -nostdin -v error -i '" + path + "' -an -pix_fmt " + format + " -f framemd5 - | grep -v '^#'");
}

// Of the audio, a line a packet.
std::string packetHashes(const std::string& path) {
  std::string lines;
  std::istringstream text(probed(path, "a", "packet=data_hash -show_data_hash md5"));
  for (std::string line; std::getline(text, line);) {
    const std::size_t hash = line.find("MD5:");
    if (hash != std::string::npos) lines += line.substr(hash) + "\n";
  }
  return lines;
}

// A clip of a photograph that moves, 2 s at 25 frames a second, with a tone.
class Clips : public testing::Test {
 protected:
  void SetUp() override {
    ffmpeg("-loop 1 -framerate 25 -t 2 -i " VORTO_PHOTOS
           "/coffee.png -f lavfi -t 2 -i sine=frequency=440 -vf scale=240:160,crop=160:120:x=n:y=10 -c:v libx264 "
           "-pix_fmt yuv420p -colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv -c:a aac " +
           at("in.mp4"));
  }
  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }
  Words render(const std::string& effect, const Words& inputs, const std::string& output,
               const Words& more = {}) const {
    Words words{"render", effect, "--input"};
    words.insert(words.end(), inputs.begin(), inputs.end());
    words.insert(words.end(), {"--output", output});
    words.insert(words.end(), more.begin(), more.end());
    return words;
  }

 private:
  const TemporaryFolder folder_;
};

// The gray of the middle of a picture.
double grayOf(const std::string& path) {
  const TestImage image = readImage(path);
  return image.pixel(image.width / 2, image.height / 2)[0];
}

// A clip without loss whose frame n is gray with n * step.
void countingClip(const std::string& path, int frames, int step, const std::string& rate = "25") {
  ffmpeg("-f lavfi -i color=black:s=16x16:r=" + rate + ",format=gbrp,geq=r=N*" + std::to_string(step) + ":g=N*" +
         std::to_string(step) + ":b=N*" + std::to_string(step) + " -frames:v " + std::to_string(frames) +
         " -c:v ffv1 " + path);
}

TEST_F(Clips, EffectsKeepFramesRateAudioAndColors) {
  for (const char* const effect : {"Gradient Map", "Levels"}) {
    for (const char* const output : {"out.mp4", "out.mkv", "out.mov"}) {
      vortoSucceeds(render(effect, {at("in.mp4")}, at(output), {"--codec", "h264"}));
      EXPECT_EQ(frameCount(at(output)), "50");
      EXPECT_EQ(probed(at(output), "v", "stream=codec_name,width,height,r_frame_rate"), "h264,160,120,25/1");
      EXPECT_EQ(probed(at(output), "v", "stream=color_range,color_space,color_transfer,color_primaries"),
                "tv,bt709,bt709,bt709");
      // The first packet, which only starts the decoder, lies before the start; Matroska cannot place it there.
      const std::string audio = packetHashes(at(output));
      const bool startsLater = std::string(output) == "out.mkv";
      const std::string source = packetHashes(at("in.mp4"));
      EXPECT_EQ(audio, startsLater ? source.substr(source.find('\n') + 1) : source) << output;
    }
  }
}

TEST_F(Clips, NeutralLevelsLeaveLosslessFramesAsTheyAre) {
  for (const char* const format : {"gbrp", "gbrap", "gbrp16le", "gbrap16le"}) {
    const std::string source = at(std::string(format) + ".mkv");
    ffmpeg(
        "-f lavfi -i testsrc2=s=64x48:r=25:d=0.4 -vf \"format=gbrap16le,geq=r='r(X,Y)+X*37':g='g(X,Y)':"
        "b='b(X,Y)+Y*91':a='X*1000+600'\" -pix_fmt " +
        std::string(format) + " -c:v ffv1 " + source);
    vortoSucceeds(render("Levels", {source}, at("out.mkv"), {"--codec", "ffv1"}));
    EXPECT_EQ(frameHashes(at("out.mkv"), format), frameHashes(source, format)) << format;
  }
}

TEST_F(Clips, FramesOfAClipAreThoseOfItsOwnProgram) {
  vortoSucceeds(render("Levels", {at("in.mp4")}, at("f.%02d.png"), {"--frames", "7-9"}));
  ffmpeg("-i " + at("in.mp4") +
         " -vf scale=flags=accurate_rnd+full_chroma_int+full_chroma_inp:in_color_matrix=bt709:in_range=tv,format=gbrp "
         "-start_number 0 " +
         at("g.%02d.png"));
  EXPECT_FALSE(fs::exists(at("f.06.png")) || fs::exists(at("f.10.png")));
  for (const char* const number : {"07", "08", "09"}) {
    const TestImage ours = readImage(at(std::string("f.") + number + ".png"));
    const TestImage theirs = readImage(at(std::string("g.") + number + ".png"));
    ASSERT_EQ(ours.samples.size(), theirs.samples.size());
    double most = 0;
    for (std::size_t i = 0; i < ours.samples.size(); ++i) {
      most = std::max(most, std::abs(ours.samples[i] - theirs.samples[i]));
    }
    EXPECT_LE(most, 1) << number;
  }
}

TEST_F(Clips, PartsAndRates) {
  const std::string in = at("in.mp4");
  vortoSucceeds(render("Levels", {in}, at("part.mp4"), {"--start", "0.4", "--duration", "1"}));
  EXPECT_EQ(frameCount(at("part.mp4")), "25");
  const std::string whole = packetHashes(in);
  const std::string part = packetHashes(at("part.mp4"));
  EXPECT_LT(part.size(), whole.size() * 2 / 3);
  EXPECT_NE(whole.find(part.substr(part.find('\n'))), std::string::npos)
      << "its packets follow one another in the source";

  vortoSucceeds(render("Levels", {in}, at("faster.mp4"), {"--fps", "50"}));
  EXPECT_EQ(probed(at("faster.mp4"), "v", "stream=r_frame_rate"), "50/1");
  EXPECT_EQ(frameCount(at("faster.mp4")), "100");
  EXPECT_EQ(packetHashes(at("faster.mp4")), whole);

  const ProgramRun refused = vorto(render("Levels", {in}, at("slow.mp4"), {"--fps", "12.5", "--retime"}));
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.err.find("--no-audio"), std::string::npos) << refused.err;
  EXPECT_FALSE(fs::exists(at("slow.mp4")));
  vortoSucceeds(render("Levels", {in}, at("slow.mp4"), {"--fps", "12.5", "--retime", "--no-audio"}));
  EXPECT_EQ(frameCount(at("slow.mp4")), "50");
  EXPECT_EQ(probed(at("slow.mp4"), "v", "stream=r_frame_rate,duration"), "25/2,4.000000");
  EXPECT_EQ(probed(at("slow.mp4"), "a", "stream=codec_name"), "");
}

TEST_F(Clips, UnevenTimesStay) {
  ffmpeg("-i " + at("in.mp4") + " -an -vf select='not(eq(mod(n\\,5)\\,3))' -vsync vfr -c:v libx264 " +
         at("uneven.mkv"));
  vortoSucceeds(render("Levels", {at("uneven.mkv")}, at("out.mkv")));
  const std::string times = probed(at("uneven.mkv"), "v", "frame=best_effort_timestamp_time");
  EXPECT_EQ(probed(at("out.mkv"), "v", "frame=best_effort_timestamp_time"), times);
  vortoSucceeds(render("Levels", {at("uneven.mkv")}, at("even.mkv"), {"--fps", "25"}));
  const ProgramRun refused = vorto(render("Levels", {at("uneven.mkv")}, at("out.avi")));
  EXPECT_EQ(refused.exitCode, 2);
  EXPECT_NE(refused.err.find("--fps makes them even"), std::string::npos) << refused.err;
  vortoSucceeds(render("Levels", {at("uneven.mkv")}, at("out.avi"), {"--fps", "25"}));
  EXPECT_EQ(frameCount(at("even.mkv")), "50");
}

TEST_F(Clips, InputsPlayTogether) {
  countingClip(at("short.mkv"), 4, 20);
  for (int frame = 1; frame <= 6; ++frame) {
    const double gray = 100.0 + frame;
    writePng(at("s." + std::to_string(frame) + ".png"), flatImage(16, 16, {gray, gray, gray, 255}));
  }
  const struct {
    const char* mode;
    std::vector<double> shown;
  } cases[] = {{"hold", {0, 20, 40, 60, 60, 60}}, {"loop", {0, 20, 40, 60, 0, 20}}, {"end", {0, 20, 40, 60}}};
  for (const auto& [mode, shown] : cases) {
    const Words more{"--when-short", mode, "--time", "0", "--working-space", "raw"};
    vortoSucceeds(render("Dissolve", {at("short.mkv"), at("s.%d.png")}, at(std::string(mode) + ".%d.png"), more));
    for (std::size_t frame = 0; frame < shown.size(); ++frame) {
      EXPECT_EQ(grayOf(at(std::string(mode) + "." + std::to_string(frame) + ".png")), shown[frame]) << mode << frame;
    }
    EXPECT_FALSE(fs::exists(at(std::string(mode) + "." + std::to_string(shown.size()) + ".png"))) << mode;
  }
  vortoSucceeds(
      render("Dissolve", {at("short.mkv"), at("s.%d.png")}, at("b.%d.png"), {"--time", "1", "--working-space", "raw"}));
  for (int frame = 0; frame < 6; ++frame) EXPECT_EQ(grayOf(at("b." + std::to_string(frame) + ".png")), 101 + frame);
}

TEST_F(Clips, EveryJobCountGivesTheSameFile) {
  std::string first;
  for (const char* const jobs : {"1", "2", "3"}) {
    vortoSucceeds(render("Gradient Map", {at("in.mp4")}, at("out.mov"), {"--jobs", jobs, "--codec", "prores"}));
    const std::string bytes = readFile(at("out.mov"));
    if (first.empty()) first = bytes;
    EXPECT_TRUE(bytes == first) << jobs;
  }
}

TEST_F(Clips, DamagedAndForeignFilesAreToldOf) {
  const std::string out = at("out.mp4");
  ffmpeg("-i " + at("in.mp4") + " -c copy " + at("whole.mkv"));
  const std::string bytes = readFile(at("whole.mkv"));
  writeFile(at("cut.mkv"), bytes.substr(0, bytes.size() / 2));
  const ProgramRun cut = vorto(render("Levels", {at("cut.mkv")}, out, {"--no-audio"}));
  EXPECT_EQ(cut.exitCode, 0);
  EXPECT_NE(cut.err.find("cut.mkv"), std::string::npos) << "it is partial, and said to be: " << cut.err;
  EXPECT_LT(std::stoi(frameCount(out)), 50);

  writeFile(out, "old");
  const std::string whole = readFile(at("in.mp4"));
  writeFile(at("head.mp4"), whole.substr(0, whole.size() / 2));  // what says where the frames are is at the end
  writeFile(at("noise.mkv"), "\x1a\x45\xdf\xa3" + std::string(1000, 'x'));
  for (const char* const name : {"head.mp4", "noise.mkv"}) {
    const ProgramRun run = vorto(render("Levels", {at(name)}, out));
    EXPECT_EQ(run.exitCode, 3) << name;
    EXPECT_NE(run.err.find(name), std::string::npos) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(readFile(out), "old");
  }
  const ProgramRun held = vorto(render("Levels", {at("in.mp4")}, at("out.webm"), {"--codec", "h264"}));
  EXPECT_EQ(held.exitCode, 2);
  const ProgramRun audio = vorto(render("Levels", {at("in.mp4")}, at("out.webm")));
  EXPECT_NE(audio.exitCode, 0);
  EXPECT_NE(audio.err.find("--no-audio"), std::string::npos) << audio.err;
  EXPECT_FALSE(fs::exists(at("out.webm")));
}

}  // namespace
