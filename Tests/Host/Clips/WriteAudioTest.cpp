// SPDX-License-Identifier: BSD-3-Clause
// Audio goes from clip to clip as it is, and stays in sync.
#include "Host/Messages/Remark.h"
#include "Tests/Host/Clips/WriteSupport.h"

#include <sys/stat.h>

namespace {

struct Packet {
  double time = 0;
  double duration = 0;
  std::string hash;
};

std::vector<Packet> packetsOf(const std::string& path, const std::string& stream) {
  std::vector<Packet> packets;
  const auto found = probe(path, "-show_packets -show_data_hash md5 -select_streams " + stream);
  for (const auto& packet : found.at("packets")) {
    packets.push_back({std::stod(packet.at("pts_time").get<std::string>()),
                       std::stod(packet.at("duration_time").get<std::string>()), packet.at("data_hash")});
  }
  return packets;
}

// Three seconds of video and audio.
void makeSource(const std::string& path, const std::string& arguments) {
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=3 -f lavfi -i sine=440:d=3:r=48000 " + arguments + " " + path);
}

struct Copied {
  const char* name;
  const char* source;     // its name
  const char* arguments;  // of ffmpeg: how it is made
  const char* target;     // its extension
  double start;
  double duration;   // 0: to the end of the video
  double inSync;     // how exact times are, in seconds
  bool isUntouched;  // else packets lose a header that only the source's kind of file needs
};

class WriteAudio : public testing::TestWithParam<Copied> {};

// All packets that begin within the video, and nothing else; where the file can say that it is not heard, the one
// before.
TEST_P(WriteAudio, IsCopiedInSync) {
  const Copied& copied = GetParam();
  const TemporaryFolder folder;
  const std::string source = folder.path(copied.source);
  makeSource(source, copied.arguments);
  host::ClipTarget target = targetFor(folder.path("out." + std::string(copied.target)));
  target.audio = host::ClipAudio{source, copied.start, std::nullopt};
  if (copied.duration > 0) target.audio->duration = copied.duration;
  host::ClipWriter::checkAudio(target, kPatience);
  std::vector<std::int64_t> times(26);
  std::iota(times.begin(), times.end(), 0);
  write(target, times);

  EXPECT_EQ(packetsOf(target.path, "v:0").at(0).time, 0);
  const double start = packetsOf(source, "v:0").at(0).time + copied.start;
  const double end = copied.duration > 0 ? copied.duration : 1;
  const bool hasEditLists = std::string(copied.target) == "mp4" || std::string(copied.target) == "mov";
  std::vector<Packet> expected;
  for (Packet packet : packetsOf(source, "a:0")) {
    packet.time -= start;
    const double earliest = hasEditLists ? -packet.duration : std::string(copied.target) == "webm" ? -0.0075 : -0.0005;
    if (packet.time > earliest - 0.0006 && packet.time < end) expected.push_back(packet);
  }
  const std::vector<Packet> found = packetsOf(target.path, "a:0");
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i].time, expected[i].time, copied.inSync) << i;
    EXPECT_EQ(found[i].hash == expected[i].hash, copied.isUntouched) << i;
  }
  runFfmpeg("-i " + target.path + " -f null -");
}

INSTANTIATE_TEST_SUITE_P(
    All, WriteAudio,
    testing::Values(Copied{"aac", "in.mp4", "-c:a aac", "mp4", 0, 0, 0.0001, true},
                    Copied{"aac_cut", "in.mp4", "-c:a aac", "mp4", 0.52, 0.4, 0.0001, true},
                    Copied{"aac_to_matroska", "in.mp4", "-c:a aac", "mkv", 0, 0, 0.0006, true},
                    Copied{"aac_of_matroska_cut", "in.mkv", "-c:a aac", "mp4", 2.2, 0, 0.0006, true},
                    Copied{"aac_of_a_stream", "in.ts", "-c:a aac", "mp4", 0.52, 0, 0.0006, false},
                    Copied{"opus", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "webm", 0, 0, 0.0011, true},
                    Copied{"opus_cut", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "webm", 2.2, 0, 0.0011, true},
                    Copied{"opus_to_mp4", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "mp4", 0, 0, 0.0011, true},
                    Copied{"pcm", "in.mov", "-c:a pcm_s16le", "mov", 0.52, 0, 0.0001, true},
                    Copied{"pcm_to_avi", "in.mov", "-c:a pcm_s16le", "avi", 0.52, 0, 0.0214, true},
                    Copied{"pcm_of_24_bits_to_avi", "in.mov", "-c:a pcm_s24le", "avi", 0.52, 0, 0.0214, true},
                    Copied{"mp2_to_avi", "in.mkv", "-c:a mp2", "avi", 0.52, 0, 0.0241, true},
                    Copied{"mp3_to_avi", "in.mkv", "-c:a libmp3lame", "avi", 0.52, 0, 0.0241, true}),
    [](const auto& each) { return each.param.name; });

