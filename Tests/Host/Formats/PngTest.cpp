// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Formats/FormatModule.h"

#include <random>

namespace {

using Bytes = FileBytesOfTest;

host::ImageFileModule& png() {
  return moduleNamed("png");
}

void append(Bytes* bytes, std::uint32_t number) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes->push_back(static_cast<std::uint8_t>(number >> shift));
}

void appendChunk(Bytes* file, const std::string& type, const Bytes& data) {
  append(file, static_cast<std::uint32_t>(data.size()));
  Bytes summed(type.begin(), type.end());
  summed.insert(summed.end(), data.begin(), data.end());
  std::uint32_t sum = ~0u;
  for (const std::uint8_t byte : summed) {
    sum ^= byte;
    for (int bit = 0; bit < 8; ++bit) sum = (sum & 1) ? 0xEDB88320u ^ (sum >> 1) : sum >> 1;
  }
  file->insert(file->end(), summed.begin(), summed.end());
  append(file, ~sum);
}

// A zlib stream that stores the bytes as they are.
Bytes stored(const Bytes& bytes) {
  Bytes stream{0x78, 0x01};
  std::size_t at = 0;
  do {
    const std::size_t size = std::min<std::size_t>(bytes.size() - at, 65535);
    const auto low = static_cast<std::uint8_t>(size);
    const auto high = static_cast<std::uint8_t>(size >> 8);
    const std::uint8_t isLast = at + size == bytes.size();
    stream.insert(stream.end(), {isLast, low, high, static_cast<std::uint8_t>(~low), static_cast<std::uint8_t>(~high)});
    stream.insert(stream.end(), &bytes[at], &bytes[at] + size);
    at += size;
  } while (at < bytes.size());
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const std::uint8_t byte : bytes) b = (b + (a = (a + byte) % 65521)) % 65521;
  append(&stream, b << 16 | a);
  return stream;
}

struct Kind {
  int color = 0;  // 0 gray, 2 RGB, 3 palette, 4 gray and alpha, 6 RGBA
  int depth = 8;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool isInterlaced = false;
  bool hasTransparency = false;
  std::string name() const {
    return "color " + std::to_string(color) + " depth " + std::to_string(depth) + ", " + std::to_string(width) + " x " +
           std::to_string(height) + (isInterlaced ? " interlaced" : "") + (hasTransparency ? " tRNS" : "");
  }
};

// All filters, in any order, over bytes of any value: few values, so that keys of transparency are met.
Bytes randomRows(const Kind& kind, std::mt19937* random) {
  struct Pass {
    std::uint32_t x, y, stepX, stepY;
  };
  const std::vector<Pass> interlaced{{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                     {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
  const int samples[] = {1, 0, 3, 1, 2, 0, 4};
  Bytes rows;
  for (const Pass& pass : kind.isInterlaced ? interlaced : std::vector<Pass>{{0, 0, 1, 1}}) {
    const std::uint32_t width = (kind.width + pass.stepX - 1 - pass.x) / pass.stepX;
    const std::uint32_t height = (kind.height + pass.stepY - 1 - pass.y) / pass.stepY;
    if (width == 0) continue;
    const std::size_t size = (width * static_cast<unsigned>(samples[kind.color] * kind.depth) + 7) / 8;
    for (std::uint32_t y = 0; y < height; ++y) {
      const bool isPlain = (*random)() % 2 == 0;
      rows.push_back(static_cast<std::uint8_t>(isPlain ? 0 : (*random)() % 5));
      for (std::size_t i = 0; i < size; ++i) {
        rows.push_back(static_cast<std::uint8_t>(isPlain ? (*random)() % 3 : (*random)()));
      }
    }
  }
  return rows;
}

using Chunks = std::vector<std::pair<std::string, Bytes>>;

// The chunks `before` stand in front of the pixels, which are in parts of `partSize` bytes.
Bytes fileWith(const Kind& kind, const Bytes& stream, const Chunks& before = {}, std::size_t partSize = 1 << 30) {
  Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  Bytes header;
  append(&header, kind.width);
  append(&header, kind.height);
  header.insert(header.end(), {static_cast<std::uint8_t>(kind.depth), static_cast<std::uint8_t>(kind.color), 0, 0,
                               static_cast<std::uint8_t>(kind.isInterlaced)});
  appendChunk(&file, "IHDR", header);
  for (const auto& [type, data] : before) appendChunk(&file, type, data);
  for (std::size_t at = 0; at < stream.size(); at += partSize) {
    const std::size_t size = std::min(partSize, stream.size() - at);
    appendChunk(&file, "IDAT", Bytes(&stream[at], &stream[at] + size));
  }
  appendChunk(&file, "IEND", {});
  return file;
}

Bytes fileOf(const Kind& kind, std::size_t partSize = 1 << 30) {
  std::mt19937 random(static_cast<unsigned>(kind.color * 100 + kind.depth + 1000 * static_cast<int>(kind.width)));
  Chunks chunks;
  if (kind.color == 3) {
    Bytes palette;
    const int entries = std::min(1 << kind.depth, 200);  // some indexes are beyond it
    for (int i = 0; i < 3 * entries; ++i) palette.push_back(static_cast<std::uint8_t>(random()));
    chunks.emplace_back("PLTE", palette);
    if (kind.hasTransparency) chunks.emplace_back("tRNS", Bytes{0, 128});
  } else if (kind.hasTransparency) {
    chunks.emplace_back("tRNS", kind.color == 0 ? Bytes{1, 1} : Bytes{0, 1, 1, 1, 2, 1});
  }
  return fileWith(kind, stored(randomRows(kind, &random)), chunks, partSize);
}

std::vector<Kind> allKinds() {
  const std::vector<std::pair<int, std::vector<int>>> depths{
      {0, {1, 2, 4, 8, 16}}, {2, {8, 16}}, {3, {1, 2, 4, 8}}, {4, {8, 16}}, {6, {8, 16}}};
  std::vector<Kind> kinds;
  for (const auto& [color, ofColor] : depths) {
    for (const int depth : ofColor) {
      for (const bool isInterlaced : {false, true}) {
        for (const bool hasTransparency : {false, true}) {
          if (hasTransparency && color > 3) continue;
          for (const std::uint32_t width : {1u, 2u, 3u, 5u, 33u, 258u}) {
            kinds.push_back({color, depth, width, width % 7 + 2, isInterlaced, hasTransparency});
          }
        }
      }
    }
  }
  return kinds;
}

}  // namespace

TEST(Png, EveryKindIsReadAsTheOtherLibraryReadsIt) {
  for (const Kind& kind : allKinds()) {
    const Bytes file = fileOf(kind, kind.width == 5 ? 3 : 1 << 30);
    const ReadPicture picture = readPicture(png(), file);
    expectSamePicture(picture, readByOracle(file, "png"), kind.name());
    EXPECT_EQ(host::isGray(picture.info.channels), kind.color == 0 || kind.color == 4) << kind.name();
    EXPECT_EQ(host::hasAlpha(picture.info.channels), picture.info.alpha != host::AlphaKind::None) << kind.name();
  }
}
