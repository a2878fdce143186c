// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/TestImages.h"

#include "Tests/Host/Program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>

namespace {

enum Tag : std::uint16_t {
  Width = 256,
  Height = 257,
  BitsPerSample = 258,
  Compression = 259,
  Photometric = 262,
  StripOffsets = 273,
  Orientation = 274,
  SamplesPerPixel = 277,
  RowsPerStrip = 278,
  StripByteCounts = 279,
  PlanarConfiguration = 284,
  ExtraSamples = 338,
  SampleFormat = 339,
};

void appendLittle(std::string& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

void appendBig(std::string& bytes, std::uint64_t value, int count) {
  for (int i = count - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

std::uint64_t little(const std::string& bytes, std::size_t at, std::size_t count) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < count; ++i)
    value |= std::uint64_t{static_cast<unsigned char>(bytes.at(at + i))} << (8 * i);
  return value;
}

std::uint64_t bitsOf(double value, int bits) {
  if (bits != 32) return static_cast<std::uint64_t>(value);
  const auto single = static_cast<float>(value);
  std::uint32_t pattern;
  std::memcpy(&pattern, &single, 4);
  return pattern;
}

double valueOf(std::uint64_t pattern, int bits) {
  if (bits != 32) return static_cast<double>(pattern);
  const auto low = static_cast<std::uint32_t>(pattern);
  float single;
  std::memcpy(&single, &low, 4);
  return single;
}

std::uint32_t checksum(const std::string& bytes) {
  std::uint32_t sum = 0xFFFFFFFFu;
  for (const char byte : bytes) {
    sum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) sum = (sum & 1) ? 0xEDB88320u ^ (sum >> 1) : sum >> 1;
  }
  return ~sum;
}

std::string pngChunk(const std::string& type, const std::string& data) {
  std::string chunk;
  appendBig(chunk, data.size(), 4);
  chunk += type + data;
  appendBig(chunk, checksum(type + data), 4);
  return chunk;
}

// A zlib stream of one stored block: at most 65535 bytes.
std::string stored(const std::string& data) {
  std::uint32_t a = 1;
  std::uint32_t b = 0;
  for (const char byte : data) {
    a = (a + static_cast<unsigned char>(byte)) % 65521;
    b = (b + a) % 65521;
  }
  std::string stream = "\x78\x01\x01";
  appendLittle(stream, data.size(), 2);
  appendLittle(stream, ~data.size(), 2);
  stream += data;
  appendBig(stream, b << 16 | a, 4);
  return stream;
}

}  // namespace

std::array<double, 4> TestImage::pixel(std::uint32_t x, std::uint32_t y) const {
  std::array<double, 4> values{};
  for (std::size_t i = 0; i < 4; ++i) values[i] = samples.at(4 * (std::size_t{y} * width + x) + i);
  return values;
}

TestImage variedImage(std::uint32_t width, std::uint32_t height, int bits, bool halves) {
  TestImage image{width, height, bits, {}};
  const double full = bits == 8 ? 255 : bits == 16 ? 65535 : 1;
  std::uint32_t state = 12345;
  const auto random = [&state] {
    state = state * 1664525u + 1013904223u;
    return (state >> 8) / 16777216.0;
  };
  for (std::uint32_t i = 0; i < width * height; ++i) {
    double alpha = i == 0 ? 1 : i == 1 ? 0 : i == 2 ? 0.5 : random();
    if (bits == 32) alpha = std::round(alpha * 256) / 256;
    alpha = bits == 32 ? alpha : std::round(alpha * full);
    for (int c = 0; c < 3; ++c) {
      double color = random() * alpha;
      if (bits != 32) color = std::round(color);
      if (bits == 32 && halves) color = std::round(color * 512) / 512;
      if (bits == 32 && i == 5) color = c == 0 ? -0.25 : 2.5;
      image.samples.push_back(bits == 32 ? static_cast<float>(color) : color);
    }
    image.samples.push_back(alpha);
  }
  return image;
}

TestImage opaque(TestImage image) {
  for (std::size_t i = 3; i < image.samples.size(); i += 4)
    image.samples[i] = image.bits == 8 ? 255 : image.bits == 16 ? 65535 : 1;
  return image;
}

