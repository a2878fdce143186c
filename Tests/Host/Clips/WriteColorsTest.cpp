// SPDX-License-Identifier: BSD-3-Clause
// How exactly colors become what a clip stores: measured without a codec's own loss, against the definition.
#include "Tests/Host/Clips/WriteSupport.h"

namespace {

struct Stored {
  const char* sampling;
  int bits;
  int primaries;
  double kr, kb;  // of the matrix that goes with them
};

std::string nameOf(const testing::TestParamInfo<Stored>& info) {
  return std::string("yuv") + info.param.sampling + "_" + std::to_string(info.param.bits) + "_primaries_" +
         std::to_string(info.param.primaries);
}

class WriteColors : public testing::TestWithParam<Stored> {
 protected:
  // Y, Cb and Cr of a pixel, as the definition has them, in steps.
  std::array<double, 3> exact(const std::string& frame, const host::FrameKind& kind, std::size_t pixel) const {
    const Stored& stored = GetParam();
    const bool isDeep = kind.sample == host::SampleType::UInt16;
    std::array<double, 3> rgb{};
    for (std::size_t i = 0; i < 3; ++i) {
      rgb[i] = sampleAt(frame, pixel * 3 + i, isDeep) / (isDeep ? 65535 : 255);
    }
    const double y = stored.kr * rgb[0] + (1 - stored.kr - stored.kb) * rgb[1] + stored.kb * rgb[2];
    const double scale = std::pow(2.0, stored.bits - 8);
    return {(16 + 219 * y) * scale, (128 + 112 * (rgb[2] - y) / (1 - stored.kb)) * scale,
            (128 + 112 * (rgb[0] - y) / (1 - stored.kr)) * scale};
  }
};

TEST_P(WriteColors, AreWhatTheDefinitionSays) {
  const Stored& stored = GetParam();
  const TemporaryFolder folder;
  const std::string path = folder.path("out.mkv");
  host::ClipTarget target = targetFor(path, "ffv1", stored.bits);
  target.settings.sampling = stored.sampling;
  target.metadata.color.codePoints = host::CodePoints{static_cast<std::uint8_t>(stored.primaries), 1, 0, true};
  write(target, {0, 1});
  const std::string suffix = stored.bits > 8 ? std::to_string(stored.bits) + "le" : "";
  const std::string found = decodedByFfmpeg(path, "", std::string("yuv") + stored.sampling + "p" + suffix);
  const auto foundAt = [&](int place) { return sampleAt(found, static_cast<std::size_t>(place), stored.bits > 8); };
  const std::string frame = chart(target.kind, 0);
  const bool isHalfWide = std::string(stored.sampling) != "444";
  const bool isHalfHigh = std::string(stored.sampling) == "420";
  const int width = static_cast<int>(target.kind.width);
  const int height = static_cast<int>(target.kind.height);
  const auto exactAt = [&](int x, int y) {
    return exact(frame, target.kind, static_cast<std::size_t>(y * width + std::clamp(x, 0, width - 1)));
  };
  double luma = 0;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) luma = std::max(luma, std::abs(foundAt(y * width + x) - exactAt(x, y)[0]));
  }
  // Chroma stands between two columns, and between two rows.
  double chroma = 0;
  const int chromaWidth = isHalfWide ? width / 2 : width;
  const int chromaHeight = isHalfHigh ? height / 2 : height;
  for (int plane = 1; plane < 3; ++plane) {
    const int start = width * height + (plane - 1) * chromaWidth * chromaHeight;
    for (int y = 0; y < chromaHeight; ++y) {
      for (int x = 0; x < chromaWidth; ++x) {
        double expected = 0;
        for (int row = 0; row < (isHalfHigh ? 2 : 1); ++row) {
          const int from = isHalfHigh ? 2 * y + row : y;
          const auto at = [&](int column) { return exactAt(column, from)[static_cast<std::size_t>(plane)]; };
          expected += isHalfWide ? (at(2 * x) + at(2 * x + 1)) / 2 : at(x);
        }
        if (isHalfHigh) expected /= 2;
        chroma = std::max(chroma, std::abs(foundAt(start + y * chromaWidth + x) - expected));
      }
    }
  }
  EXPECT_LE(luma, 0.51);
  EXPECT_LE(chroma, 0.51);
}

INSTANTIATE_TEST_SUITE_P(All, WriteColors,
                         testing::Values(Stored{"444", 8, 1, 0.2126, 0.0722}, Stored{"422", 8, 1, 0.2126, 0.0722},
                                         Stored{"420", 8, 1, 0.2126, 0.0722}, Stored{"420", 8, 6, 0.299, 0.114},
                                         Stored{"420", 8, 5, 0.299, 0.114}, Stored{"444", 10, 1, 0.2126, 0.0722},
                                         Stored{"422", 10, 1, 0.2126, 0.0722}, Stored{"420", 10, 9, 0.2627, 0.0593},
                                         Stored{"444", 12, 1, 0.2126, 0.0722}, Stored{"444", 16, 1, 0.2126, 0.0722}),
                         nameOf);

}  // namespace
