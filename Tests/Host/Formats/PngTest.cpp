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
    EXPECT_EQ(readPicture(png(), file, {}, 0, 0).pixels, picture.pixels) << "rows without gaps, " << kind.name();
    EXPECT_EQ(host::isGray(picture.info.channels), kind.color == 0 || kind.color == 4) << kind.name();
    EXPECT_EQ(host::hasAlpha(picture.info.channels), picture.info.alpha != host::AlphaKind::None) << kind.name();
  }
}

// More rows than the header tells of, in place and through memory; bytes behind the stream.
TEST(Png, WhatIsBehindTheRowsIsPassedOver) {
  for (const Kind& kind : {Kind{2, 8, 7, 4}, Kind{6, 8, 7, 4}}) {
    std::mt19937 random(1);
    Bytes rows = randomRows(kind, &random);
    Bytes stream = stored(rows);
    const ReadPicture expected = readPicture(png(), fileWith(kind, stream));
    stream.push_back(7);
    expectSamePicture(readPicture(png(), fileWith(kind, stream)), expected, kind.name());
    rows.resize(rows.size() + 22);
    const Bytes file = fileWith(kind, stored(rows));
    expectSamePicture(readPicture(png(), file, {}, 0, 0), expected, kind.name());
    expectSamePicture(readByOracle(file, "png"), expected, kind.name());
    rows.resize(3 * rows.size() + (1 << 16));
    EXPECT_FALSE(readPicture(png(), fileWith(kind, stored(rows))).isRead) << "that is no little more";
  }
}

TEST(Png, FilesOfOtherProgramsAreRead) {
  for (const char* name :
       {"png-palette.png", "png-bilevel.png", "png-interlaced.png", "png-rgba64.png", "png-gray.png"}) {
    const Bytes file = contentsOf(VORTO_FORMAT_FILES "/" + std::string(name));
    expectSamePicture(readPicture(png(), file), readByOracle(file, "png"), name);
  }
}

