// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/ByteWriter.h"
#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/Tiff/TiffWriter.h"
#include "Tests/Host/Formats/FormatModule.h"
#include "Tests/Support/ChildProcess.h"

#include <tiffio.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

host::ImageFileModule& tiffModule() {
  return moduleNamed("tiff");
}

struct Layout {
  std::string name;
  std::uint16_t bits = 8;
  std::uint16_t format = SAMPLEFORMAT_UINT;
  std::uint16_t photometric = PHOTOMETRIC_RGB;
  std::uint16_t samples = 3;
  int extra = -1;  // the kind of the last sample; -1: no such field
  std::uint16_t planes = PLANARCONFIG_CONTIG;
  std::uint16_t compression = COMPRESSION_NONE;
  std::uint16_t predictor = 1;
  std::uint32_t tile = 0;   // its edge; 0: strips
  const char* mode = "wl";  // byte order, and 8 for 64-bit places
  std::uint32_t rowsOfStrip = 8;
};

constexpr std::uint32_t kWidth = 37;
constexpr std::uint32_t kHeight = 29;

FileBytesOfTest fileOf(const Layout& layout, const std::function<void(TIFF*)>& addFields = {}) {
  const TemporaryFolder folder;
  const std::string path = folder.path("picture.tif");
  TIFF* const file = TIFFOpen(path.c_str(), layout.mode);
  TIFFSetField(file, TIFFTAG_IMAGEWIDTH, kWidth);
  TIFFSetField(file, TIFFTAG_IMAGELENGTH, kHeight);
  TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, layout.bits);
  TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, layout.format);
  TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, layout.samples);
  TIFFSetField(file, TIFFTAG_PHOTOMETRIC, layout.photometric);
  TIFFSetField(file, TIFFTAG_PLANARCONFIG, layout.planes);
  TIFFSetField(file, TIFFTAG_COMPRESSION, layout.compression);
  if (layout.predictor > 1) TIFFSetField(file, TIFFTAG_PREDICTOR, layout.predictor);
  if (layout.extra >= 0) {
    const auto extra = static_cast<std::uint16_t>(layout.extra);
    TIFFSetField(file, TIFFTAG_EXTRASAMPLES, 1, &extra);
  }
  if (layout.tile > 0) {
    TIFFSetField(file, TIFFTAG_TILEWIDTH, layout.tile);
    TIFFSetField(file, TIFFTAG_TILELENGTH, layout.tile);
  } else {
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, layout.rowsOfStrip);
  }
  if (addFields) addFields(file);
  std::mt19937 random(3);
  std::vector<std::uint8_t> bytes(std::size_t{kWidth} * kHeight * 8 * 8);
  const auto sample = [&](std::size_t i) { return std::sin(static_cast<float>(i)) + static_cast<float>(random() % 9); };
  for (std::size_t i = 0; i < bytes.size() / 4; ++i) {
    const float value = sample(i / 7);
    if (layout.bits == 32) {
      std::memcpy(bytes.data() + i * 4, &value, 4);
    } else {
      bytes[i] = static_cast<std::uint8_t>((i / 5) ^ (random() & 3));
    }
  }
  const std::uint32_t parts = layout.tile > 0 ? TIFFNumberOfTiles(file) : TIFFNumberOfStrips(file);
  for (std::uint32_t part = 0; part < parts; ++part) {
    std::vector<std::uint8_t> copy = bytes;  // the library works in it
    copy[0] = static_cast<std::uint8_t>(copy[0] + part);
    if (layout.tile > 0) {
      EXPECT_GT(TIFFWriteEncodedTile(file, part, copy.data(), TIFFTileSize(file)), 0) << layout.name;
    } else {
      const std::uint32_t perPlane = (kHeight + layout.rowsOfStrip - 1) / layout.rowsOfStrip;
      const std::uint32_t rows = std::min(layout.rowsOfStrip, kHeight - part % perPlane * layout.rowsOfStrip);
      EXPECT_GT(TIFFWriteEncodedStrip(file, part, copy.data(), TIFFVStripSize(file, rows)), 0) << layout.name;
    }
  }
  TIFFClose(file);
  return contentsOf(path);
}

