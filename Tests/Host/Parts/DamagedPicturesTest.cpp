// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Files/PictureReading.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Messages/Failure.h"
#include "Platform/Sanitizer.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

// Damage is refused or lived with; it never crashes, shows no memory that nobody wrote, and no decoder writes to
// standard error by itself.

namespace {

class DamagedPictures : public testing::TestWithParam<const char*> {
 protected:
  DamagedPictures() {
    const auto bitmap = host::newBitmap(48, 32, VortoPixelFormat::RGBA8, "a picture");
    std::uint32_t state = 1;
    for (std::size_t i = 0; i < std::size_t{48} * 32 * 4; ++i) {
      bitmap->data[i] = static_cast<std::uint8_t>((state = state * 1664525u + 1013904223u) >> 26);
    }
    host::writePicture(path, {bitmap, host::Depth::Bits8, host::Channels::RGBA, {}});
    std::ifstream file(path, std::ios::binary);
    whole.assign(std::istreambuf_iterator<char>(file), {});
  }

  // Whether the bytes are read as a picture.
  bool isRead(const std::string& bytes) const {
    std::ofstream(path, std::ios::binary) << bytes;
    Capture errors(2);
    bool read = true;
    std::string told = path;
    try {
      host::readPicture(path);
    } catch (const host::Failure& failure) {
      read = false;
      told = failure.what();
      EXPECT_EQ(failure.code, host::ExitCode::Input);
    }
    EXPECT_EQ(errors.text(), "");
    EXPECT_NE(told.find(path), std::string::npos) << told;
    return read;
  }

  TemporaryFolder folder;
  const std::string path = folder.path() + "/picture." + GetParam();
  std::string whole;
};

}  // namespace

TEST_P(DamagedPictures, AreRefusedWhenTheyAreCutShort) {
  EXPECT_TRUE(isRead(whole));
  for (const double part : {0.0005, 0.01, 0.1, 0.25, 0.5, 0.75, 0.9, 0.97}) {
    EXPECT_FALSE(isRead(whole.substr(0, static_cast<std::size_t>(part * static_cast<double>(whole.size()))))) << part;
  }
}

TEST_P(DamagedPictures, AreRefusedWithoutAReasonToo) {
  const std::vector<std::uint8_t> bytes(whole.begin(), whole.begin() + 9);
  bool isOtherKind = false;
  auto& module = host::imageFileModule(*host::formatOfBytes(bytes));
  EXPECT_FALSE(module.open({bytes, "", ""}, &isOtherKind, nullptr));
  EXPECT_FALSE(host::generalImageFileModule().open({bytes, "", ""}, &isOtherKind, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedPictures, testing::Values("png", "jpg", "tif", "exr"),
                         [](const auto& row) { return std::string(row.param); });

namespace {

// Whether bytes at the end are missing, or damaged in the middle, of one of the pictures that the fuzzer starts from.
bool isReadWith(const std::string& name, std::size_t missing, std::size_t damaged) {
  std::ifstream stream(std::string(VORTO_PICTURES "/") + name, std::ios::binary);
  std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(stream), {}};
  bytes.resize(bytes.size() - missing);
  if (damaged > 0) std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(damaged), 8, std::uint8_t{0});
  try {
    host::decodedPicture({bytes, "", ""}, name);
    return true;
  } catch (const host::Failure&) {
    return false;
  }
}

}  // namespace

// What the libraries pass over in silence, with pixels that nobody wrote or none at all in later pictures.
TEST(DamagedFiles, AreRefusedWhateverTheLibrariesMakeOfThem) {
  for (const char* name : {"rows-zip.tif", "planes-zip.tif", "tiles-zip.tif", "rows-rle.exr", "two.tif", "two.exr"}) {
    EXPECT_TRUE(isReadWith(name, 0, 0)) << name;
    EXPECT_FALSE(isReadWith(name, 3, 0)) << name;
  }
  for (const char* name : {"rows-zip.tif", "planes-zip.tif", "tiles-zip.tif"}) {
    for (const std::size_t place : {30, 100, 200}) EXPECT_FALSE(isReadWith(name, 0, place)) << name << " at " << place;
  }
  EXPECT_FALSE(isReadWith("rows-rle.exr", 0, 625));
}

TEST(DamagedFiles, AreRefusedWithoutALineOfTheLibrarysOwn) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "what its findings are written to is left alone";
  Capture errors(2);
  EXPECT_FALSE(isReadWith("wrong-sum.png", 0, 0));
  EXPECT_EQ(errors.text(), "");
}
