// SPDX-License-Identifier: BSD-3-Clause
#include "WriteSupport.h"

#include "Host/Messages/Failure.h"

#include <cstdio>
#include <numeric>

namespace clips {

namespace fs = std::filesystem;

Folder::Folder() {
  path_ = (fs::temp_directory_path() / "vorto-clips-XXXXXX").string();
  EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

Folder::~Folder() {
  fs::remove_all(path_);
}

std::vector<std::string> Folder::names() const {
  std::vector<std::string> result;
  for (const auto& entry : fs::directory_iterator(path_)) result.push_back(entry.path().filename());
  return result;
}

host::FrameKind kindOf(std::uint32_t width, std::uint32_t height, int bits, bool hasAlpha) {
  return {width, height, bits == 8 ? host::SampleType::UInt8 : host::SampleType::UInt16,
          hasAlpha ? host::Channels::RGBA : host::Channels::RGB,
          hasAlpha ? host::AlphaKind::Straight : host::AlphaKind::None};
}

Frame chart(const host::FrameKind& kind, int number) {
  Frame frame(kind.bytes());
  std::size_t at = 0;
  const auto put = [&](double value) {
    if (kind.sample == host::SampleType::UInt8) {
      frame[at++] = static_cast<std::uint8_t>(std::lround(value * 255));
      return;
    }
    const auto sample = static_cast<std::uint16_t>(std::lround(value * 65535));
    std::memcpy(&frame[at], &sample, 2);
    at += 2;
  };
  for (std::uint32_t y = 0; y < kind.height; ++y) {
    for (std::uint32_t x = 0; x < kind.width; ++x) {
      const double u = (x + 0.5) / kind.width;
      const double v = (y + 0.5) / kind.height;
      const bool isEdge = (x + static_cast<std::uint32_t>(number)) / 8 % 2 == 0 && v > 0.75;
      put(isEdge ? 1 : 0.5 + 0.5 * std::sin(6 * u + 0.3 * number));
      put(isEdge ? 0 : v);
      put(isEdge ? 0.5 : 0.5 + 0.5 * std::cos(5 * v - 4 * u + 0.2 * number));
      if (hasAlpha(kind.channels)) put((x + y * kind.width) % 256 / 255.0);
    }
  }
  return frame;
}

host::ClipTarget targetFor(const std::string& path, const std::string& codec, int bits, bool hasAlpha) {
  host::ClipTarget target;
  target.path = path;
  target.container = fs::path(path).extension().string().substr(1);
  target.settings.codec = codec;
  target.rate = {25, 1};
  target.timeBase = {1, 25};
  target.kind = kindOf(codec == "dnxhr" ? 256 : 64, codec == "dnxhr" ? 120 : 48, bits, hasAlpha);
  target.bits = bits;
  return target;
}

void write(const host::ClipTarget& target, std::vector<std::int64_t> times) {
  if (times.empty()) {
    times.resize(13);
    std::iota(times.begin(), times.end(), 0);
  }
  host::FrameSlots slots(2);
  host::ClipWriter writer(target, slots);
  for (std::size_t i = 0; i + 1 < times.size(); ++i) {
    if (i >= slots.count()) {
      EXPECT_EQ(writer.written(), i % slots.count());
    }
    const Frame frame = chart(target.kind, static_cast<int>(i));
    std::memcpy(slots.fill(i % slots.count(), target.kind), frame.data(), frame.size());
    writer.write(i % slots.count(), times[i]);
  }
  writer.finish(times.back());
}

std::string failureOf(const host::ClipTarget& target, const std::vector<std::int64_t>& times) {
  try {
    write(target, times);
  } catch (const host::Failure& failure) {
    return failure.what();
  }
  return "";
}

std::string run(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string result;
  std::array<char, 65536> part;
  for (std::size_t size = 0; (size = fread(part.data(), 1, part.size(), pipe)) > 0;) result.append(part.data(), size);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return result;
}

nlohmann::json probe(const std::string& path, const std::string& arguments) {
  return nlohmann::json::parse(run("ffprobe -v error -of json " + arguments + " '" + path + "'"));
}

nlohmann::json video(const std::string& path) {
  return probe(path, "-count_frames -select_streams v -show_streams").at("streams").at(0);
}

Frame decoded(const std::string& path, const std::string& pixelFormat, const std::string& decoder) {
  const std::string bytes = run("ffmpeg -v error " + (decoder.empty() ? "" : "-c:v " + decoder) + " -i '" + path +
                                "' -fps_mode passthrough -f rawvideo -pix_fmt " + pixelFormat + " -");
  return {bytes.begin(), bytes.end()};
}

}  // namespace clips
