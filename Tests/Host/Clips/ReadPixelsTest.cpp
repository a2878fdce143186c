// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Clips/ClipFiles.h"

namespace {

using host::SampleType;

// The largest difference of two pictures' samples.
template <class Sample>
int largestDifference(const std::string& a, const std::string& b) {
  int largest = 0;
  for (std::size_t i = 0; i + sizeof(Sample) <= a.size(); i += sizeof(Sample)) {
    Sample x;
    Sample y;
    std::memcpy(&x, &a[i], sizeof x);
    std::memcpy(&y, &b[i], sizeof y);
    largest = std::max(largest, std::abs(int{x} - int{y}));
  }
  return largest;
}

unsigned valueAt(const std::string& samples, std::size_t place, bool isDeep) {
  const auto byte = [&](std::size_t at) { return unsigned{static_cast<unsigned char>(samples[at])}; };
  return isDeep ? byte(2 * place) | byte(2 * place + 1) << 8 : byte(place);
}

// Frames whose samples are all there in their order.
struct RawKind {
  const char* name;    // ffmpeg's
  const char* layout;  // components in their order
  bool isPlanar;
  int bits;
  const char* codec;
};

constexpr std::size_t kWidth = 37;
constexpr std::size_t kHeight = 11;
constexpr std::size_t kFrames = 2;

// Any value of the bits, the first ones and the full one among them.
unsigned sampleAt(std::size_t place, int bits) {
  const auto full = (1u << bits) - 1;
  if (place % 16 == 0) return full;
  return static_cast<unsigned>((place * 2654435761u) >> 7) & full;
}

// The same place in all formats: of a frame, a component by its letter, a pixel.
std::size_t placeOf(std::size_t frame, char component, std::size_t pixel) {
  return (frame * 128 + static_cast<std::size_t>(component)) * kWidth * kHeight + pixel;
}

std::string rawFrames(const RawKind& kind) {
  const std::string layout = kind.layout;
  std::string bytes;
  const auto append = [&](std::size_t frame, char component, std::size_t pixel) {
    const unsigned value = sampleAt(placeOf(frame, component, pixel), kind.bits);
    bytes += static_cast<char>(value & 255);
    if (kind.bits > 8) bytes += static_cast<char>(value >> 8);
  };
  for (std::size_t frame = 0; frame < kFrames; ++frame) {
    for (std::size_t i = 0; i < kWidth * kHeight * layout.size(); ++i) {
      const std::size_t component = kind.isPlanar ? i / (kWidth * kHeight) : i % layout.size();
      append(frame, layout[component], kind.isPlanar ? i % (kWidth * kHeight) : i / layout.size());
    }
  }
  return bytes;
}

// What is to be read: every sample by its part of the full one.
std::string expectedFrames(const RawKind& kind) {
  const std::string layout = kind.layout;
  const bool isGray = layout[0] == 'y';
  const double full = (1u << kind.bits) - 1;
  std::string bytes;
  for (std::size_t i = 0; i < kFrames * kWidth * kHeight; ++i) {
    for (const char component : {'r', 'g', 'b', 'a'}) {
      const bool isThere = component != 'a' || layout.find('a') != std::string::npos;
      const char letter = isGray && component != 'a' ? 'y' : component;
      const unsigned value =
          isThere ? sampleAt(placeOf(i / (kWidth * kHeight), letter, i % (kWidth * kHeight)), kind.bits) : ~0u;
      const double part = isThere ? value / full : 1;
      const auto widened = static_cast<unsigned>(std::lround(part * (kind.bits > 8 ? 65535 : 255)));
      bytes += static_cast<char>(widened & 255);
      if (kind.bits > 8) bytes += static_cast<char>(widened >> 8);
    }
  }
  return bytes;
}

// A name of a file that holds what the encoder makes.
std::string containerOf(const std::string& codec) {
  return codec == "rawvideo" ? "clip.nut" : codec == "qtrle" || codec.starts_with("prores") ? "clip.mov" : "clip.mkv";
}

std::string sizeWords() {
  return " -s " + std::to_string(kWidth) + "x" + std::to_string(kHeight) + " ";
}

}  // namespace