void writeTiff(const std::string& path, const TestImage& image, TiffAlpha alpha, int orientation) {
  std::string pixels;
  for (const double value : image.samples) appendLittle(pixels, bitsOf(value, image.bits), image.bits / 8);
  constexpr std::uint32_t bitsAt = 8;  // four shorts
  constexpr std::uint32_t formatsAt = 16;
  constexpr std::uint32_t pixelsAt = 24;
  struct Entry {
    Tag tag;
    std::uint16_t type;  // 3: 16 bits, 4: 32 bits
    std::uint32_t count;
    std::uint32_t value;
  };
  const Entry entries[] = {
      {Width, 4, 1, image.width},
      {Height, 4, 1, image.height},
      {BitsPerSample, 3, 4, bitsAt},
      {Compression, 3, 1, 1},
      {Photometric, 3, 1, 2},
      {StripOffsets, 4, 1, pixelsAt},
      {Orientation, 3, 1, static_cast<std::uint32_t>(orientation)},
      {SamplesPerPixel, 3, 1, 4},
      {RowsPerStrip, 4, 1, image.height},
      {StripByteCounts, 4, 1, static_cast<std::uint32_t>(pixels.size())},
      {PlanarConfiguration, 3, 1, 1},
      {ExtraSamples, 3, 1, static_cast<std::uint32_t>(alpha)},
      {SampleFormat, 3, 4, formatsAt},
  };
  std::string file = std::string("II\x2a\0", 4);
  appendLittle(file, pixelsAt + pixels.size(), 4);
  for (int i = 0; i < 4; ++i) appendLittle(file, static_cast<std::uint64_t>(image.bits), 2);
  for (int i = 0; i < 4; ++i) appendLittle(file, image.bits == 32 ? 3 : 1, 2);
  file += pixels;
  appendLittle(file, std::size(entries), 2);
  for (const Entry& entry : entries) {
    appendLittle(file, entry.tag, 2);
    appendLittle(file, entry.type, 2);
    appendLittle(file, entry.count, 4);
    appendLittle(file, entry.value, 4);
  }
  appendLittle(file, 0, 4);
  writeFile(path, file);
}

TestImage readTiff(const std::string& path) {
  const std::string file = readFile(path);
  TestImage image;
  try {
    std::map<int, std::vector<std::uint64_t>> tags;
    const std::size_t directory = little(file, 4, 4);
    for (std::size_t i = 0; i < little(file, directory, 2); ++i) {
      const std::size_t entry = directory + 2 + 12 * i;
      const std::size_t size = little(file, entry + 2, 2) == 3 ? 2 : 4;
      const std::size_t count = little(file, entry + 4, 4);
      const std::size_t at = size * count <= 4 ? entry + 8 : little(file, entry + 8, 4);
      if (little(file, entry + 2, 2) != 3 && little(file, entry + 2, 2) != 4) continue;
      for (std::size_t j = 0; j < count; ++j)
        tags[static_cast<int>(little(file, entry, 2))].push_back(little(file, at + size * j, size));
    }
    EXPECT_EQ(tags[Compression], std::vector<std::uint64_t>{1});
    EXPECT_EQ(tags[ExtraSamples], std::vector<std::uint64_t>{1}) << "alpha is stored premultiplied";
    image.width = static_cast<std::uint32_t>(tags[Width].at(0));
    image.height = static_cast<std::uint32_t>(tags[Height].at(0));
    image.bits = static_cast<int>(tags[BitsPerSample].at(0));
    const auto bytes = static_cast<std::size_t>(image.bits / 8);
    for (std::size_t strip = 0; strip < tags[StripOffsets].size(); ++strip) {
      const std::size_t begin = tags[StripOffsets][strip];
      for (std::size_t at = begin; at < begin + tags[StripByteCounts].at(strip); at += bytes) {
        image.samples.push_back(valueOf(little(file, at, bytes), image.bits));
      }
    }
    EXPECT_EQ(image.samples.size(), std::size_t{4} * image.width * image.height);
  } catch (const std::out_of_range&) {
    ADD_FAILURE() << path << " is no TIFF that the test reads";
  }
  return image;
}

void writePng(const std::string& path, const TestImage& image) {
  std::string header;
  appendBig(header, image.width, 4);
  appendBig(header, image.height, 4);
  header += static_cast<char>(image.bits);
  header += std::string("\x06\0\0\0", 4);  // RGBA
  std::string rows;
  const std::size_t rowSamples = std::size_t{4} * image.width;
  for (std::size_t i = 0; i < image.samples.size(); ++i) {
    if (i % rowSamples == 0) rows += '\0';  // not filtered
    appendBig(rows, bitsOf(image.samples[i], image.bits), image.bits / 8);
  }
  writeFile(path,
            "\x89PNG\r\n\x1a\n" + pngChunk("IHDR", header) + pngChunk("IDAT", stored(rows)) + pngChunk("IEND", ""));
}