std::vector<Layout> layouts() {
  std::vector<Layout> all;
  const struct {
    const char* name;
    std::uint16_t bits, format;
  } samples[] = {{"8 bits", 8, SAMPLEFORMAT_UINT},
                 {"16 bits", 16, SAMPLEFORMAT_UINT},
                 {"half", 16, SAMPLEFORMAT_IEEEFP},
                 {"float", 32, SAMPLEFORMAT_IEEEFP}};
  const struct {
    const char* name;
    std::uint16_t photometric, samples;
    int extra;
  } colors[] = {{"gray", PHOTOMETRIC_MINISBLACK, 1, -1},
                {"gray, alpha", PHOTOMETRIC_MINISBLACK, 2, EXTRASAMPLE_UNASSALPHA},
                {"RGB", PHOTOMETRIC_RGB, 3, -1},
                {"RGB, premultiplied", PHOTOMETRIC_RGB, 4, EXTRASAMPLE_ASSOCALPHA},
                {"RGB, straight", PHOTOMETRIC_RGB, 4, EXTRASAMPLE_UNASSALPHA}};
  const struct {
    const char* name;
    std::uint16_t compression;
    bool hasPredictor;
  } compressions[] = {{"none", COMPRESSION_NONE, false},
                      {"LZW", COMPRESSION_LZW, true},
                      {"deflate", COMPRESSION_ADOBE_DEFLATE, true},
                      {"old deflate", COMPRESSION_DEFLATE, false},
                      {"packbits", COMPRESSION_PACKBITS, false},
                      {"zstd", COMPRESSION_ZSTD, true}};
  for (const auto& sample : samples) {
    for (const auto& color : colors) {
      for (const auto& compression : compressions) {
        for (const std::uint16_t planes : {PLANARCONFIG_CONTIG, PLANARCONFIG_SEPARATE}) {
          for (const std::uint32_t tile : {0u, 16u}) {
            const char* const mode = std::array{"wl", "wb", "wl8"}[all.size() % 3];
            {
              Layout layout;
              layout.name = std::string(sample.name) + " " + color.name + " " + compression.name +
                            (planes == PLANARCONFIG_CONTIG ? "" : " planes") + (tile > 0 ? " tiles " : " ") + mode;
              layout.bits = sample.bits;
              layout.format = sample.format;
              layout.photometric = color.photometric;
              layout.samples = color.samples;
              layout.extra = color.extra;
              layout.planes = planes;
              layout.compression = compression.compression;
              const bool isFloat = sample.format == SAMPLEFORMAT_IEEEFP;
              if (compression.hasPredictor) layout.predictor = isFloat ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL;
              layout.tile = tile;
              layout.mode = mode;
              all.push_back(layout);
            }
          }
        }
      }
    }
  }
  return all;
}

using Entries = std::vector<std::array<std::uint32_t, 4>>;  // tag, type, count, value or place

FileBytesOfTest fileOf(const FileBytesOfTest& body, const std::vector<Entries>& directories) {
  host::ByteWriter file;
  file.number(0x002A4949, 4);
  file.number(8 + body.size(), 4);
  file.bytes(body);
  for (std::size_t i = 0; i < directories.size(); ++i) {
    file.number(directories[i].size(), 2);
    for (const auto& [tag, type, count, value] : directories[i]) {
      file.number(tag, 2);
      file.number(type, 2);
      file.number(count, 4);
      file.number(value, 4);
    }
    file.number(i + 1 < directories.size() ? file.size() + 4 : 0, 4);
  }
  return file.take();
}

const Entries kDot = {{256, 3, 1, 1}, {257, 3, 1, 1}, {258, 3, 1, 8}, {259, 3, 1, 1}, {262, 3, 1, 1},
                      {273, 3, 1, 8}, {277, 3, 1, 1}, {278, 3, 1, 1}, {279, 3, 1, 1}};

