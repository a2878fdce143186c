// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exif.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace host {
namespace {

constexpr std::uint16_t kMake = 0x010F;
constexpr std::uint16_t kOrientation = 0x0112;
constexpr std::uint16_t kExposureTime = 0x829A;
constexpr std::uint16_t kMakerNote = 0x927C;

// Numbers in one byte order, one after the other.
class Writer {
 public:
  explicit Writer(bool isBigEndian) : isBigEndian_(isBigEndian) {
    bytes = isBigEndian ? Bytes{'M', 'M'} : Bytes{'I', 'I'};
    number(42, 2);
    number(8, 4);
  }
  Writer& number(std::uint32_t value, unsigned size) {
    for (unsigned i = 0; i < size; ++i) {
      bytes.push_back(static_cast<std::uint8_t>(value >> (8 * (isBigEndian_ ? size - 1 - i : i))));
    }
    return *this;
  }
  Writer& entry(std::uint32_t tag, std::uint32_t type, std::uint32_t count, std::uint32_t place) {
    return number(tag, 2).number(type, 2).number(count, 4).number(place, 4);
  }
  Writer& shortEntry(std::uint32_t tag, std::uint32_t value) {
    return number(tag, 2).number(3, 2).number(1, 4).number(value, 2).number(0, 2);
  }

  Bytes bytes;

 private:
  bool isBigEndian_;
};

// As a camera writes it: maker, orientation, exposure, a note, a thumbnail.
Bytes cameraBlock(bool isBigEndian, std::uint32_t orientation = 6) {
  Writer block(isBigEndian);
  block.number(3, 2).entry(kMake, 2, 6, 50).shortEntry(kOrientation, orientation).entry(0x8769, 4, 1, 56);
  block.number(102, 4);  // the thumbnail's directory
  for (const char letter : {'M', 'a', 'k', 'e', 'r', '\0'}) block.number(static_cast<std::uint8_t>(letter), 1);
  block.number(2, 2).entry(kExposureTime, 5, 1, 86).entry(kMakerNote, 7, 8, 94).number(0, 4);  // at 56
  block.number(1, 4).number(250, 4);                                                           // at 86
  block.number(0x01020304, 4).number(0x05060708, 4);                                           // at 94
  block.number(2, 2).entry(0x0201, 4, 1, 132).entry(0x0202, 4, 1, 5).number(0, 4);             // at 102
  for (int i = 0; i < 5; ++i) block.number(0xD0, 1);                                           // at 132
  return block.bytes;
}

std::string textOf(const ExifEntry* entry) {
  return entry ? std::string(entry->value.begin(), entry->value.end()) : "none";
}

class ExifTest : public testing::TestWithParam<bool> {};

}  // namespace

TEST_P(ExifTest, IsReadAndWritten) {
  auto block = ExifBlock::parse(cameraBlock(GetParam()));
  ASSERT_TRUE(block);
  EXPECT_EQ(block->entries().size(), 4u);
  EXPECT_EQ(textOf(block->find(ExifDirectory::Image, kMake)), std::string("Maker\0", 6));
  EXPECT_EQ(block->number(ExifDirectory::Photo, kExposureTime), 0.004);
  EXPECT_EQ(block->orientation(), 6);
  block->setOrientation(3);
  block->set({ExifDirectory::Gps, 0x0000, ExifType::Byte, {2, 3, 0, 0}});
  block->set({ExifDirectory::Interoperability, 0x0001, ExifType::Ascii, {'R', '9', '8', 0}});
  block->set({ExifDirectory::Image, 0x8769, ExifType::Long, {1, 2, 3, 4}});  // not the caller's to say
  const Bytes written = block->serialized();
  EXPECT_EQ(written[0], GetParam() ? 'M' : 'I');
  const auto again = ExifBlock::parse(written);
  ASSERT_TRUE(again);
  EXPECT_EQ(again->entries(), block->entries());
  EXPECT_EQ(again->entries().size(), 6u);
  EXPECT_EQ(exifOrientation(written), 3);
  EXPECT_EQ(again->serialized(), written);
}

