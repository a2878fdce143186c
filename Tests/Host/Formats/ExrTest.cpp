// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Formats/FormatModule.h"
#include "Tests/Support/ChildProcess.h"

#include <OpenImageIO/deepdata.h>
#include <OpenImageIO/imageio.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {

using OIIO::ImageSpec;
using OIIO::TypeDesc;

host::ImageFileModule& exr() {
  return moduleNamed("exr");
}

// Smooth with noise, so that compressions do something; with values that only halves of their own have.
std::vector<float> testSamples(std::size_t count) {
  std::mt19937 random(7);
  std::vector<float> samples(count);
  for (std::size_t i = 0; i < count; ++i) {
    samples[i] = std::sin(static_cast<float>(i) * 0.01f) + static_cast<float>(random() % 64) / 512.0f;
  }
  const float odd[] = {0.0f, -0.0f, 1e-7f, 65504.0f, std::numeric_limits<float>::infinity()};
  for (std::size_t i = 0; i < std::size(odd) && i * 7 < count; ++i) samples[i * 7] = odd[i];
  return samples;
}

struct SpecPicture {
  ImageSpec spec;
  std::vector<float> samples;
};

SpecPicture pictureOf(const ImageSpec& spec) {
  return {spec, testSamples(spec.image_pixels() * static_cast<std::size_t>(spec.nchannels))};
}

FileBytesOfTest filePartsOf(const std::vector<SpecPicture>& pictures) {
  const auto output = OIIO::ImageOutput::create("openexr");
  const TemporaryFolder folder;
  const std::string path = folder.path("picture.exr");
  std::vector<ImageSpec> specs;
  for (const SpecPicture& picture : pictures) specs.push_back(picture.spec);
  bool isWritten = specs.size() == 1 ? output->open(path, specs[0])
                                     : output->open(path, static_cast<int>(specs.size()), specs.data());
  for (std::size_t i = 0; i < pictures.size(); ++i) {
    if (i > 0) isWritten = isWritten && output->open(path, specs[i], OIIO::ImageOutput::AppendSubimage);
    isWritten = isWritten && output->write_image(TypeDesc::FLOAT, pictures[i].samples.data());
  }
  EXPECT_TRUE(isWritten && output->close()) << output->geterror();
  return contentsOf(path);
}

FileBytesOfTest fileOf(const ImageSpec& spec) {
  return filePartsOf({pictureOf(spec)});
}

ImageSpec specOf(int width, int height, std::vector<std::string> channels, TypeDesc type = TypeDesc::HALF) {
  ImageSpec spec(width, height, static_cast<int>(channels.size()), type);
  spec.channelnames = std::move(channels);
  spec.alpha_channel = spec.channelindex("A");
  return spec;
}

const std::vector<std::string> kRgba = {"R", "G", "B", "A"};

host::WriteRequest requestFor(std::uint32_t width, std::uint32_t height, host::Channels channels, host::Depth depth) {
  host::WriteRequest request;
  request.format = host::FileFormat::Exr;
  request.width = width;
  request.height = height;
  request.channels = channels;
  request.sample = host::SampleType::Float;
  request.depth = depth;
  request.alpha = host::hasAlpha(channels) ? host::AlphaKind::Premultiplied : host::AlphaKind::None;
  return request;
}

}  // namespace

class ExrCompressions : public testing::TestWithParam<const char*> {};

TEST_P(ExrCompressions, AreReadAsByTheLibrary) {
  for (const TypeDesc& type : {TypeDesc(TypeDesc::HALF), TypeDesc(TypeDesc::FLOAT)}) {
    for (const auto& channels : {kRgba, {"R", "G", "B"}, {"Y"}, {"Y", "A"}, {"Z", "B", "G", "N.x", "R"}}) {
      for (const int tile : {0, 16, 64}) {
        ImageSpec spec = specOf(75, 53, channels, type);
        spec.attribute("compression", GetParam());
        spec.tile_width = spec.tile_height = tile;
        const FileBytesOfTest file = fileOf(spec);
        expectSamePicture(readPicture(exr(), file), readByOracle(file, "openexr"),
                          channels[0] + " in tiles of " + std::to_string(tile));
      }
    }
  }
}

