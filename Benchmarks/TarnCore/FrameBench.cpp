// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/TarnCore/FrameBench.h"

#include "Benchmarks/Turns.h"

#include <Imath/half.h>

#include <algorithm>
#include <cstring>

namespace {

using Format = VortoPixelFormat;
using Bitmap = std::unique_ptr<VortoBitmap>;

FrameSize shaped(FrameSize frame, Shape shape) {
  switch (shape) {
    case Shape::Whole:
      return frame;
    case Shape::Cropped:
      return {frame.width * 3 / 4, frame.height * 3 / 4};
    case Shape::Scaled:  // to the next smaller of the usual sizes
      return frame.width > 1920 ? FrameSize{1920, 1080} : FrameSize{1280, 720};
  }
  return frame;
}

// Integers of any value, floats of 0 to 1 (others could be slow for reasons of their own).
Bitmap randomBitmap(FrameSize size, Format::Code code) {
  Bitmap bitmap(TCCreateBitmap(size.width, size.height, code));
  std::uint64_t state = 88172645463325252u;
  const auto next = [&state] {
    state ^= state << 13;
    state ^= state >> 7;
    return state ^= state << 17;
  };
  const auto fill = [&](auto make) {
    using Value = decltype(make());
    for (std::size_t i = 0; i + sizeof(Value) <= bitmap->accessibleBytes(); i += sizeof(Value)) {
      const Value value = make();
      std::memcpy(bitmap->data + i, &value, sizeof value);
    }
  };
  const auto unit = [&] { return static_cast<float>(next() >> 40) * 0x1p-24f; };
  if (code == Format::RGBAFloat) {
    fill(unit);
  } else if (code == Format::RGBAHalfFloat) {
    fill([&] { return half(unit()).bits(); });
  } else {
    fill(next);
  }
  return bitmap;
}

// The picture that effects mostly see: 80 of 100 pixels opaque, 15 clear, and an edge between them.
void makeMostlyOpaque(VortoBitmap& bitmap) {
  const std::size_t alpha = bitmap.formatCode == Format::ARGB8 ? 0 : 3;
  for (std::uint32_t y = 0; y < bitmap.height; ++y) {
    for (std::uint32_t x = 0; x < bitmap.width; ++x) {
      const std::uint32_t position = x * 100 / bitmap.width;
      bitmap.data[4 * (std::size_t{y} * bitmap.width + x) + alpha] =
          position < 80   ? 255
          : position < 85 ? static_cast<std::uint8_t>(255 - 50 * (position - 80))
                          : 0;
    }
  }
}

std::vector<Peer> peersOf(const Row& row) {
  std::vector<Peer> peers = plainPeers(row);
  peers.push_back({"libyuv", libyuvWork(row)});
  peers.push_back({"OpenCV", openCVWork(row)});
  peers.push_back({"libswscale", swscaleWork(row)});
  std::erase_if(peers, [](const Peer& peer) { return !peer.work; });
  return peers;
}

struct RowFrames {
  RowFrames(const Row& row, FrameSize frame)
      : destination(randomBitmap(shaped(frame, row.shape), row.destination)),
        source(row.inPlace ? nullptr : randomBitmap(frame, row.source)) {
    if (row.mostlyOpaque) makeMostlyOpaque(source ? *source : *destination);
  }
  std::function<void()> bound(const Work& work) const {
    VortoBitmap& from = source ? *source : *destination;
    return [this, &work, &from] { work(*destination, from); };
  }
  double traffic(const Row& row) const {
    const VortoBitmap& from = source ? *source : *destination;
    const double pixels = double{1} * destination->width * destination->height;
    const auto pixelBytes = [](const VortoBitmap& b) { return b.channels * b.bitsPerChannel / 8; };
    return pixels * (row.frameReads * pixelBytes(from) + row.frameWrites * pixelBytes(*destination));
  }
  Bitmap destination, source;
};

void measure(benchmark::State& state, const Row& row, FrameSize frame) {
  const int rounds = frame.width > 1920 ? 9 : 15;
  const RowFrames frames(row, frame);
  const Bitmap copySource = randomBitmap(frame, Format::RGBA8);
  const Bitmap copy = randomBitmap(frame, Format::RGBA8);
  const std::vector<Peer> peers = peersOf(row);

  std::vector<Contestant> contestants;
  contestants.push_back({"vorto", frames.bound(row.work)});
  contestants.push_back({"memcpy", [&] { std::memcpy(copy->data, copySource->data, copy->getSize()); }});
  for (const Peer& peer : peers) contestants.push_back({peer.name, frames.bound(peer.work)});
  measureInTurns(state, std::move(contestants), rounds, frames.traffic(row));
}

void registerTable(const std::string& table, FrameSize frame) {
  for (const auto make : {inPlaceRows, copyRows, scaleRows, depthRows, wholeRows}) {
    for (const Row& row : make()) {
      benchmark::RegisterBenchmark((table + "/" + row.name).c_str(),
                                   [row, frame](benchmark::State& state) { measure(state, row, frame); })
          ->Iterations(1)
          ->Repetitions(1)
          ->UseManualTime()
          ->Unit(benchmark::kMillisecond);
    }
  }
}

const bool registered = [] {
  registerTable("Frames of 1920 x 1080", {1920, 1080});
  registerTable("Frames of 3840 x 2160", {3840, 2160});
  return true;
}();

}  // namespace

const char* layoutName(Format::Code code) {
  switch (code) {
    case Format::RGBA8:
      return "RGBA8";
    case Format::ARGB8:
      return "ARGB8";
    case Format::YUV8:
      return "YUV8";
    case Format::RGBA16:
      return "RGBA16";
    case Format::RGB16:
      return "RGB16";
    case Format::LuminanceAlpha16:
      return "LA16";
    case Format::Luminance16:
      return "L16";
    case Format::RGBAHalfFloat:
      return "half";
    case Format::RGBAFloat:
      return "float";
    default:
      return "?";
  }
}