TEST_P(ExifTest, UprightKeepsAllPlacesAndDropsTheThumbnail) {
  const Bytes stored = cameraBlock(GetParam());
  const Bytes upright = uprightExif(stored);
  ASSERT_EQ(upright.size(), 102u) << "cut off in front of the thumbnail's directory";
  auto expected = cameraBlock(GetParam(), 1);
  expected.resize(102);
  std::fill_n(expected.begin() + 46, 4, std::uint8_t{0});  // there is no next directory
  EXPECT_EQ(upright, expected);
  EXPECT_EQ(uprightExif(upright), upright);
  EXPECT_EQ(exifOrientation(stored), 6);
}

TEST_P(ExifTest, EveryEntryThatTellsAnOrientationOrASizeIsChanged) {
  const auto blockOf = [](std::uint32_t width, std::uint32_t height, std::uint32_t orientation) {
    Writer block(GetParam());
    block.number(5, 2).entry(0x0100, 4, 1, width).entry(0x0101, 4, 1, height).shortEntry(kOrientation, orientation);
    block.shortEntry(kOrientation, orientation).entry(0x8769, 4, 1, 74).number(0, 4);
    block.number(2, 2).entry(0xA002, 4, 1, width).entry(0xA003, 4, 1, height).number(0, 4);
    return block.bytes;
  };
  EXPECT_EQ(uprightExif(blockOf(40, 24, 6)), blockOf(40, 24, 1));
  EXPECT_EQ(exifOfSize(blockOf(40, 24, 1), 24, 70000), blockOf(24, 70000, 1));
  EXPECT_EQ(exifOfSize(cameraBlock(GetParam()), 24, 40), cameraBlock(GetParam())) << "it tells no size";
  EXPECT_TRUE(exifOfSize(Bytes{'M', 'M'}, 1, 1).empty());
}

TEST_P(ExifTest, ResolutionIsTakenWhereThereIsNone) {
  const auto takenFrom = [](std::uint32_t unit, std::uint32_t y, FileMetadata metadata = {}) {
    Writer block(GetParam());
    block.number(3, 2).entry(0x011A, 5, 1, 50).entry(0x011B, 5, 1, 58).shortEntry(0x0128, unit).number(0, 4);
    block.number(300, 4).number(2, 4).number(y, 4).number(2, 4);
    takeExifResolution(block.bytes, &metadata);
    return metadata;
  };
  EXPECT_EQ(takenFrom(2, 300).resolution, (Resolution{150, 150, Resolution::Unit::Inch}));
  EXPECT_FALSE(takenFrom(2, 300).pixelAspect);
  EXPECT_EQ(takenFrom(3, 600).resolution, (Resolution{150, 300, Resolution::Unit::Centimeter}));
  EXPECT_EQ(takenFrom(3, 600).pixelAspect, 2);
  EXPECT_EQ(takenFrom(1, 600).pixelAspect, 2);
  FileMetadata known;
  known.resolution = Resolution{72, 72, Resolution::Unit::Inch};
  for (const FileMetadata& none : {takenFrom(1, 300), takenFrom(4, 600), takenFrom(2, 0), takenFrom(3, 600, known)}) {
    EXPECT_FALSE(none.pixelAspect);
    EXPECT_TRUE(!none.resolution || none == known);
  }
}