TEST_P(ExrCompressions, AreReadAgainAfterTheyWereWritten) {
  using host::Channels;
  const bool loses = std::string("pxr24 b44 b44a dwaa dwab").find(GetParam()) != std::string::npos;
  for (const host::Depth depth : {host::Depth::Half, host::Depth::Float}) {
    for (const Channels channels : {Channels::Gray, Channels::GrayAlpha, Channels::RGB, Channels::RGBA}) {
      host::WriteRequest request = requestFor(300, 41, channels, depth);
      request.settings.compression = GetParam();
      const auto samples = testSamples(std::size_t{300} * 41 * host::channelCount(channels));
      const WrittenPicture written = writePicture(exr(), request, samples);
      ASSERT_TRUE(written.isWritten) << written.reason;
      EXPECT_EQ(writePicture(exr(), request, samples).file, written.file);
      const ReadPicture read = readPicture(exr(), written.file);
      expectSamePicture(read, readByOracle(written.file, "openexr"), GetParam());
      EXPECT_EQ(read.info.channels, channels);
      if (depth == host::Depth::Half || loses) continue;
      const auto pixels = read.samples<float>();
      for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::size_t count = host::channelCount(channels);
        const std::size_t component = count <= 2 && i % count == 1 ? 3 : i % count;
        ASSERT_EQ(pixels[i / count * 4 + component], samples[i]) << i;
      }
    }
  }
}

TEST_P(ExrCompressions, OfDamagedFilesAreHarmless) {
  ImageSpec spec = specOf(37, 19, kRgba);
  spec.attribute("compression", GetParam());
  expectDamageIsHarmless(exr(), fileOf(spec), GetParam(), 3);
  spec.tile_width = spec.tile_height = 16;
  spec.channelformats = {TypeDesc::HALF, TypeDesc::FLOAT, TypeDesc::HALF, TypeDesc::FLOAT};
  expectDamageIsHarmless(exr(), fileOf(spec), GetParam(), 13);
}

INSTANTIATE_TEST_SUITE_P(All, ExrCompressions,
                         testing::Values("none", "rle", "zips", "zip", "piz", "pxr24", "b44", "b44a", "dwaa", "dwab"),
                         [](const auto& row) { return std::string(row.param); });

TEST(Exr, IsReadInAllItsShapes) {
  ImageSpec mixed = specOf(33, 20, kRgba);
  mixed.channelformats = {TypeDesc::HALF, TypeDesc::FLOAT, TypeDesc::HALF, TypeDesc::HALF};
  ImageSpec uintBeside = specOf(9, 5, {"R", "G", "B", "id"});
  uintBeside.channelformats = {TypeDesc::HALF, TypeDesc::HALF, TypeDesc::HALF, TypeDesc::UINT32};
  ImageSpec upwards = specOf(40, 70, kRgba);
  upwards.attribute("openexr:lineOrder", "decreasingY");
  ImageSpec levels = specOf(64, 40, kRgba);
  levels.tile_width = levels.tile_height = 32;
  levels.attribute("openexr:levelmode", 1);
  std::vector<ImageSpec> specs = {mixed, uintBeside, upwards, specOf(12, 7, {"diffuse"})};
  for (const auto& window : {std::array{-5, -3, 20, 10}, std::array{4, 6, 8, 8}, std::array{-50, 0, 500, 3}}) {
    for (const auto& channels : {kRgba, std::vector<std::string>{"R", "G", "B"}}) {
      ImageSpec spec = specOf(31, 22, channels);
      spec.x = -2;
      spec.y = 3;
      std::tie(spec.full_x, spec.full_y, spec.full_width, spec.full_height) =
          std::tie(window[0], window[1], window[2], window[3]);
      specs.push_back(spec);
      spec.tile_width = 16;
      spec.tile_height = 8;
      specs.push_back(spec);
    }
  }
  for (std::size_t i = 0; i < specs.size(); ++i) {
    const FileBytesOfTest file = fileOf(specs[i]);
    expectSamePicture(readPicture(exr(), file), readByOracle(file, "openexr"), "shape " + std::to_string(i));
  }
}