// Chunks that are not as they must be are passed over, and so are those behind the pixels that belong in front of them.
TEST(Png, MetadataIsRead) {
  const Bytes exif{'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, 6, 0, 0, 0, 0, 0, 0};
  Bytes profile(200, 7);
  std::copy_n("\0\0\0\xC8", 4, profile.begin());
  Bytes compressedProfile{'n', 0, 0};
  const Bytes stream = stored(profile);
  compressedProfile.insert(compressedProfile.end(), stream.begin(), stream.end());
  Bytes primaries;
  for (std::uint32_t i = 1; i <= 8; ++i) append(&primaries, i * 10000);
  const Kind kind{2, 8, 4, 2};
  std::mt19937 random(1);
  const Bytes pixels = stored(randomRows(kind, &random));
  const Chunks good{{"cICP", {9, 16, 0, 1}}, {"iCCP", compressedProfile},
                    {"sRGB", {1}},           {"gAMA", {0, 0, 0xB1, 0x8F}},
                    {"cHRM", primaries},     {"pHYs", {0, 0, 0x0B, 0x13, 0, 0, 0x0B, 0x13, 1}},
                    {"eXIf", exif},          {"tEXt", {'a', 0, 'b'}}};
  const auto info = readPicture(png(), fileWith(kind, pixels, good)).info;
  host::FileMetadata expected;
  expected.color.codePoints = host::CodePoints{9, 16, 0, true};
  expected.color.iccProfile = profile;
  expected.color.sRGBIntent = 1;
  expected.color.gamma = 0.45455;
  expected.color.primaries = host::Primaries{{0.3, 0.4}, {0.5, 0.6}, {0.7, 0.8}, {0.1, 0.2}};
  expected.resolution = host::Resolution{28.35, 28.35, host::Resolution::Unit::Centimeter};
  expected.exif = exif;
  expected.exif[19] = 1;
  EXPECT_EQ(info.metadata, expected);
  EXPECT_EQ(info.orientation, 6);

  Chunks bad = good;
  for (auto& [type, data] : bad) data.resize(data.size() - 1);
  bad.insert(bad.end(), {{"cICP", {9, 16, 1, 1}},
                         {"sRGB", {4}},
                         {"gAMA", {0, 0, 0, 0}},
                         {"pHYs", {0, 0, 0, 0, 0, 0, 0, 1, 1}},
                         {"pHYs", {0, 0, 0, 1, 0, 0, 0, 1, 2}}});
  const ReadPicture withBad = readPicture(png(), fileWith(kind, pixels, bad));
  EXPECT_TRUE(withBad.isRead);
  host::FileMetadata passedOn;  // what the program names
  passedOn.color.codePoints = host::CodePoints{9, 16, 1, true};
  passedOn.color.iccProfile.assign(compressedProfile.begin(), compressedProfile.end() - 1);
  EXPECT_EQ(withBad.info.metadata, passedOn);
  Bytes behind = fileWith(kind, pixels);
  behind.resize(behind.size() - 12);
  appendChunk(&behind, "sRGB", {1});
  appendChunk(&behind, "eXIf", exif);
  appendChunk(&behind, "IEND", {});
  const ReadPicture late = readPicture(png(), behind);
  EXPECT_TRUE(late.isRead);
  EXPECT_FALSE(late.info.metadata.color.sRGBIntent);
  EXPECT_EQ(late.info.orientation, 6);
  const auto repeated =
      readPicture(png(), fileWith(kind, pixels, {{"iCCP", {'n', 0, 0}}, {"iCCP", compressedProfile}}));
  EXPECT_EQ(repeated.info.metadata.color.iccProfile, (Bytes{'n', 0, 0})) << "one is looked at, however many there are";
  const Bytes resolution{'M',  'M', 0, 42, 0, 0, 0, 8, 0, 2, 1,  0x1A, 0, 5, 0, 0, 0, 1, 0,   0, 0, 38, 1,
                         0x1B, 0,   5, 0,  0, 0, 1, 0, 0, 0, 38, 0,    0, 0, 0, 0, 0, 0, 240, 0, 0, 0,  1};
  const auto ofExif = readPicture(png(), fileWith(kind, pixels, {{"eXIf", resolution}})).info.metadata;
  EXPECT_EQ(ofExif.resolution, (host::Resolution{240, 240, host::Resolution::Unit::Inch}));
  const auto aspect = readPicture(png(), fileWith(kind, pixels, {{"pHYs", {0, 0, 0, 15, 0, 0, 0, 16, 0}}})).info;
  EXPECT_EQ(aspect.metadata.pixelAspect, 16.0 / 15);
  EXPECT_FALSE(aspect.metadata.resolution);
}

TEST(Png, WhatIsNoneIsRefused) {
  const Kind kind{2, 8, 4, 2};
  std::mt19937 random(1);
  const Bytes rows = randomRows(kind, &random);
  Bytes shorter(rows.begin(), rows.end() - 1);
  Bytes unknownFilter = rows;
  unknownFilter[13] = 5;
  Kind huge = kind;
  huge.width = huge.height = 30000;
  const Kind wrapping{6, 16, 1073753409, 2147460478};  // 2^64 bytes, and 64,878
  Kind none = kind;
  none.height = 0;
  Kind depth = kind;
  depth.depth = 4;
  Kind palette = kind;
  palette.color = 3;
  const std::vector<std::pair<const char*, Bytes>> files{
      {"too few bytes", fileWith(kind, stored(shorter))},
      {"a filter that does not exist", fileWith(kind, stored(unknownFilter))},
      {"more than the bytes can hold", fileWith(huge, stored(rows))},
      {"more than 64 bits can count", fileWith(wrapping, stored(Bytes(100)))},
      {"no rows", fileWith(none, stored(rows))},
      {"a depth that colors do not have", fileWith(depth, stored(rows))},
      {"no palette", fileWith(palette, stored(rows))},
      {"a chunk that one must know", fileWith(kind, stored(rows), {{"NEED", {}}})},
      {"no pixels", fileWith(kind, {})}};
  ASSERT_TRUE(readPicture(png(), fileWith(kind, stored(rows))).isRead);
  for (const auto& [what, file] : files) {
    const ReadPicture picture = readPicture(png(), file);
    EXPECT_FALSE(picture.isRead) << what;
    EXPECT_EQ(picture.reason, "it is damaged or cut short") << what;
  }
}

TEST(Png, DamageIsHarmlessAndFoundWhereverItIs) {
  for (const Kind& kind : {Kind{2, 8, 9, 5}, Kind{6, 16, 5, 4}, Kind{3, 2, 13, 9, true, true}}) {
    const Bytes file = fileOf(kind, 50);
    expectDamageIsHarmless(png(), file, kind.name());
    for (std::size_t place = 0; place < file.size(); ++place) {
      Bytes damaged = file;
      damaged[place] ^= 4;
      EXPECT_FALSE(readPicture(png(), damaged).isRead) << kind.name() << " at " << place;
    }
  }
}

namespace {

// Photographs leave small differences, drawings repeat themselves.
enum class Content { Noise, Smooth, Flat, Repeating };

template <class Sample>
std::vector<Sample> samplesOf(const host::WriteRequest& request, Content content) {
  std::mt19937 random(5);
  std::vector<Sample> samples(std::size_t{request.width} * request.height * host::channelCount(request.channels));
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const std::uint32_t value = content == Content::Noise    ? random()
                                : content == Content::Smooth ? static_cast<std::uint32_t>(i / 3 + random() % 4)
                                : content == Content::Flat   ? 77
                                                             : static_cast<std::uint32_t>(i % 1000 * (i % 1000));
    samples[i] = static_cast<Sample>(value);
  }
  return samples;
}

// The samples of a picture in memory, as those of a file with these channels.
template <class Sample>
std::vector<Sample> storedSamples(const ReadPicture& picture, host::Channels channels) {
  const auto pixels = picture.samples<Sample>();
  std::vector<Sample> samples;
  for (std::size_t i = 0; i < pixels.size(); i += 4) {
    const std::size_t colors = host::isGray(channels) ? 1 : 3;
    samples.insert(samples.end(), &pixels[i], &pixels[i] + colors);
    if (host::hasAlpha(channels)) samples.push_back(pixels[i + 3]);
  }
  return samples;
}

template <class Sample>
void expectRoundTrip(host::WriteRequest request, Content content) {
  request.sample = sizeof(Sample) == 1 ? host::SampleType::UInt8 : host::SampleType::UInt16;
  request.depth = sizeof(Sample) == 1 ? host::Depth::Bits8 : host::Depth::Bits16;
  request.alpha = host::hasAlpha(request.channels) ? host::AlphaKind::Straight : host::AlphaKind::None;
  const auto samples = samplesOf<Sample>(request, content);
  const WrittenPicture written = writePicture(png(), request, samples);
  ASSERT_TRUE(written.isWritten) << written.reason;
  const std::string what = std::to_string(request.width) + " x " + std::to_string(request.height) + " channels " +
                           std::to_string(host::channelCount(request.channels)) + " level " +
                           std::to_string(request.settings.level) + request.settings.compression;
  const ReadPicture picture = readPicture(png(), written.file);
  EXPECT_EQ(picture.info.channels, request.channels) << what;
  EXPECT_TRUE(storedSamples<Sample>(picture, request.channels) == samples) << what;
  expectSamePicture(picture, readByOracle(written.file, "png"), what);
  EXPECT_EQ(writePicture(png(), request, samples).file, written.file) << "equal pictures make equal files, " << what;
}

}  // namespace