TEST_P(ExifTest, RecoloredSaysNothingOfTheFormerSpace) {
  auto block = ExifBlock::parse(cameraBlock(GetParam()));
  ASSERT_TRUE(block);
  const std::size_t others = block->entries().size();
  const struct {
    ExifDirectory directory;
    std::uint16_t tag;
    ExifType type;
    std::size_t size;
  } colors[] = {
      {ExifDirectory::Image, 0x012D, ExifType::Short, 1536},  {ExifDirectory::Image, 0x013E, ExifType::Rational, 16},
      {ExifDirectory::Image, 0x013F, ExifType::Rational, 48}, {ExifDirectory::Image, 0x8773, ExifType::Undefined, 200},
      {ExifDirectory::Photo, 0xA500, ExifType::Rational, 8},  {ExifDirectory::Interoperability, 1, ExifType::Ascii, 4},
  };
  for (const auto& color : colors) block->set({color.directory, color.tag, color.type, Bytes(color.size, 1)});
  block->set({ExifDirectory::Interoperability, 2, ExifType::Undefined, {'0', '1', '0', '0'}});
  const Bytes plain = block->serialized();
  EXPECT_EQ(ExifBlock::parse(recoloredExif(plain, true))->entries().size(), others + 1) << "no color space is added";
  block->set({ExifDirectory::Photo, 0xA001, ExifType::Byte, Bytes(7, 2)});
  const Bytes stored = block->serialized();
  for (const bool isSRgb : {false, true}) {
    const Bytes recolored = recoloredExif(stored, isSRgb);
    EXPECT_EQ(recolored.size(), stored.size());
    const auto again = ExifBlock::parse(recolored);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->number(ExifDirectory::Photo, 0xA001), isSRgb ? 1 : 0xFFFF);
    EXPECT_EQ(again->entries().size(), others + 2);
    for (const ExifEntry& entry : block->entries()) {
      const bool isOfColors = std::any_of(std::begin(colors), std::end(colors), [&](const auto& color) {
        return entry.directory == color.directory && entry.tag == color.tag;
      });
      if (isOfColors || entry.tag == 0xA001) continue;
      ASSERT_TRUE(again->find(entry.directory, entry.tag)) << entry.tag;
      EXPECT_EQ(*again->find(entry.directory, entry.tag), entry);
    }
  }
}

TEST_P(ExifTest, DamageDropsTheBlockWhole) {
  const Bytes whole = cameraBlock(GetParam());
  for (std::size_t size = 0; size < 102; ++size) {
    const std::span part(whole.data(), size);
    EXPECT_FALSE(ExifBlock::parse(part)) << size;
    EXPECT_TRUE(uprightExif(part).empty()) << size;
    EXPECT_EQ(exifOrientation(part), size >= 50 ? 6 : 1) << size;
  }
  for (std::size_t place = 0; place < 102; ++place) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF, whole[place] ^ 1}) {
      Bytes damaged = whole;
      damaged[place] = static_cast<std::uint8_t>(value);
      const Bytes upright = uprightExif(damaged);
      const auto block = ExifBlock::parse(damaged);
      EXPECT_EQ(block.has_value(), !upright.empty());
      const Bytes recolored = recoloredExif(damaged, false);
      EXPECT_TRUE(recolored.empty() || ExifBlock::parse(recolored));
      if (!block) continue;
      EXPECT_EQ(exifOrientation(upright), 1) << place << " " << value;
      EXPECT_TRUE(block->entries().empty() || ExifBlock::parse(block->serialized())->entries() == block->entries());
    }
  }
}

TEST_P(ExifTest, CirclesAndValuesThatShareBytesAreDamage) {
  Writer circle(GetParam());
  circle.number(1, 2).entry(0x8769, 4, 1, 8).number(0, 4);
  EXPECT_FALSE(ExifBlock::parse(circle.bytes));
  Writer shared(GetParam());
  shared.number(200, 2);
  for (std::uint32_t tag = 0; tag < 200; ++tag) shared.entry(tag, 7, 2000, 8);
  shared.number(0, 4);
  EXPECT_FALSE(ExifBlock::parse(shared.bytes)) << "it would take 200 times its size";
}

INSTANTIATE_TEST_SUITE_P(ByteOrders, ExifTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "BigEndian" : "LittleEndian"; });

}  // namespace host