TEST(ClipPixels, RgbIsReadAsItIs) {
  const TemporaryFolder folder;
  const RawKind rows[] = {
      {"gbrp", "gbr", true, 8, "ffv1"},
      {"gbrap", "gbra", true, 8, "png"},
      {"bgra", "bgra", false, 8, "ffv1"},
      {"bgr0", "bgr0", false, 8, "ffv1"},
      {"rgb24", "rgb", false, 8, "png"},
      {"rgba", "rgba", false, 8, "png"},
      {"rgb24", "rgb", false, 8, "libx264rgb -qp 0"},
      {"bgr24", "bgr", false, 8, "rawvideo"},
      {"argb", "argb", false, 8, "qtrle"},
      {"gbrp9le", "gbr", true, 9, "ffv1"},
      {"gbrp10le", "gbr", true, 10, "ffv1"},
      {"gbrp12le", "gbr", true, 12, "ffv1"},
      {"gbrp14le", "gbr", true, 14, "ffv1"},
      {"gbrp16le", "gbr", true, 16, "ffv1"},
      {"gbrap10le", "gbra", true, 10, "ffv1"},
      {"gbrap16le", "gbra", true, 16, "ffv1"},
      {"rgb48le", "rgb", false, 16, "png"},
      {"rgba64le", "rgba", false, 16, "png"},
      {"gray", "y", false, 8, "ffv1"},
      {"gray10le", "y", false, 10, "ffv1"},
      {"gray16le", "y", false, 16, "png"},
      {"ya8", "ya", false, 8, "png"},
  };
  for (const RawKind& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " in " + row.codec);
    const std::string clip = folder.path(containerOf(row.codec));
    runFfmpeg("-f rawvideo -pix_fmt " + std::string(row.name) + sizeWords() + "-i " +
              folder.write("raw", rawFrames(row)) + " -c:v " + row.codec + " " + clip);
    ReadClip read(clip);
    const auto& picture = read.info().picture;
    const bool hasAlpha = std::string(row.layout).find('a') != std::string::npos;
    EXPECT_EQ(picture.alpha, hasAlpha ? host::AlphaKind::Straight : host::AlphaKind::None);
    EXPECT_EQ(host::isGray(picture.channels), row.layout[0] == 'y');
    EXPECT_FALSE(picture.metadata.color.codePoints);
    EXPECT_TRUE(read.all() == expectedFrames(row));
  }
}

TEST(ClipPixels, AlphaIsExactBesideYuv) {
  const TemporaryFolder folder;
  const RawKind rows[] = {{"yuva444p", "yuva", true, 8, "ffv1"},
                          {"yuva444p10le", "yuva", true, 10, "ffv1"},
                          {"yuva444p10le", "yuva", true, 10, "prores_ks -profile:v 4444 -alpha_bits 16"}};
  for (const RawKind& row : rows) {
    SCOPED_TRACE(std::string(row.name) + " in " + row.codec);
    const std::string clip = folder.path(containerOf(row.codec));
    runFfmpeg("-f rawvideo -pix_fmt " + std::string(row.name) + sizeWords() + "-i " +
              folder.write("raw", rawFrames(row)) + " -c:v " + row.codec + " " + clip);
    ReadClip read(clip);
    EXPECT_EQ(read.info().picture.alpha, host::AlphaKind::Straight);
    const std::string found = read.all();
    const bool isDeep = row.bits > 8;
    const std::string planes = decodedByFfmpeg(clip, "", read.info().sampling);
    const double full = isDeep ? (read.info().sampling == "yuva444p12le" ? 4095 : 1023) : 255;
    const std::size_t pixels = kWidth * kHeight;
    ASSERT_EQ(found.size(), kFrames * pixels * (isDeep ? 8 : 4));
    ASSERT_EQ(planes.size(), found.size());
    std::size_t others = 0;
    for (std::size_t i = 0; i < kFrames * pixels; ++i) {
      const double stored = valueAt(planes, (i / pixels * 4 + 3) * pixels + i % pixels, isDeep);
      others += valueAt(found, 4 * i + 3, isDeep) !=
                static_cast<unsigned>(std::lround(stored / full * (isDeep ? 65535 : 255)));
    }
    EXPECT_EQ(others, 0u);
  }
}