TEST(Png, WhatIsWrittenIsReadAgain) {
  for (const Content content : {Content::Noise, Content::Smooth, Content::Flat, Content::Repeating}) {
    for (const auto channels :
         {host::Channels::Gray, host::Channels::GrayAlpha, host::Channels::RGB, host::Channels::RGBA}) {
      for (const auto& [width, height] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
               {1, 1}, {5, 3}, {301, 211}, {2, 9000}}) {  // one row, several blocks, more than distances reach back
        host::WriteRequest request;
        request.channels = channels;
        request.width = width;
        request.height = height;
        expectRoundTrip<std::uint8_t>(request, content);
        expectRoundTrip<std::uint16_t>(request, content);
        if (width != 301) continue;
        for (const int level : {0, 1, 12}) {
          request.settings.level = level;
          expectRoundTrip<std::uint8_t>(request, content);
        }
        request.settings = {-1, "none", 3};
        expectRoundTrip<std::uint16_t>(request, content);
      }
    }
  }
}

TEST(Png, WhatTheFormatCannotHoldIsRefused) {
  host::WriteRequest request;
  request.width = request.height = 2;
  request.alpha = host::AlphaKind::Straight;
  const std::vector<std::uint8_t> samples(64);
  ASSERT_TRUE(writePicture(png(), request, samples).isWritten);
  const std::vector<std::function<void(host::WriteRequest*)>> faults{
      [](host::WriteRequest* r) { r->sample = host::SampleType::Float; },
      [](host::WriteRequest* r) { r->alpha = host::AlphaKind::Premultiplied; },
      [](host::WriteRequest* r) { r->width = 0; }, [](host::WriteRequest* r) { r->settings.compression = "zip"; },
      [](host::WriteRequest* r) { r->settings.level = 13; }};
  for (const auto& makeWrong : faults) {
    host::WriteRequest wrong = request;
    makeWrong(&wrong);
    EXPECT_FALSE(writePicture(png(), wrong, samples).isWritten);
  }
}