// Every track, with its language, and what is only audio.
TEST(WriteAudioTracks, AllOfThemWithWhatIsSaidOfThem) {
  const TemporaryFolder folder;
  const std::string source = folder.path("in.mkv");
  makeSource(source,
             "-map 0 -map 1 -map 1 -c:a flac -metadata:s:a:0 language=deu -metadata:s:a:1 language=fra "
             "-disposition:a:1 default+comment -disposition:a:0 0");
  host::ClipTarget target = targetFor(folder.path("out.mkv"));
  target.audio = host::ClipAudio{source, 0, std::nullopt};
  write(target);
  const auto found = probe(target.path, "-show_streams -select_streams a").at("streams");
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].at("tags").at("language"), "deu");
  EXPECT_EQ(found[1].at("tags").at("language"), "fra");
  EXPECT_EQ(found[0].at("disposition").at("default"), 0);
  EXPECT_EQ(found[1].at("disposition").at("default"), 1);
  EXPECT_EQ(found[1].at("disposition").at("comment"), 1);

  runFfmpeg("-f lavfi -i sine=440:d=3:r=48000 " + folder.path("alone.wav"));
  target.path = folder.path("alone.mkv");
  target.audio->path = folder.path("alone.wav");
  write(target);
  EXPECT_EQ(packetsOf(target.path, "a:0").at(0).time, 0);
}

TEST(WriteAudioTracks, WhatCannotGoIntoTheFileIsToldBeforehand) {
  const TemporaryFolder folder;
  const std::string source = folder.path("in.mp4");
  makeSource(source, "-c:a aac");
  runFfmpeg("-f lavfi -i testsrc2=s=64x48:r=25:d=1 " + folder.path("silent.mp4"));
  folder.write("text.mp4", "no clip at all");
  ASSERT_EQ(mkfifo(folder.path("pipe.wav").c_str(), 0600), 0);
  const auto failure = [&](const std::string& extension, const std::string& audio) {
    host::ClipTarget target = targetFor(folder.path("out." + extension));
    target.audio = host::ClipAudio{audio, 0, std::nullopt};
    return failureOf([&] { host::ClipWriter::checkAudio(target, kPatience); });
  };
  EXPECT_EQ(failure("mp4", source), "");
  EXPECT_EQ(failure("webm", source), source + ": WebM does not hold its AAC audio: give --no-audio to leave it out");
  EXPECT_EQ(failure("avi", source), source + ": AVI does not hold its AAC audio: give --no-audio to leave it out");
  EXPECT_EQ(failure("mp4", folder.path("silent.mp4")), folder.path("silent.mp4") + ": it has no audio");
  EXPECT_NE(failure("mp4", folder.path("text.mp4")).find("text.mp4: its audio cannot be read"), std::string::npos);
  EXPECT_EQ(failure("mp4", folder.path("pipe.wav")),
            folder.path("pipe.wav") + ": its audio cannot be read: it is no regular file");
  EXPECT_NE(failure("mp4", folder.path("none.mp4")).find("No such file or directory"), std::string::npos);
}

// A broadcast that was received badly: what came through is there, and the rest is told of by the source's name.
TEST(WriteAudioTracks, DamagedPacketsAreLeftOut) {
  const TemporaryFolder folder;
  const std::string source = folder.path("in.ts");
  makeSource(source, "-c:a aac");
  std::string bytes = contentsOf(source);
  // Of the stream of audio one packet is lost, and another holds something else.
  int audio = 0;
  std::string kept;
  for (std::size_t at = 0; at + 188 <= bytes.size(); at += 188) {
    const bool isAudio = (bytes[at + 1] & 0x1f) == 1 && static_cast<unsigned char>(bytes[at + 2]) == 1;
    if (isAudio && ++audio == 60) continue;
    if (isAudio && audio == 90) std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at) + 8, 180, '\0');
    kept += bytes.substr(at, 188);
  }
  ASSERT_GT(audio, 100);
  folder.write("in.ts", kept);
  for (const char* name : {"out.mkv", "out.mp4"}) {
    host::ClipTarget target = targetFor(folder.path(name));
    target.audio = host::ClipAudio{source, 0, std::nullopt};
    std::vector<std::int64_t> times(71);
    std::iota(times.begin(), times.end(), 0);
    std::string said;
    {
      const host::RemarksRedirected redirected([&](const host::Remark& remark) { said += remark.text; });
      write(target, times);
    }
    EXPECT_EQ(said.find(source + ": "), 0u) << said;
    EXPECT_NE(said.find(" packets of its audio are damaged and left out"), std::string::npos) << said;
    EXPECT_EQ(video(target.path).at("nb_read_frames"), "70");
    EXPECT_GT(packetsOf(target.path, "a:0").size(), 90u);
  }
}

}  // namespace
