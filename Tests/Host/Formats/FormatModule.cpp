// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Formats/FormatModule.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <map>

host::ImageFileModule& moduleNamed(const std::string& name) {
  static std::map<std::string, host::ImageFileModule*> modules;
  host::ImageFileModule*& module = modules[name];
  if (module == nullptr) {
    void* const library = dlopen((VORTO_MODULES "/vorto-image-" + name + ".so").c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const entry = library ? dlsym(library, host::kImageFileModuleEntry) : nullptr;
    if (!entry) {
      ADD_FAILURE() << dlerror();
      std::abort();
    }
    module = reinterpret_cast<host::ImageFileModuleFunction>(entry)();
  }
  return *module;
}

namespace {

// Pixels of a picture that is too large for a test are left.
ReadPicture readUnlessTooLarge(host::ImageFileModule& module, const FileBytesOfTest& file, const std::string& layer,
                               std::uint8_t fill, std::size_t gap, bool* isTooLarge) {
  // Exactly as large as the file, so that a sanitizer sees what is read beyond.
  const auto copy = std::make_unique<std::uint8_t[]>(file.size());
  std::copy(file.begin(), file.end(), copy.get());
  host::ReadRequest request;
  request.file = {copy.get(), file.size()};
  request.layer = layer;
  ReadPicture picture;
  const auto reader = module.open(request, &picture.isOtherKind, &picture.reason);
  if (!reader) {
    EXPECT_FALSE(picture.reason.empty() && !picture.isOtherKind);
    return picture;
  }
  picture.info = reader->info();
  const std::size_t rowSize = std::size_t{4} * picture.info.width * host::bytesPerSample(picture.info.sample);
  *isTooLarge = std::uint64_t{picture.info.width} * picture.info.height > 1 << 24;
  if (*isTooLarge) return picture;
  const std::size_t rowBytes = rowSize + gap;
  std::vector<std::uint8_t> rows(rowBytes * picture.info.height, fill);
  picture.isRead = reader->readPixels(reinterpret_cast<std::byte*>(rows.data()), rowBytes, &picture.reason);
  EXPECT_TRUE(picture.isRead || !picture.reason.empty());
  if (!picture.isRead) return picture;
  picture.pixels.reserve(rowSize * picture.info.height);
  for (std::size_t y = 0; y < picture.info.height; ++y) {
    const auto row = rows.begin() + static_cast<std::ptrdiff_t>(y * rowBytes);
    const auto end = row + static_cast<std::ptrdiff_t>(rowSize);
    picture.pixels.insert(picture.pixels.end(), row, end);
    EXPECT_TRUE(std::all_of(end, end + static_cast<std::ptrdiff_t>(gap), [fill](std::uint8_t byte) {
      return byte == fill;
    })) << "a gap";
  }
  return picture;
}

}  // namespace

ReadPicture readPicture(host::ImageFileModule& module, const FileBytesOfTest& file, const std::string& layer,
                        std::uint8_t fill, std::size_t gap) {
  bool isTooLarge = false;
  ReadPicture picture = readUnlessTooLarge(module, file, layer, fill, gap, &isTooLarge);
  EXPECT_FALSE(isTooLarge) << picture.info.width << " x " << picture.info.height << " pixels are too many for a test";
  return picture;
}

namespace {

struct OracleType {
  OIIO::TypeDesc read;
  host::SampleType sample;
  host::Depth depth;
};

OracleType typeOf(const OIIO::TypeDesc& stored) {
  if (stored == OIIO::TypeDesc::UINT8) return {stored, host::SampleType::UInt8, host::Depth::Bits8};
  if (stored == OIIO::TypeDesc::UINT16) return {stored, host::SampleType::UInt16, host::Depth::Bits16};
  return {OIIO::TypeDesc::FLOAT, host::SampleType::Float,
          stored == OIIO::TypeDesc::HALF ? host::Depth::Half : host::Depth::Float};
}

// Which of the file's channels make red, green, blue and alpha.
std::array<int, 4> channelsOf(const OIIO::ImageSpec& spec) {
  const int alpha = spec.channelindex("A") >= 0 ? spec.channelindex("A") : spec.alpha_channel;
  const int luminance = spec.channelindex("Y");
  if (spec.channelindex("R") >= 0) {
    return {spec.channelindex("R"), spec.channelindex("G"), spec.channelindex("B"), alpha};
  }
  const int gray = luminance >= 0 ? luminance : alpha == 0 ? 1 : 0;
  return {gray, gray, gray, alpha};
}

}  // namespace

ReadPicture readByOracle(const FileBytesOfTest& file, const std::string& format) {
  ReadPicture picture;
  OIIO::Filesystem::IOMemReader proxy(file.data(), file.size());
  OIIO::ImageSpec configuration;
  configuration.attribute("oiio:UnassociatedAlpha", 1);
  const auto input = OIIO::ImageInput::create(format);
  OIIO::ImageSpec spec;
  if (!input || !input->set_ioproxy(&proxy) || !input->open("picture", spec, configuration)) {
    ADD_FAILURE() << (input ? input->geterror() : OIIO::geterror());
    return picture;
  }
  const auto channels = channelsOf(spec);
  OracleType type = typeOf(spec.channelformat(channels[0]));
  for (const int channel : channels) {
    if (channel >= 0 && typeOf(spec.channelformat(channel)).depth > type.depth)
      type = typeOf(spec.channelformat(channel));
  }
  const std::size_t size = type.read.size();
  std::vector<std::uint8_t> stored(spec.image_pixels() * static_cast<std::size_t>(spec.nchannels) * size);
  picture.isRead = input->read_image(0, 0, 0, spec.nchannels, type.read, stored.data()) && !input->has_error();
  EXPECT_TRUE(picture.isRead) << input->geterror();
  picture.info.width = static_cast<std::uint32_t>(spec.full_width);
  picture.info.height = static_cast<std::uint32_t>(spec.full_height);
  picture.info.sample = type.sample;
  picture.info.depth = type.depth;
  const bool isStraight = spec.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
  picture.info.alpha = channels[3] < 0 ? host::AlphaKind::None
                       : isStraight    ? host::AlphaKind::Straight
                                       : host::AlphaKind::Premultiplied;
  const float one = 1;
  const std::uint16_t full = 0xFFFF;
  const void* const opaque = size == 4 ? static_cast<const void*>(&one) : &full;
  picture.pixels.resize(std::size_t{4} * picture.info.width * picture.info.height * size);
  for (int y = 0; y < spec.full_height; ++y) {
    for (int x = 0; x < spec.full_width; ++x) {
      const int column = x + spec.full_x - spec.x;
      const int row = y + spec.full_y - spec.y;
      const bool isStored = column >= 0 && row >= 0 && column < spec.width && row < spec.height;
      for (std::size_t component = 0; component < 4; ++component) {
        const std::size_t to = (static_cast<std::size_t>(y * spec.full_width + x) * 4 + component) * size;
        const int channel = channels[component];
        const void* from = opaque;
        if (channel >= 0 && isStored) {
          from =
              stored.data() + static_cast<std::size_t>((row * spec.width + column) * spec.nchannels + channel) * size;
        } else if (channel >= 0) {
          continue;  // empty
        }
        std::memcpy(picture.pixels.data() + to, from, size);
      }
    }
  }
  return picture;
}

void expectSamePicture(const ReadPicture& picture, const ReadPicture& expected, const std::string& what) {
  ASSERT_TRUE(picture.isRead) << what << ": " << picture.reason << (picture.isOtherKind ? " (other kind)" : "");
  EXPECT_EQ(picture.info.width, expected.info.width) << what;
  EXPECT_EQ(picture.info.height, expected.info.height) << what;
  EXPECT_EQ(picture.info.sample, expected.info.sample) << what;
  EXPECT_EQ(picture.info.depth, expected.info.depth) << what;
  EXPECT_EQ(picture.info.alpha, expected.info.alpha) << what;
  ASSERT_EQ(picture.pixels.size(), expected.pixels.size()) << what;
  const auto different = std::mismatch(picture.pixels.begin(), picture.pixels.end(), expected.pixels.begin());
  EXPECT_EQ(different.first, picture.pixels.end()) << what << ": byte " << different.first - picture.pixels.begin();
}

namespace {

class MemoryRows : public host::PixelRows {
 public:
  MemoryRows(const std::byte* samples, std::size_t rowSize) : samples_(samples), rowSize_(rowSize) {}
  const std::byte* row(std::uint32_t y) override {
    EXPECT_EQ(y, next_++) << "rows are taken in order, each once";
    return samples_ + y * rowSize_;
  }

 private:
  const std::byte* samples_;
  std::size_t rowSize_;
  std::uint32_t next_ = 0;
};

class MemoryOutput : public host::OutputBytes {
 public:
  explicit MemoryOutput(FileBytesOfTest* file) : file_(*file) {}
  bool write(std::uint64_t offset, std::span<const std::uint8_t> bytes) override {
    if (offset + bytes.size() > file_.size()) file_.resize(offset + bytes.size());
    std::copy(bytes.begin(), bytes.end(), file_.begin() + static_cast<std::ptrdiff_t>(offset));
    return true;
  }
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes) override {
    if (offset >= file_.size()) return 0;
    const std::size_t count = std::min(bytes.size(), file_.size() - static_cast<std::size_t>(offset));
    std::copy_n(file_.begin() + static_cast<std::ptrdiff_t>(offset), count, bytes.begin());
    return count;
  }

 private:
  FileBytesOfTest& file_;
};

}  // namespace

