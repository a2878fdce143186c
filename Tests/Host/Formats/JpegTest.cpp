// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Formats/FormatModule.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <random>

namespace {

using Bytes = FileBytesOfTest;

host::ImageFileModule& jpeg() {
  return moduleNamed("jpeg");
}

Bytes fileNamed(const std::string& name) {
  return contentsOf(VORTO_FORMAT_FILES "/" + name);
}

const std::vector<std::string> kFiles{
    "jpeg-420.jpg",  "jpeg-progressive-422.jpg", "jpeg-gray.jpg",      "jpeg-cmyk.jpg",
    "jpeg-ycck.jpg", "jpeg-ffmpeg.jpg",          "jpeg-arithmetic.jpg"};

host::WriteRequest requestFor(host::Channels channels, std::uint32_t width, std::uint32_t height) {
  host::WriteRequest request;
  request.format = host::FileFormat::Jpeg;
  request.channels = channels;
  request.width = width;
  request.height = height;
  return request;
}

std::vector<std::uint8_t> smoothSamples(const host::WriteRequest& request) {
  std::mt19937 random(3);
  std::vector<std::uint8_t> samples(std::size_t{request.width} * request.height * host::channelCount(request.channels));
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = static_cast<std::uint8_t>(i / 5 + random() % 9);
  return samples;
}

// The file of the other library from these samples, as the host made them before it had this module.
Bytes writtenByOracle(const host::WriteRequest& request, const std::vector<std::uint8_t>& samples,
                      const std::string& quality, const std::string& sampling, bool isProgressive = false) {
  const auto output = OIIO::ImageOutput::create("jpeg");
  OIIO::ImageSpec spec(static_cast<int>(request.width), static_cast<int>(request.height),
                       static_cast<int>(host::channelCount(request.channels)), OIIO::TypeDesc::UINT8);
  spec.attribute("Compression", "jpeg:" + quality);
  spec.attribute("jpeg:subsampling", sampling);
  spec.attribute("jpeg:progressive", isProgressive ? 1 : 0);
  OIIO::Filesystem::IOVecOutput proxy;
  EXPECT_TRUE(output->set_ioproxy(&proxy) && output->open("picture", spec) &&
              output->write_image(OIIO::TypeDesc::UINT8, samples.data()) && output->close());
  return {proxy.buffer().begin(), proxy.buffer().end()};
}

// From the first table on: what is in front of it tells of the file.
Bytes codedPart(const Bytes& file) {
  const Bytes mark{0xFF, 0xDB};
  return {std::search(file.begin(), file.end(), mark.begin(), mark.end()), file.end()};
}

}  // namespace

TEST(Jpeg, EveryKindIsReadAsTheOtherLibraryReadsIt) {
  for (const std::string& name : kFiles) {
    const Bytes file = fileNamed(name);
    const ReadPicture picture = readPicture(jpeg(), file);
    expectSamePicture(picture, readByOracle(file, "jpeg"), name);
    EXPECT_EQ(picture.info.channels, name == "jpeg-gray.jpg" ? host::Channels::Gray : host::Channels::RGB) << name;
    EXPECT_EQ(readPicture(jpeg(), file, {}, 0, 0).pixels, picture.pixels) << name;
  }
}

TEST(Jpeg, PixelsAreWrittenAsTheOtherLibraryWritesThem) {
  struct Row {
    int quality;
    std::string qualityThere;
    std::string sampling;
    std::string samplingThere;
  };
  for (const auto channels : {host::Channels::Gray, host::Channels::RGB}) {
    for (const Row& row : std::vector<Row>{{-1, "95", "", "4:4:4"},
                                           {95, "95", "444", "4:4:4"},
                                           {50, "50", "422", "4:2:2"},
                                           {1, "1", "420", "4:2:0"},
                                           {100, "100", "", "4:4:4"}}) {
      auto request = requestFor(channels, 131, 67);
      request.settings.quality = row.quality;
      request.settings.compression = row.sampling;
      const auto samples = smoothSamples(request);
      const WrittenPicture written = writePicture(jpeg(), request, samples);
      ASSERT_TRUE(written.isWritten) << written.reason;
      EXPECT_EQ(codedPart(written.file),
                codedPart(writtenByOracle(request, samples, row.qualityThere, row.samplingThere)))
          << row.quality << row.sampling;
      expectSamePicture(readPicture(jpeg(), written.file), readByOracle(written.file, "jpeg"), row.sampling);
    }
  }
}