host::WriteRequest requestFor(host::Channels channels, host::SampleType sample, host::Depth depth) {
  host::WriteRequest request;
  request.format = host::FileFormat::Tiff;
  request.width = 301;
  request.height = 203;
  request.channels = channels;
  request.sample = sample;
  request.depth = depth;
  if (host::hasAlpha(channels)) {
    request.alpha = isGray(channels) ? host::AlphaKind::Straight : host::AlphaKind::Premultiplied;
  }
  return request;
}

std::vector<std::uint8_t> bytesFor(const host::WriteRequest& request) {
  const std::size_t count = std::size_t{request.width} * request.height * host::channelCount(request.channels);
  std::vector<std::uint8_t> bytes(count * host::bytesPerSample(request.sample));
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i / 11 % 251);
  if (request.sample == host::SampleType::Float) {
    for (std::size_t i = 0; i < count; ++i) {
      const float value = static_cast<float>(i % 1000) / 64.0f;  // which a half has, too
      std::memcpy(bytes.data() + i * 4, &value, 4);
    }
  }
  return bytes;
}

WrittenPicture write(const host::WriteRequest& request, const std::vector<std::uint8_t>& bytes) {
  return writeBytes(tiffModule(), request, reinterpret_cast<const std::byte*>(bytes.data()),
                    bytes.size() / request.height);
}

}  // namespace

TEST(Tiff, OfTheUsualKindsIsReadAsByTheLibrary) {
  for (const Layout& layout : layouts()) {
    const FileBytesOfTest file = fileOf(layout);
    expectSamePicture(readPicture(tiffModule(), file), readByOracle(file, "tiff"), layout.name);
    if (testing::Test::HasFatalFailure()) return;
  }
}

TEST(Tiff, OfOtherProgramsIsRead) {
  for (const char* name :
       {"ffmpeg-16", "ffmpeg-deflate", "magick-lzw", "magick-alpha16", "magick-gray", "oiio-tiles", "oiio-planes"}) {
    const FileBytesOfTest file = contentsOf(VORTO_FORMAT_FILES "/tiff/" + std::string(name) + ".tif");
    expectSamePicture(readPicture(tiffModule(), file), readByOracle(file, "tiff"), name);
  }
}

TEST(Tiff, OfRarerKindsIsLeftToTheGeneralModule) {
  const Layout rows[] = {
      {"palette", 8, SAMPLEFORMAT_UINT, PHOTOMETRIC_PALETTE, 1},
      {"bits", 1, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISBLACK, 1},
      {"four bits", 4, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISBLACK, 1},
      {"white is zero", 8, SAMPLEFORMAT_UINT, PHOTOMETRIC_MINISWHITE, 1},
      {"inks", 8, SAMPLEFORMAT_UINT, PHOTOMETRIC_SEPARATED, 4},
      {"signed", 16, SAMPLEFORMAT_INT, PHOTOMETRIC_RGB, 3},
      {"32 bits", 32, SAMPLEFORMAT_UINT, PHOTOMETRIC_RGB, 3},
      {"double", 64, SAMPLEFORMAT_IEEEFP, PHOTOMETRIC_RGB, 3},
      {"unspecified", 8, SAMPLEFORMAT_UINT, PHOTOMETRIC_RGB, 4, EXTRASAMPLE_UNSPECIFIED},
      {"four samples", 8, SAMPLEFORMAT_UINT, PHOTOMETRIC_RGB, 4},
  };
  for (const Layout& row : rows) {
    const ReadPicture picture =
        readPicture(tiffModule(), fileOf(row, [&](TIFF* file) {
                      std::vector<std::uint16_t> map(256);
                      if (row.photometric == PHOTOMETRIC_PALETTE)
                        TIFFSetField(file, TIFFTAG_COLORMAP, map.data(), map.data(), map.data());
                    }));
    EXPECT_TRUE(picture.isOtherKind) << row.name;
  }
}

TEST(Tiff, OfTheUsualKindsIsHarmlessWhenDamaged) {
  const auto all = layouts();
  for (std::size_t i = 0; i < all.size(); i += 5) {
    expectDamageIsHarmless(tiffModule(), fileOf(all[i]), all[i].name, 97);
  }
}

