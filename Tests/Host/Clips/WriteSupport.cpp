// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Clips/WriteSupport.h"

#include "Host/Messages/Failure.h"

#include <numeric>

host::FrameKind frameKind(std::uint32_t width, std::uint32_t height, int bits, bool hasAlpha) {
  return {width, height, bits == 8 ? host::SampleType::UInt8 : host::SampleType::UInt16,
          hasAlpha ? host::Channels::RGBA : host::Channels::RGB,
          hasAlpha ? host::AlphaKind::Straight : host::AlphaKind::None};
}

std::string chart(const host::FrameKind& kind, int number) {
  std::string frame;
  const auto put = [&](double value) {
    const bool isDeep = kind.sample == host::SampleType::UInt16;
    const auto sample = static_cast<unsigned>(std::lround(value * (isDeep ? 65535 : 255)));
    frame += static_cast<char>(sample & 0xff);
    if (isDeep) frame += static_cast<char>(sample >> 8);
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

double sampleAt(const std::string& samples, std::size_t place, bool isDeep) {
  const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(samples.at(at)); };
  return isDeep ? byte(2 * place) + 256 * byte(2 * place + 1) : byte(place);
}

host::ClipTarget targetFor(const std::string& path, const std::string& codec, int bits, bool hasAlpha) {
  host::ClipTarget target;
  target.path = path;
  target.container = std::filesystem::path(path).extension().string().substr(1);
  target.settings.codec = codec;
  target.rate = {25, 1};
  target.timeBase = {1, 25};
  target.kind = codec == "dnxhr" ? frameKind(256, 120, bits, hasAlpha) : frameKind(64, 48, bits, hasAlpha);
  target.bits = bits;
  return target;
}

void write(const host::ClipTarget& target, std::vector<std::int64_t> times) {
  if (times.empty()) {
    times.resize(13);
    std::iota(times.begin(), times.end(), 0);
  }
  host::FrameSlots slots(2);
  host::ClipWriter writer(target, slots, kPatience);
  for (std::size_t i = 0; i + 1 < times.size(); ++i) {
    const std::size_t slot = i % slots.count();
    if (i >= slots.count() && writer.written() != slot) FAIL() << "slots come back in another order";
    const std::string frame = chart(target.kind, static_cast<int>(i));
    std::memcpy(slots.fill(slot, target.kind), frame.data(), frame.size());
    writer.write(slot, times[i]);
  }
  writer.finish(times.back());
}

std::string failureOf(const std::function<void()>& action) {
  try {
    action();
    return "";
  } catch (const host::Failure& failure) {
    return failure.what();
  }
}

nlohmann::json probe(const std::string& path, const std::string& arguments) {
  const TemporaryFolder folder;
  const std::string command = "ffprobe -v error -of json " + arguments + " " + path + " >" + folder.path("found");
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  return nlohmann::json::parse(contentsOf(folder.path("found")));
}

nlohmann::json video(const std::string& path) {
  return probe(path, "-count_frames -select_streams v -show_streams").at("streams").at(0);
}