TEST(Exr, IsDecodedWhereItIsShown) {
  ImageSpec spec = specOf(40, 64, kRgba);
  spec.attribute("compression", "zip");
  spec.full_width = 40;
  spec.full_height = 16;
  FileBytesOfTest file = fileOf(spec);
  const ReadPicture whole = readPicture(exr(), file);
  file[file.size() - 100] ^= 0xFF;
  expectSamePicture(readPicture(exr(), file), whole, "what is not shown is not decoded");

  // A file of one block whose windows are changed.
  file = fileOf(specOf(4, 1, kRgba));
  const auto setWindow = [&](const std::string& name, std::int32_t right) {
    const auto at = std::search(file.begin(), file.end(), name.begin(), name.end());
    ASSERT_NE(at, file.end());
    std::memcpy(&*at + name.size() + 1 + 6 + 4 + 8, &right, 4);
  };
  setWindow("dataWindow", 1 << 27);
  EXPECT_EQ(readPicture(exr(), file).reason, "it stores far more pixels at once than it shows");
  setWindow("displayWindow", 1 << 27);
  bool isOtherKind = false;
  EXPECT_NE(exr().open({file, {}, {}}, &isOtherKind, nullptr), nullptr) << "it shows them";
}

TEST(Exr, OfOtherProgramsIsRead) {
  for (const char* name : {"ffmpeg-zip", "ffmpeg-half-rle", "oiio-levels", "ripmap"}) {
    const FileBytesOfTest file = contentsOf(VORTO_FORMAT_FILES "/exr/" + std::string(name) + ".exr");
    expectSamePicture(readPicture(exr(), file), readByOracle(file, "openexr"), name);
  }
  EXPECT_EQ(readPicture(exr(), contentsOf(VORTO_FORMAT_FILES "/exr/luminance-chroma.exr")).reason,
            "its channel \"BY\" has one sample for 2 x 2 pixels; one for each is read");
}

TEST(Exr, WithNaNsKeepsTheirBits) {
  const std::uint32_t bits[] = {0x7F800001, 0x7FC00000, 0xFFA01000, 0x7FFFFFFF, 0x49742400, 0xC9742400,
                                0x477FEFFF, 0x477FF000, 0x33000000, 0x33000001, 0x387FFFFF, 0x80000001,
                                0x3F800FFF, 0x3F801000, 0x3F803000, 0x3F801001};
  std::vector<float> samples;
  for (const std::uint32_t word : bits) samples.push_back(std::bit_cast<float>(word));
  samples.insert(samples.end(), samples.begin(), samples.end());
  samples.resize(37, 0.5f);
  const WrittenPicture written =
      writePicture(exr(), requestFor(37, 1, host::Channels::Gray, host::Depth::Half), samples);
  ASSERT_TRUE(written.isWritten);
  const ReadPicture read = readPicture(exr(), written.file);
  expectSamePicture(read, readByOracle(written.file, "openexr"), "read");

  ImageSpec spec = specOf(37, 1, {"Y"});
  const FileBytesOfTest byLibrary = filePartsOf({{spec, samples}});
  const ReadPicture expected = readPicture(exr(), byLibrary);
  expectSamePicture(read, expected, "written");
}