// Strips that hold more than the picture's rows are read, and nothing of a row is left unwritten.
TEST(Tiff, MayHoldMoreThanItsRows) {
  for (const std::uint32_t rowsOfStrip : {1u, 8u}) {
    Layout layout;
    layout.samples = 4;
    layout.extra = EXTRASAMPLE_ASSOCALPHA;
    layout.compression = COMPRESSION_ADOBE_DEFLATE;
    layout.rowsOfStrip = rowsOfStrip;
    FileBytesOfTest file = fileOf(layout);
    const std::uint8_t width[] = {0, 1, 3, 0, 1, 0, 0, 0, kWidth};
    const auto field = std::search(file.begin(), file.end(), std::begin(width), std::end(width));
    ASSERT_NE(field, file.end());
    field[8] = 2;
    const ReadPicture first = readPicture(tiffModule(), file, {}, 0x11);
    const ReadPicture second = readPicture(tiffModule(), file, {}, 0xEE);
    EXPECT_TRUE(first.isRead && second.isRead) << first.reason;
    EXPECT_EQ(first.pixels, second.pixels);
  }
}

// Sound in each of its directories, strips and tiles; these overlap, and looking at them all would never end.
TEST(Tiff, ThatTakesMoreThanItsSizeIsRefused) {
  EXPECT_TRUE(readPicture(tiffModule(), fileOf(FileBytesOfTest(2), {kDot})).isRead) << "the others are like it";

  // A thousand pictures with the same thousand strips.
  const FileBytesOfTest ones(2000, 1);
  std::vector<Entries> pictures(1000, Entries{{273, 1, 1000, 8}, {279, 1, 1000, 8}});
  pictures.insert(pictures.begin(), kDot);
  EXPECT_EQ(readPicture(tiffModule(), fileOf(ones, pictures)).reason, "it is damaged or cut short");

  // Directories four bytes apart, each with entries that end with its own pointer to the next.
  FileBytesOfTest file = fileOf({}, {kDot});
  const std::size_t first = file.size();
  file[first - 4] = static_cast<std::uint8_t>(first);
  file.resize(first + (1 << 14), 0x01);
  for (std::size_t i = 0; i < 1000; ++i) {
    const auto next = static_cast<std::uint32_t>(i < 999 ? first + 4 * (i + 1) : 0);
    std::memcpy(file.data() + first + 4 * i + 2 + 0x101 * 12, &next, 4);
  }
  EXPECT_EQ(readPicture(tiffModule(), file).reason, "it is damaged or cut short");
}