WrittenPicture writeBytes(host::ImageFileModule& module, const host::WriteRequest& request, const std::byte* samples,
                          std::size_t rowSize) {
  WrittenPicture written;
  MemoryRows rows(samples, rowSize);
  MemoryOutput output(&written.file);
  written.isWritten = module.write(request, rows, output, &written.reason);
  EXPECT_EQ(written.isWritten, written.reason.empty());
  return written;
}

void expectDamageIsHarmless(host::ImageFileModule& module, const FileBytesOfTest& file, const std::string& what,
                            std::size_t step) {
  const auto expectOne = [&](const FileBytesOfTest& damaged, const std::string& how) {
    bool isTooLarge = false;
    mallopt(M_PERTURB, 0x11);
    const ReadPicture first = readUnlessTooLarge(module, damaged, {}, 0x11, 0, &isTooLarge);
    mallopt(M_PERTURB, 0xEE);
    const ReadPicture second = readUnlessTooLarge(module, damaged, {}, 0xEE, 32, &isTooLarge);
    mallopt(M_PERTURB, 0);
    EXPECT_EQ(first.isRead, second.isRead) << what << how;
    EXPECT_TRUE(first.pixels == second.pixels) << what << how;
  };
  for (std::size_t size = 0; size < file.size(); size += step) {
    expectOne(FileBytesOfTest(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size)),
              " cut to " + std::to_string(size));
  }
  for (std::size_t place = 0; place < file.size(); place += step) {
    for (const int change : {0x01, 0x80, 0xFF}) {
      FileBytesOfTest damaged = file;
      damaged[place] = static_cast<std::uint8_t>(damaged[place] ^ change);
      expectOne(damaged, " changed at " + std::to_string(place));
    }
  }
}

FileBytesOfTest contentsOf(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  EXPECT_TRUE(stream) << path;
  return {std::istreambuf_iterator<char>(stream), {}};
}