TEST(Exr, IsRefusedWithTheReason) {
  ImageSpec whole = specOf(4, 4, {"R", "G", "B"}, TypeDesc::UINT32);
  ImageSpec named = specOf(4, 4, {"u", "v", "w"});
  ImageSpec onlyAlpha = specOf(4, 4, {"A"});
  EXPECT_EQ(readPicture(exr(), fileOf(whole)).reason,
            "its samples are of the type uint; 8 and 16 bits without a sign, half and float are read");
  for (const ImageSpec& spec : {named, onlyAlpha}) {
    EXPECT_EQ(readPicture(exr(), fileOf(spec)).reason, "it has no channels that make a gray or an RGB picture");
  }
  EXPECT_EQ(readPicture(exr(), fileOf(specOf(4, 4, {"light.R", "light.G", "depth.u", "depth.v"}))).reason,
            "it has no channels that make a gray or an RGB picture; its layers are depth, light");
  EXPECT_EQ(readPicture(exr(), fileOf(specOf(4, 4, {"Y", "RY", "BY"}))).reason,
            "its channel \"RY\" is a difference from its luminance; red, green and blue or gray alone are read");
  EXPECT_TRUE(readPicture(exr(), fileOf(specOf(4, 4, {"R", "G", "B", "Y", "RY"}))).isRead);
  for (const int tile : {0, 16}) {
    ImageSpec deep = specOf(3, 2, kRgba, TypeDesc::FLOAT);
    deep.deep = true;
    deep.tile_width = deep.tile_height = tile;
    const auto output = OIIO::ImageOutput::create("openexr");
    const TemporaryFolder folder;
    OIIO::DeepData data(deep);
    ASSERT_TRUE(output->open(folder.path("deep.exr"), deep) && output->write_deep_image(data) && output->close());
    EXPECT_EQ(readPicture(exr(), contentsOf(folder.path("deep.exr"))).reason,
              "it is a deep image, which has no single color at a pixel");
  }
}

TEST(Exr, HasLayersByName) {
  ImageSpec layered = specOf(
      5, 4, {"R", "G", "B", "light1.diffuse.R", "light1.diffuse.G", "light1.diffuse.B", "light1.diffuse.A", "depth.Z"});
  layered.attribute("name", "beauty");
  layered.attribute("oiio:subimagename", "beauty");
  ImageSpec second = specOf(5, 4, {"shadow.R", "shadow.G", "shadow.B"});
  second.attribute("oiio:subimagename", "shadow");
  const FileBytesOfTest file = filePartsOf({pictureOf(layered), pictureOf(second)});
  const auto all = testSamples(5 * 4 * 8);
  const struct {
    const char* layer;
    std::size_t red, blue;  // of the samples above
    host::Channels channels;
  } rows[] = {{"", 0, 2, host::Channels::RGB},
              {"beauty", 0, 2, host::Channels::RGB},
              {"light1.diffuse", 3, 5, host::Channels::RGBA},
              {"beauty.light1.diffuse", 3, 5, host::Channels::RGBA},
              {"depth", 7, 7, host::Channels::Gray}};
  for (const auto& row : rows) {
    const ReadPicture picture = readPicture(exr(), file, row.layer);
    ASSERT_TRUE(picture.isRead) << row.layer << picture.reason;
    EXPECT_EQ(picture.info.channels, row.channels) << row.layer;
    const auto samples = picture.samples<float>();
    for (std::size_t pixel = 1; pixel < 20; ++pixel) {
      EXPECT_NEAR(samples[pixel * 4], all[pixel * 8 + row.red], 1e-3) << row.layer << pixel;
      EXPECT_NEAR(samples[pixel * 4 + 2], all[pixel * 8 + row.blue], 1e-3) << row.layer << pixel;
    }
  }
  const ReadPicture shadow = readPicture(exr(), file, "shadow");
  ASSERT_TRUE(shadow.isRead);
  EXPECT_NEAR(shadow.samples<float>()[4], all[3], 1e-3) << "a part's only layer";
  EXPECT_EQ(readPicture(exr(), file, "specular").reason,
            "it has no layer \"specular\"; its layers are beauty, beauty.depth, beauty.light1.diffuse, shadow, "
            "shadow.shadow");
  EXPECT_EQ(readPicture(exr(), fileOf(specOf(2, 2, kRgba)), "x").reason,
            "it has no layer \"x\"; it has no layers at all");
}

