// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/ImageFileLoader.h"
#include "Host/Messages/Failure.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

// Damage is refused or lived with; it never crashes, and no decoder writes to standard error by itself.

namespace {

class DamagedPictures : public testing::TestWithParam<const char*> {
 protected:
  DamagedPictures() {
    host::ImagePixels image;
    image.width = 48;
    image.height = 32;
    host::allocatePixels(image);
    std::uint32_t state = 1;
    for (std::uint8_t& sample : image.samples<std::uint8_t>()) {
      sample = static_cast<std::uint8_t>((state = state * 1664525u + 1013904223u) >> 26);
    }
    host::writeImageFile(path, std::move(image), host::Depth::Bits8);
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
      host::readImageFile(path);
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
  host::ImagePixels image;
  const std::vector<std::uint8_t> bytes(whole.begin(), whole.begin() + 9);
  EXPECT_FALSE(host::imageFiles().read(bytes, 1 << 20, &image, nullptr));
}

TEST_P(DamagedPictures, NeverCrash) {
  for (std::size_t step = 1; step <= 60; ++step) {
    std::string bytes = whole;
    for (std::size_t i = 8 + step; i < bytes.size(); i += 31 * step) bytes[i] = static_cast<char>(bytes[i] ^ 0x5A);
    isRead(bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedPictures, testing::Values("png", "jpg", "tif", "exr"),
                         [](const auto& row) { return std::string(row.param); });