TEST(ClipPixels, AlphaOfVp9IsRead) {
  const TemporaryFolder folder;
  const std::string clip = folder.path("clip.webm");
  runFfmpeg(
      "-f lavfi -i color=red@1:s=64x64:d=0.12,format=yuva420p -f lavfi -i color=black:s=32x64:d=0.12,format=gray "
      "-filter_complex '[1]pad=64:64:0:0:white[a];[0][a]alphamerge' -c:v libvpx-vp9 -crf 20 -b:v 0 " +
      clip);
  ReadClip read(clip);
  ASSERT_EQ(read.info().picture.alpha, host::AlphaKind::Straight);
  const std::string pixels = read.frame(2);
  EXPECT_NEAR(valueAt(pixels, 4 * (32 * 64 + 10) + 3, false), 16, 2);
  EXPECT_NEAR(valueAt(pixels, 4 * (32 * 64 + 50) + 3, false), 235, 2);
}

TEST(ClipPixels, YuvBecomesWhatFfmpegMakesOfIt) {
  const TemporaryFolder folder;
  const struct {
    const char *source, *kind, *tags, *conversion;
  } rows[] = {
      {"smptehdbars", "yuv420p", "colorspace=bt709:range=tv", "in_color_matrix=bt709:in_range=tv"},
      {"smptehdbars", "yuv422p", "colorspace=bt709:range=pc", "in_color_matrix=bt709:in_range=pc"},
      {"testsrc2", "yuv444p", "colorspace=smpte170m:range=tv", "in_color_matrix=bt601:in_range=tv"},
      {"testsrc2", "yuv420p", "colorspace=bt470bg:range=tv", "in_color_matrix=bt601:in_range=tv"},
      {"testsrc2", "yuv420p", "colorspace=bt2020nc:range=tv", "in_color_matrix=bt2020:in_range=tv"},
      {"testsrc2", "yuv444p", "colorspace=fcc:range=tv", "in_color_matrix=fcc:in_range=tv"},
      {"testsrc2", "yuv422p", "colorspace=smpte240m:range=tv", "in_color_matrix=smpte240m:in_range=tv"},
      {"testsrc2", "yuv420p", "colorspace=unknown:range=unknown", "in_color_matrix=bt601:in_range=tv"},
      {"testsrc2=s=96x720", "yuv420p", "colorspace=unknown:range=unknown", "in_color_matrix=bt709:in_range=tv"},
      {"yuvtestsrc", "yuv411p", "colorspace=bt709:range=tv", "in_color_matrix=bt709:in_range=tv"},
      {"yuvtestsrc", "yuv444p", "colorspace=bt709:range=tv", "in_color_matrix=bt709:in_range=tv"},
      {"testsrc2", "yuv420p10le", "colorspace=bt709:range=tv", "in_color_matrix=bt709:in_range=tv"},
      {"testsrc2", "yuv422p10le", "colorspace=bt2020nc:range=pc", "in_color_matrix=bt2020:in_range=pc"},
      {"testsrc2", "yuv444p12le", "colorspace=bt2020nc:range=tv", "in_color_matrix=bt2020:in_range=tv"},
      {"testsrc2", "yuv444p16le", "colorspace=bt709:range=tv", "in_color_matrix=bt709:in_range=tv"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.source) + " " + row.kind + " " + row.tags);
    const std::string clip = folder.path("clip.mkv");
    const bool hasSize = std::string(row.source).find('=') != std::string::npos;
    runFfmpeg("-f lavfi -i " + std::string(row.source) + (hasSize ? ":" : "=s=98x62:") +
              "d=0.12 -vf format=" + row.kind + ",setparams=" + row.tags + " -c:v ffv1 " + clip);
    ReadClip read(clip);
    const auto& picture = read.info().picture;
    EXPECT_EQ(read.info().sampling, row.kind);
    const bool isDeep = picture.sample == SampleType::UInt16;
    EXPECT_EQ(isDeep, std::string(row.kind).find("p1") != std::string::npos);
    const std::string expected = convertedByFfmpeg(clip, row.conversion, isDeep);
    const std::string found = read.all();
    ASSERT_EQ(found.size(), expected.size());
    EXPECT_EQ(read.count(), 3u);
    EXPECT_LE(
        isDeep ? largestDifference<std::uint16_t>(found, expected) : largestDifference<std::uint8_t>(found, expected),
        0);
    EXPECT_TRUE(read.damaged.empty());
  }
}