TEST(Png, MetadataIsWritten) {
  host::FileMetadata metadata;
  metadata.color.codePoints = host::CodePoints{9, 16, 0, false};
  metadata.color.sRGBIntent = 2;
  metadata.color.gamma = 0.45455;
  metadata.color.primaries = host::Primaries{{0.64, 0.33}, {0.3, 0.6}, {0.15, 0.06}, {0.3127, 0.329}};
  metadata.resolution = host::Resolution{118.11, 59, host::Resolution::Unit::Centimeter};
  metadata.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  host::WriteRequest request;
  request.width = request.height = 2;
  request.alpha = host::AlphaKind::Straight;
  request.metadata = &metadata;
  const auto readBack = [&] {
    return readPicture(png(), writePicture(png(), request, std::vector<std::uint8_t>(16)).file).info.metadata;
  };
  host::FileMetadata expected = metadata;
  expected.pixelAspect = 5900.0 / 11811;
  EXPECT_EQ(readBack(), expected);
  metadata.color.iccProfile = Bytes(300, 1);
  std::copy_n("\0\0\x01\x2C", 4, metadata.color.iccProfile.begin());
  EXPECT_TRUE(readBack().color.iccProfile.empty()) << "a profile for no RGB";
  std::copy_n("RGB ", 4, metadata.color.iccProfile.begin() + 16);
  EXPECT_EQ(readBack().color.iccProfile, metadata.color.iccProfile);
  EXPECT_FALSE(readBack().color.sRGBIntent) << "beside a profile it is not written";
  metadata.resolution.reset();
  for (const double aspect : {16.0 / 15, 0.9, 1.0, 1.4587, 2.0}) {
    metadata.pixelAspect = aspect;
    EXPECT_EQ(readBack().pixelAspect, aspect == 1 ? std::nullopt : std::optional(aspect));
  }
  metadata.resolution = host::Resolution{300, 300, host::Resolution::Unit::Inch};
  EXPECT_EQ(readBack().resolution, (host::Resolution{118.11, 118.11, host::Resolution::Unit::Centimeter}));
}