TEST(Exr, KeepsWhatItsHeaderSays) {
  host::FileMetadata metadata;
  metadata.color.primaries =
      host::Primaries{{0.640625, 0.328125}, {0.296875, 0.59375}, {0.15625, 0.0625}, {0.3125, 0.328125}};
  metadata.color.name = "lin_rec709_scene";
  metadata.frameRate = host::Rational{24000, 1001};
  metadata.timeCode = host::TimeCode{0x01020304, 0x55667788};
  metadata.pixelAspect = 2;
  metadata.resolution = host::Resolution{72, 144, host::Resolution::Unit::Inch};
  const std::string longName(40, 'n');
  metadata.attributes = {{"comments", "string", {'h', 'i'}},
                         {"screenWindowWidth", "float", {0, 0, 0, 64}},
                         {longName, "string", {'x'}},
                         {"zeta", "someTypeOfTheirs", {1, 2, 3}}};
  host::WriteRequest request = requestFor(3, 2, host::Channels::RGBA, host::Depth::Half);
  request.metadata = &metadata;
  const WrittenPicture written = writePicture(exr(), request, testSamples(24));
  ASSERT_TRUE(written.isWritten);
  host::FileMetadata read = readPicture(exr(), written.file).info.metadata;
  const auto byName = [](const auto& left, const auto& right) { return left.name < right.name; };
  std::sort(read.attributes.begin(), read.attributes.end(), byName);
  std::sort(metadata.attributes.begin(), metadata.attributes.end(), byName);
  EXPECT_EQ(read, metadata);
  const ReadPicture oracle = readByOracle(written.file, "openexr");
  EXPECT_TRUE(oracle.isRead) << "the library reads it as well";

  host::FileMetadata wrong;
  wrong.attributes = {{"channels", "chlist", {0}},         {"owner", "string", {'a'}},
                      {"owner", "string", {'b'}},          {"speed", "float", {1, 2, 3}},
                      {std::string("a\0b", 3), "int", {}}, {"screenWindowWidth", "int", {0, 0, 0, 0}}};
  request.metadata = &wrong;
  const WrittenPicture sound = writePicture(exr(), request, testSamples(24));
  EXPECT_TRUE(readByOracle(sound.file, "openexr").isRead);
  ASSERT_EQ(readPicture(exr(), sound.file).info.metadata.attributes.size(), 1u);
}