TEST(Jpeg, MetadataIsReadAndWritten) {
  auto request = requestFor(host::Channels::RGB, 9, 7);
  host::FileMetadata metadata;
  metadata.exif = {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
  metadata.color.iccProfile = Bytes(150000, 9);  // three markers
  std::copy_n("RGB ", 4, metadata.color.iccProfile.begin() + 16);
  metadata.resolution = host::Resolution{300, 300, host::Resolution::Unit::Inch};
  request.metadata = &metadata;
  const auto samples = smoothSamples(request);
  const auto readBack = [&] { return readPicture(jpeg(), writePicture(jpeg(), request, samples).file).info; };
  EXPECT_EQ(readBack().metadata, metadata);
  metadata.exif[19] = 8;
  EXPECT_EQ(readBack().orientation, 8);
  EXPECT_EQ(readBack().metadata.exif[19], 1);
  metadata.exif.resize(20);
  EXPECT_TRUE(readBack().metadata.exif.empty()) << "a damaged block";
  metadata.exif.assign(65528, 0);
  EXPECT_TRUE(readBack().metadata.exif.empty()) << "a block that no marker holds";
  std::copy_n("GRAY", 4, metadata.color.iccProfile.begin() + 16);
  EXPECT_TRUE(readBack().metadata.color.iccProfile.empty()) << "a profile for no RGB";
  using Unit = host::Resolution::Unit;
  const std::vector<std::pair<host::Resolution, std::optional<host::Resolution>>> resolutions{
      {{30, 60, Unit::Centimeter}, {{30, 60, Unit::Centimeter}}},
      {{28.35, 28.35, Unit::Centimeter}, {{72, 72, Unit::Inch}}},
      {{0.1, 0.1, Unit::Inch}, {}},
      {{1e6, 1e6, Unit::Inch}, {}}};
  for (const auto& [given, found] : resolutions) {
    metadata.resolution = given;
    EXPECT_EQ(readBack().metadata.resolution, found) << given.x;
  }
  metadata.resolution.reset();
  for (const double aspect : {4.0 / 3, 0.9}) {
    metadata.pixelAspect = aspect;
    EXPECT_EQ(readBack().metadata.pixelAspect, aspect);
  }
  metadata.pixelAspect.reset();
  metadata.exif = {'M',  'M', 0, 42, 0, 0, 0, 8, 0, 2, 1,  0x1A, 0, 5, 0, 0, 0, 1, 0,   0, 0, 38, 1,
                   0x1B, 0,   5, 0,  0, 0, 1, 0, 0, 0, 38, 0,    0, 0, 0, 0, 0, 0, 240, 0, 0, 0,  1};
  EXPECT_EQ(readBack().metadata.resolution, (host::Resolution{240, 240, Unit::Inch})) << "of Exif";
  const auto info = readPicture(jpeg(), fileNamed("jpeg-exif.jpg")).info;
  EXPECT_EQ(info.orientation, 6);
  EXPECT_FALSE(info.metadata.exif.empty());
}

TEST(Jpeg, WhatTheFormatCannotHoldIsRefused) {
  const std::vector<std::function<void(host::WriteRequest*)>> faults{
      [](host::WriteRequest* r) { r->sample = host::SampleType::UInt16; },
      [](host::WriteRequest* r) { r->channels = host::Channels::RGBA; },
      [](host::WriteRequest* r) { r->height = 65501; },
      [](host::WriteRequest* r) { r->settings.compression = "411"; },
      [](host::WriteRequest* r) { r->settings.quality = 0; },
      [](host::WriteRequest* r) { r->settings.level = 3; }};
  for (const auto& makeWrong : faults) {
    auto wrong = requestFor(host::Channels::RGB, 8, 8);
    makeWrong(&wrong);
    EXPECT_FALSE(writePicture(jpeg(), wrong, std::vector<std::uint8_t>(1024)).isWritten);
  }
}

TEST(Jpeg, AnOutputThatThrowsIsTold) {
  struct : host::OutputBytes {
    bool write(std::uint64_t, std::span<const std::uint8_t>) override { throw std::bad_alloc(); }
    std::size_t read(std::uint64_t, std::span<std::uint8_t>) override { return 0; }
  } output;
  struct : host::PixelRows {
    const std::byte* row(std::uint32_t) override { return samples; }
    std::byte samples[24] = {};
  } rows;
  std::string reason;
  EXPECT_FALSE(jpeg().write(requestFor(host::Channels::RGB, 8, 8), rows, output, &reason));
  EXPECT_EQ(reason, "there is not enough memory for it");
}

TEST(Jpeg, DamageIsHarmless) {
  for (const std::string name : {"jpeg-420.jpg", "jpeg-progressive-422.jpg", "jpeg-ycck.jpg", "jpeg-exif.jpg"}) {
    const Bytes file = fileNamed(name);
    expectDamageIsHarmless(jpeg(), file, name, 3);
    for (const double part : {0.01, 0.3, 0.6, 0.9, 0.98}) {
      Bytes cut = file;
      cut.resize(static_cast<std::size_t>(part * static_cast<double>(file.size())));
      const ReadPicture picture = readPicture(jpeg(), cut);
      EXPECT_FALSE(picture.isRead) << name << " " << part;
      EXPECT_TRUE(picture.reason.starts_with("it is ")) << picture.reason;
    }
  }
}

// Small files that would take much time or memory.
TEST(Jpeg, BombsAreRefused) {
  Bytes large = fileNamed("jpeg-420.jpg");
  const Bytes frame{0xFF, 0xC0};
  auto at = std::search(large.begin(), large.end(), frame.begin(), frame.end());
  std::fill_n(at + 5, 4, std::uint8_t{0xEA});  // 60138 x 60138
  EXPECT_EQ(readPicture(jpeg(), large).reason, "it is damaged or cut short");

  EXPECT_EQ(readPicture(jpeg(), fileNamed("jpeg-253-scans.jpg")).reason, "it has more than 200 scans");
  EXPECT_EQ(readPicture(jpeg(), fileNamed("jpeg-many-scans.jpg")).reason, "it has more than 64 scans");
  const auto request = requestFor(host::Channels::RGB, 4096, 4096);
  const std::vector<std::uint8_t> plain(std::size_t{3} * 4096 * 4096, 128);
  EXPECT_TRUE(readPicture(jpeg(), writtenByOracle(request, plain, "90", "4:2:0", true)).isRead) << "it has ten";
}

// Warnings that are about no pixel.
TEST(Jpeg, WhatTouchesNoPixelIsPassedOver) {
  const Bytes file = fileNamed("jpeg-420.jpg");
  const ReadPicture expected = readPicture(jpeg(), file);
  const auto placeOf = [&](const Bytes& mark) {
    return std::search(file.begin(), file.end(), mark.begin(), mark.end()) - file.begin();
  };
  const auto scan = placeOf({0xFF, 0xDA});
  ASSERT_EQ(file[static_cast<std::size_t>(scan) + 11], 0x00);  // the first coefficient; then the last
  Bytes stray = file;
  stray.insert(stray.begin() + placeOf({0xFF, 0xDB}), {1, 2, 3});
  Bytes revision = file;
  revision[static_cast<std::size_t>(placeOf({'J', 'F', 'I', 'F'})) + 5] = 2;
  Bytes spectrum = file;
  spectrum[static_cast<std::size_t>(scan) + 12] = 10;
  for (const auto& [what, odd] : std::vector<std::pair<const char*, Bytes>>{
           {"bytes between markers", stray}, {"revision 2 of JFIF", revision}, {"no whole spectrum", spectrum}}) {
    expectSamePicture(readPicture(jpeg(), odd), expected, what);
  }
  Bytes lost = file;
  lost.erase(lost.end() - 40, lost.end() - 20);
  EXPECT_FALSE(readPicture(jpeg(), lost).isRead) << "pixels are missing";
}