TEST(Tiff, WithTilesFarLargerThanThePictureIsRefused) {
  const struct {
    std::uint32_t width, height, tileWidth, tileHeight, compression, stored;
    bool isSound;
  } rows[] = {{16, 16, 4112, 16, COMPRESSION_NONE, 4112 * 16, true},
              {16, 16, 4112, 16, COMPRESSION_NONE, 4112 * 16 - 1, false},
              {16, 16, 4128, 16, COMPRESSION_NONE, 4128 * 16, false},
              {16, 16, 16, 4128, COMPRESSION_NONE, 4128 * 16, false},
              {16, 16, 1024, 64, COMPRESSION_PACKBITS, 1024, true},
              {16, 16, 1024, 64, COMPRESSION_PACKBITS, 1023, false},
              {16, 16, 1024, 1032, COMPRESSION_ADOBE_DEFLATE, 1024, true},
              {16, 16, 1024, 1032, COMPRESSION_DEFLATE, 1023, false},
              {16, 16, 4096, 4096, COMPRESSION_LZW, 4095, false}};
  const auto isOpen = [](const FileBytesOfTest& file) {
    bool isOtherKind = false;
    return tiffModule().open({file, {}, {}}, &isOtherKind, nullptr) != nullptr;
  };
  const auto tiles = [](std::uint32_t width, std::uint32_t height, std::uint32_t tileWidth, std::uint32_t tileHeight,
                        std::uint32_t compression, std::uint32_t count, std::uint32_t offsets, std::uint32_t sizes) {
    return Entries{{256, 4, 1, width},      {257, 4, 1, height},      {258, 3, 1, 8},        {259, 3, 1, compression},
                   {262, 3, 1, 1},          {277, 3, 1, 1},           {278, 3, 1, 1},        {322, 4, 1, tileWidth},
                   {323, 4, 1, tileHeight}, {324, 4, count, offsets}, {325, 4, count, sizes}};
  };
  for (const auto& row : rows) {
    const Entries entries =
        tiles(row.width, row.height, row.tileWidth, row.tileHeight, row.compression, 1, 8, row.stored);
    EXPECT_EQ(isOpen(fileOf(FileBytesOfTest(row.stored), {entries})), row.isSound) << row.compression << row.stored;
    Entries asStrips = entries;  // as which the library reads them as well
    std::swap(asStrips[9], asStrips[5]);
    std::swap(asStrips[10], asStrips[6]);
    asStrips[5][0] = 273;
    asStrips[6][0] = 279;
    asStrips.resize(9);
    EXPECT_EQ(isOpen(fileOf(FileBytesOfTest(row.stored), {asStrips})), row.isSound) << row.compression << row.stored;
  }

  // Many that share bytes: of a wide picture, and of one whose empty tiles are the same.
  const auto shared = [&](std::uint32_t count, std::uint32_t height, std::uint32_t tileHeight, std::uint32_t stored) {
    host::ByteWriter body;
    for (const std::uint32_t number : {8u, stored}) {
      for (std::uint32_t i = 0; i < count; ++i) body.number(number, 4);
    }
    FileBytesOfTest bytes = body.take();
    bytes.resize(bytes.size() + stored);
    const std::uint32_t sizes = 8 + count * 4;
    return isOpen(
        fileOf(bytes, {tiles(count * 16, height, 16, tileHeight, COMPRESSION_ADOBE_DEFLATE, count, 8, sizes)}));
  };
  EXPECT_TRUE(shared(5000, 4096, 4096, 100));
  EXPECT_FALSE(shared(5000, 1, 4096, 100)) << "nearly all of each is thrown away";
  EXPECT_TRUE(shared(100, 16, 16, 200));
  EXPECT_FALSE(shared(100, 16, 16, 1000)) << "nearly nothing comes of each";
}

TEST(Tiff, KeepsWhatItsFieldsSay) {
  Layout layout;
  const std::vector<std::uint8_t> profile = {1, 2, 3, 4, 5};
  const auto addFields = [&](TIFF* file) {
    TIFFSetField(file, TIFFTAG_ORIENTATION, 6);
    TIFFSetField(file, TIFFTAG_XRESOLUTION, 299.5f);
    TIFFSetField(file, TIFFTAG_YRESOLUTION, 72.0f);
    TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
    TIFFSetField(file, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile.size()), profile.data());
    TIFFSetField(file, TIFFTAG_MAKE, "Maker");
    TIFFSetField(file, TIFFTAG_COPYRIGHT, "us");
  };
  const ReadPicture picture = readPicture(tiffModule(), fileOf(layout, addFields));
  ASSERT_TRUE(picture.isRead);
  EXPECT_EQ(picture.info.orientation, 6);
  const host::FileMetadata& metadata = picture.info.metadata;
  EXPECT_EQ(metadata.resolution, (host::Resolution{299.5, 72, host::Resolution::Unit::Centimeter}));
  EXPECT_EQ(metadata.color.iccProfile, profile);
  const auto block = host::ExifBlock::parse(metadata.exif);
  ASSERT_TRUE(block.has_value());
  EXPECT_EQ(block->entries().size(), 2u) << "nothing of how pixels are stored";
  EXPECT_NE(block->find(host::ExifDirectory::Image, TIFFTAG_COPYRIGHT), nullptr);

  layout.compression = COMPRESSION_LZW;
  const ReadPicture wide = readPicture(tiffModule(), fileOf(layout, [](TIFF* file) {
                                         TIFFSetField(file, TIFFTAG_XRESOLUTION, 1.0f);
                                         TIFFSetField(file, TIFFTAG_YRESOLUTION, 2.0f);
                                         TIFFSetField(file, TIFFTAG_RESOLUTIONUNIT, RESUNIT_NONE);
                                       }));
  EXPECT_EQ(wide.info.metadata.pixelAspect, 2.0);
  EXPECT_FALSE(wide.info.metadata.resolution.has_value());
}