TEST(Exr, DoesNotPassOnWhatWouldNotHoldOfTheNextFile) {
  const host::Bytes channel = {'u', 0, 1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
  host::Bytes channels = channel;
  channels.push_back(0);
  const struct {
    const char* type;
    host::Bytes sound;
    std::vector<host::Bytes> wrong;
  } rows[] = {{"stringvector", {1, 0, 0, 0, 'a', 0, 0, 0, 0}, {{2, 0, 0, 0, 'a'}, {0, 0, 0}, {255, 255, 255, 255}}},
              {"floatvector", {0, 0, 128, 63}, {{0, 0, 128}}},
              {"preview", {1, 0, 0, 0, 1, 0, 0, 0, 9, 9, 9, 9}, {{1, 0, 0, 0, 1, 0, 0, 0, 9}, {1, 0, 0, 0}, {}}},
              {"chlist", channels, {channel, {}, {'u', 0, 3, 0, 0, 0, 0}, {'u', 'v'}, {0, 0}}}};
  // As other programs may write them, past what this module would.
  for (const auto& row : rows) {
    for (std::size_t i = 0; i <= row.wrong.size(); ++i) {
      const host::Bytes& value = i == 0 ? row.sound : row.wrong[i - 1];
      host::FileMetadata metadata;
      metadata.attributes = {{"mine", std::string(row.type), value}};
      host::WriteRequest request = requestFor(3, 2, host::Channels::RGBA, host::Depth::Half);
      request.metadata = &metadata;
      const WrittenPicture written = writePicture(exr(), request, testSamples(24));
      EXPECT_EQ(readPicture(exr(), written.file).info.metadata.attributes.size(), i == 0 ? 1u : 0u) << row.type << i;
      EXPECT_TRUE(readByOracle(written.file, "openexr").isRead) << row.type << i;

      metadata.attributes[0].type = std::string(std::strlen(row.type), '?');
      FileBytesOfTest file = writePicture(exr(), request, testSamples(24)).file;
      const auto at =
          std::search(file.begin(), file.end(), metadata.attributes[0].type.begin(), metadata.attributes[0].type.end());
      ASSERT_NE(at, file.end());
      std::copy_n(row.type, std::strlen(row.type), at);
      EXPECT_EQ(readPicture(exr(), file).info.metadata.attributes.size(), i == 0 ? 1u : 0u) << row.type << i;
    }
  }

  host::FileMetadata metadata;
  metadata.color.primaries = host::Primaries{{0.64, 0.33}, {0.3, 0.6}, {0.15, 0.06}, {0.3127, 1e60}};
  metadata.attributes = {{"acesImageContainerFlag", "int", {1, 0, 0, 0}},
                         {"multiView", "stringvector", {1, 0, 0, 0, 'l'}},
                         {"oiio:ColorSpace", "string", {'s', 'R', 'G', 'B'}}};
  host::WriteRequest request = requestFor(3, 2, host::Channels::RGBA, host::Depth::Half);
  request.metadata = &metadata;
  const host::FileMetadata again = readPicture(exr(), writePicture(exr(), request, testSamples(24)).file).info.metadata;
  EXPECT_TRUE(again.attributes.empty() && !again.color.primaries);
  ImageSpec spec = specOf(4, 3, kRgba);
  const float colors[] = {0.64f, 0.33f, 0.3f, 0.6f, 0.15f, 0.06f, std::numeric_limits<float>::quiet_NaN(), 0.33f};
  spec.attribute("chromaticities", TypeDesc(TypeDesc::FLOAT, 8), colors);
  spec.attribute("acesImageContainerFlag", 1);
  spec.attribute("oiio:ColorSpace", "sRGB");
  const host::FileMetadata read = readPicture(exr(), fileOf(spec)).info.metadata;
  EXPECT_FALSE(read.color.primaries.has_value());
  for (const host::HeaderAttribute& attribute : read.attributes) {
    EXPECT_TRUE(attribute.name != "acesImageContainerFlag" && attribute.name != "oiio:ColorSpace" &&
                attribute.name != "chromaticities");
  }
}

TEST(Exr, IsSmallerTheMoreIsLost) {
  host::WriteRequest request = requestFor(64, 64, host::Channels::RGB, host::Depth::Half);
  const auto samples = testSamples(64 * 64 * 3);
  request.settings.compression = "dwaa";
  const std::size_t usual = writePicture(exr(), request, samples).file.size();
  request.settings.quality = 100;
  EXPECT_EQ(writePicture(exr(), request, samples).file.size(), usual) << "a level is a loss, no quality";
  request.settings.level = 45;
  EXPECT_EQ(writePicture(exr(), request, samples).file.size(), usual);
  request.settings.level = 100;
  EXPECT_LT(writePicture(exr(), request, samples).file.size(), usual);
}

TEST(Exr, IsNotWrittenOtherwiseThanItCanBe) {
  const struct {
    const char* compression;
    int level;
    host::Depth depth;
    const char* reason;
  } rows[] = {{"lzw", -1, host::Depth::Half,
               "EXR has no compression \"lzw\"; it has none, rle, zips, zip, piz, pxr24, b44, b44a, dwaa, dwab"},
              {"zip", 13, host::Depth::Half, "EXR has no compression level 13; they end at 12"},
              {"piz", 5, host::Depth::Half, "the compression \"piz\" has no levels"},
              {"rle", 0, host::Depth::Half, "the compression \"rle\" has no levels"},
              {"", -1, host::Depth::Bits8, "EXR files hold half or float samples"}};
  for (const auto& row : rows) {
    host::WriteRequest request = requestFor(2, 2, host::Channels::RGB, row.depth);
    request.settings.compression = row.compression;
    request.settings.level = row.level;
    EXPECT_EQ(writePicture(exr(), request, testSamples(12)).reason, row.reason);
  }
}
