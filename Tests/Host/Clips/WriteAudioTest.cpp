// SPDX-License-Identifier: BSD-3-Clause
// Audio goes from clip to clip as it is, and stays in sync.
#include "Host/Messages/Failure.h"
#include "WriteSupport.h"

namespace {

using namespace clips;

struct Packet {
  double time = 0;
  double duration = 0;
  std::string hash;
};

std::vector<Packet> packetsOf(const std::string& path, const std::string& stream = "a:0") {
  const auto found = probe(path, "-show_packets -show_data_hash md5 -select_streams " + stream).at("packets");
  std::vector<Packet> packets;
  for (const auto& packet : found) {
    packets.push_back({std::stod(packet.at("pts_time").get<std::string>()),
                       std::stod(packet.at("duration_time").get<std::string>()), packet.at("data_hash")});
  }
  return packets;
}

struct Copied {
  const char* name;
  const char* source;     // its name
  const char* arguments;  // of ffmpeg: how it is made
  const char* target;     // its extension
  double start;
  double duration;  // 0: to the end
};

class WriteAudio : public testing::TestWithParam<Copied> {};

TEST_P(WriteAudio, IsCopiedInSync) {
  const Copied& copied = GetParam();
  const Folder folder;
  const std::string source = folder / copied.source;
  run("ffmpeg -v error -f lavfi -i testsrc2=s=64x48:r=25:d=3 -f lavfi -i sine=440:d=3:r=48000 -map 0 -map 1 -shortest " +
      std::string(copied.arguments) + " '" + source + "'");
  host::ClipTarget target = targetFor(folder / ("out." + std::string(copied.target)));
  target.audio = host::ClipAudio{source, copied.start, std::nullopt};
  if (copied.duration > 0) target.audio->duration = copied.duration;
  host::ClipWriter::checkAudio(target);
  std::vector<std::int64_t> times(26);
  std::iota(times.begin(), times.end(), 0);
  write(target, times);

  const double sourceFirst = packetsOf(source, "v:0").at(0).time;
  const double shift = sourceFirst + copied.start;
  const double targetFirst = packetsOf(target.path, "v:0").at(0).time;
  printf("%s: source first %g target first %g\n", copied.name, sourceFirst, targetFirst);
  const double end = copied.duration > 0 ? copied.duration : 1;
  std::vector<Packet> expected;
  for (const Packet& packet : packetsOf(source)) {
    printf("S %.4f %.4f %s\n", packet.time - shift, packet.duration, packet.hash.c_str());
    if (packet.time - shift > -0.001 && packet.time - shift < end) expected.push_back(packet);
    if (packet.time -shift > end) break;
  }
  const std::vector<Packet> found = packetsOf(target.path);
  for (const Packet& packet : found) {
    printf("T %.4f %.4f %s\n", packet.time - targetFirst, packet.duration, packet.hash.c_str());
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, WriteAudio,
    testing::Values(Copied{"mp4", "in.mp4", "-c:a aac", "mp4", 0, 0}, Copied{"mp4cut", "in.mp4", "-c:a aac", "mp4", 0.52, 0.4},
                    Copied{"mp4tomkv", "in.mp4", "-c:a aac", "mkv", 0, 0},
                    Copied{"mkvtomp4", "in.mkv", "-c:a aac", "mp4", 0.52, 0},
                    Copied{"ts", "in.ts", "-c:a aac", "mp4", 0.52, 0},
                    Copied{"tsmkv", "in.ts", "-c:a aac", "mkv", 0.52, 0},
                    Copied{"webm", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "webm", 0, 0},
                    Copied{"webmcut", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "webm", 2.2, 0},
                    Copied{"webmtomp4", "in.webm", "-c:v libvpx-vp9 -c:a libopus", "mp4", 0, 0},
                    Copied{"pcm", "in.mov", "-c:a pcm_s16le", "mov", 0.52, 0},
                    Copied{"avi", "in.mov", "-c:a pcm_s16le", "avi", 0.52, 0},
                    Copied{"mp3", "in.mkv", "-c:a libmp3lame", "avi", 0.52, 0}),
    [](const auto& each) { return each.param.name; });

}  // namespace