TEST(Tiff, KeepsExifToWhichAPlaceOfItsOwnTypePoints) {
  const ReadPicture picture = readPicture(tiffModule(), contentsOf(VORTO_FORMAT_FILES "/tiff/oiio-exif.tif"));
  const auto block = host::ExifBlock::parse(picture.info.metadata.exif);
  ASSERT_TRUE(block.has_value());
  EXPECT_NEAR(block->number(host::ExifDirectory::Photo, 0x829A).value_or(0), 0.02, 1e-6) << "the exposure";
}

class TiffCompressions : public testing::TestWithParam<const char*> {};

TEST_P(TiffCompressions, AreReadAgainAfterTheyWereWritten) {
  using host::Channels;
  using host::Depth;
  using host::SampleType;
  const std::pair<SampleType, Depth> depths[] = {{SampleType::UInt8, Depth::Bits8},
                                                 {SampleType::UInt16, Depth::Bits16},
                                                 {SampleType::Float, Depth::Half},
                                                 {SampleType::Float, Depth::Float}};
  for (const auto& [sample, depth] : depths) {
    for (const Channels channels : {Channels::Gray, Channels::GrayAlpha, Channels::RGB, Channels::RGBA}) {
      host::WriteRequest request = requestFor(channels, sample, depth);
      request.settings.compression = GetParam();
      const auto bytes = bytesFor(request);
      const WrittenPicture written = write(request, bytes);
      ASSERT_TRUE(written.isWritten) << written.reason;
      EXPECT_EQ(write(request, bytes).file, written.file) << "equal pictures make equal files";
      const ReadPicture read = readPicture(tiffModule(), written.file);
      expectSamePicture(read, readByOracle(written.file, "tiff"), GetParam());
      EXPECT_EQ(read.info.channels, channels);
      EXPECT_EQ(read.info.alpha, request.alpha);
      const std::size_t size = host::bytesPerSample(sample);
      const std::size_t count = host::channelCount(channels);
      for (std::size_t i = 0; i < bytes.size() / size; ++i) {
        const std::size_t component = count <= 2 && i % count == 1 ? 3 : i % count;
        ASSERT_EQ(std::memcmp(bytes.data() + i * size, read.pixels.data() + (i / count * 4 + component) * size, size),
                  0)
            << i;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, TiffCompressions, testing::Values("none", "lzw", "deflate", "packbits", "zstd"),
                         [](const auto& row) { return std::string(row.param); });

TEST(Tiff, IsWrittenWithItsMetadata) {
  auto block = host::ExifBlock::parse(host::Bytes{'I', 'I', 42, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  ASSERT_TRUE(block.has_value());
  using host::ExifDirectory;
  using host::ExifType;
  block->set({ExifDirectory::Image, 0x010F, ExifType::Ascii, {'M', 'a', 'k', 'e', 'r', 0}});
  block->set({ExifDirectory::Photo, 0x829A, ExifType::Rational, {1, 0, 0, 0, 60, 0, 0, 0}});
  block->set({ExifDirectory::Gps, 1, ExifType::Ascii, {'N', 0}});
  block->set({ExifDirectory::Interoperability, 1, ExifType::Ascii, {'R', '9', '8', 0}});
  const host::Bytes kept = block->serialized();
  for (const std::uint16_t tag : {0x9101, 0x9102, 0xA002, 0xA003}) {  // that only a JPEG has
    block->set({ExifDirectory::Photo, tag, ExifType::Undefined, {1, 2, 3, 0}});
  }
  host::FileMetadata metadata;
  metadata.exif = block->serialized();
  metadata.color.iccProfile = host::Bytes(200, 7);
  std::memcpy(&metadata.color.iccProfile[16], "RGB ", 4);
  metadata.resolution = host::Resolution{300, 299.9994, host::Resolution::Unit::Inch};
  host::WriteRequest request = requestFor(host::Channels::RGB, host::SampleType::UInt8, host::Depth::Bits8);
  request.metadata = &metadata;
  const WrittenPicture written = write(request, bytesFor(request));
  const ReadPicture read = readPicture(tiffModule(), written.file);
  ASSERT_TRUE(read.isRead) << read.reason;
  EXPECT_EQ(read.info.metadata.exif, kept);
  EXPECT_EQ(read.info.metadata.color, metadata.color);
  ASSERT_TRUE(read.info.metadata.resolution.has_value());
  EXPECT_NEAR(read.info.metadata.resolution->y, 299.9994, 1e-9);
  EXPECT_TRUE(readByOracle(written.file, "tiff").isRead);

  host::FileMetadata wide;
  wide.pixelAspect = 1.5;
  request.metadata = &wide;
  EXPECT_EQ(readPicture(tiffModule(), write(request, bytesFor(request)).file).info.metadata.pixelAspect, 1.5);
}

TEST(Tiff, HasPlacesThatReachItsEnd) {
  const struct {
    const char* compression;
    std::uint64_t farthest;  // of 61103 bytes of pixels
    int version;             // 43 with 64-bit places
  } rows[] = {
      {"none", 65000, 42}, {"none", 64900, 43}, {"packbits", 64900, 43}, {"lzw", 91700, 42}, {"lzw", 91600, 43}};
  host::WriteRequest request = requestFor(host::Channels::Gray, host::SampleType::UInt8, host::Depth::Bits8);
  std::vector<std::uint8_t> noise = bytesFor(request);
  std::mt19937 random(1);
  for (std::uint8_t& byte : noise) byte = static_cast<std::uint8_t>(random());
  const auto writeTo = [&](std::uint64_t farthest) {
    const auto write = [&](const auto& wanted, auto& pixels, auto& output, std::string* reason) {
      return host::tiff::writeTiff(wanted, pixels, output, reason, {farthest, 0});
    };
    return writeBytes(write, request, reinterpret_cast<const std::byte*>(noise.data()), request.width);
  };
  for (const auto& row : rows) {
    request.settings.compression = row.compression;
    const WrittenPicture written = writeTo(row.farthest);
    ASSERT_TRUE(written.isWritten) << written.reason;
    EXPECT_EQ(written.file[2], row.version) << row.compression << row.farthest;
    EXPECT_TRUE(written.file[2] == 43 || written.file.size() <= row.farthest);
    EXPECT_TRUE(readPicture(tiffModule(), written.file).isRead);
  }
  // The header and 16 pixels take 24 bytes.
  request.width = 16;
  request.height = 1;
  request.settings.compression = "none";
  for (const std::uint64_t farthest : {17, 24}) EXPECT_FALSE(writeTo(farthest).isWritten) << farthest;
}

TEST(Tiff, IsNotWrittenOtherwiseThanItCanBe) {
  host::WriteRequest request = requestFor(host::Channels::RGB, host::SampleType::UInt8, host::Depth::Bits8);
  request.settings.compression = "piz";
  EXPECT_EQ(write(request, bytesFor(request)).reason,
            "TIFF has no compression \"piz\"; it has none, lzw, deflate, packbits, zstd");
  request.settings.compression = "deflate";
  request.settings.level = 13;
  EXPECT_EQ(write(request, bytesFor(request)).reason,
            "the compression \"deflate\" has no level 13; its levels are 1 to 12");
  for (const char* compression : {"none", "lzw", "packbits"}) {
    request.settings.compression = compression;
    EXPECT_EQ(write(request, bytesFor(request)).reason,
              "the compression \"" + std::string(compression) + "\" has no levels");
  }
}
