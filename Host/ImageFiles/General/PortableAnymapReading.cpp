// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Damaged.h"
#include "Host/ImageFiles/General/PortableAnymap.h"
#include "Platform/Foundation/NSReason.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

namespace host {
namespace {

struct Header {
  char kind = 0;  // '5' gray, '6' RGB, 'f' gray floats, 'F' RGB floats
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  double scale = 0;        // the largest value; of floats below 0 where the low byte comes first
  std::size_t pixels = 0;  // where they begin

  bool isGray() const { return kind == '5' || kind == 'f'; }
  bool isFloat() const { return kind == 'f' || kind == 'F'; }
};

bool isSpace(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Words between spaces; what follows a '#' to the end of its line counts as space.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  std::string_view next() {
    while (at_ < text_.size() && (isSpace(text_[at_]) || text_[at_] == '#')) {
      at_ = text_[at_] == '#' ? std::min(text_.find('\n', at_), text_.size()) : at_ + 1;
    }
    const std::size_t begin = at_;
    while (at_ < text_.size() && !isSpace(text_[at_])) ++at_;
    return text_.substr(begin, at_ - begin);
  }
  std::size_t place() const { return at_; }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

template <class Number>
bool readNumber(std::string_view word, Number* number) {
  const auto result = std::from_chars(word.data(), word.data() + word.size(), *number);
  return !word.empty() && result.ec == std::errc() && result.ptr == word.data() + word.size();
}

bool readHeader(std::span<const std::uint8_t> file, Header* header) {
  Words words({reinterpret_cast<const char*>(file.data()), std::min<std::size_t>(file.size(), 4096)});
  const std::string_view kind = words.next();
  if (kind.size() != 2 || kind[0] != 'P' || std::string_view("56fF").find(kind[1]) == std::string_view::npos) {
    return false;
  }
  header->kind = kind[1];
  const bool areNumbers = readNumber(words.next(), &header->width) && readNumber(words.next(), &header->height) &&
                          readNumber(words.next(), &header->scale);
  header->pixels = words.place() + 1;  // one space
  if (!areNumbers || header->width == 0 || header->height == 0) return false;
  if (header->isFloat()) return header->scale != 0 && std::isfinite(header->scale);
  return header->scale >= 1 && header->scale <= 65535 && header->scale == std::floor(header->scale);
}

class AnymapReader : public ImageReader {
 public:
  AnymapReader(std::span<const std::uint8_t> file, const Header& header) : file_(file), header_(header) {
    info_.width = header.width;
    info_.height = header.height;
    info_.channels = header.isGray() ? Channels::Gray : Channels::RGB;
    if (header.isFloat()) {
      info_.sample = SampleType::Float;
      info_.depth = Depth::Float;
    } else if (header.scale > 255) {
      info_.sample = SampleType::UInt16;
      info_.depth = Depth::Bits16;
    }
  }

  std::uint64_t rowBytes() const {
    return std::uint64_t{header_.width} * channelCount(info_.channels) * bytesPerSample(info_.sample);
  }

  bool readPixels(std::byte* pixels, std::size_t targetRowBytes, std::string*) override {
    for (std::uint32_t y = 0; y < info_.height; ++y) {
      const std::uint32_t place = header_.isFloat() ? info_.height - 1 - y : y;
      const std::uint8_t* const row = file_.data() + header_.pixels + place * rowBytes();
      std::byte* const target = pixels + y * targetRowBytes;
      if (info_.sample == SampleType::UInt8) putRow<std::uint8_t>(row, target);
      if (info_.sample == SampleType::UInt16) putRow<std::uint16_t>(row, target);
      if (info_.sample == SampleType::Float) putRow<float>(row, target);
    }
    return true;
  }

 private:
  template <class Sample>
  Sample sampleAt(const std::uint8_t* bytes) const {
    if constexpr (std::is_same_v<Sample, float>) {
      std::uint32_t bits = 0;
      for (std::size_t i = 0; i < 4; ++i) bits |= std::uint32_t{bytes[i]} << 8 * (header_.scale < 0 ? i : 3 - i);
      return std::bit_cast<float>(bits);
    } else {
      const auto maximum = static_cast<std::uint32_t>(header_.scale);
      constexpr std::uint32_t full = static_cast<Sample>(-1);
      const std::uint32_t stored = sizeof(Sample) == 1 ? bytes[0] : bytes[0] * 256u + bytes[1];
      if (maximum == full) return static_cast<Sample>(stored);
      return static_cast<Sample>((std::uint64_t{std::min(stored, maximum)} * full + maximum / 2) / maximum);
    }
  }

  template <class Sample>
  void putRow(const std::uint8_t* row, std::byte* target) const {
    const std::size_t channels = channelCount(info_.channels);
    auto* to = reinterpret_cast<Sample*>(target);
    for (std::uint32_t x = 0; x < info_.width; ++x, to += 4) {
      for (std::size_t c = 0; c < 3; ++c) {
        to[c] = sampleAt<Sample>(row + (std::size_t{x} * channels + (channels == 1 ? 0 : c)) * sizeof(Sample));
      }
      to[3] = std::is_same_v<Sample, float> ? Sample(1) : static_cast<Sample>(-1);
    }
  }

  const std::span<const std::uint8_t> file_;
  const Header header_;
};

}  // namespace

bool isPortableAnymap(std::span<const std::uint8_t> file) {
  return file.size() > 2 && file[0] == 'P' &&
         std::string_view("56fF").find(static_cast<char>(file[1])) != std::string_view::npos &&
         isSpace(static_cast<char>(file[2]));
}

std::unique_ptr<ImageReader> openPortableAnymap(std::span<const std::uint8_t> file, std::string* reason) {
  Header header;
  if (!readHeader(file, &header)) {
    NSRefuse(reason, "its header is none of a portable anymap");
    return nullptr;
  }
  auto reader = std::make_unique<AnymapReader>(file, header);
  const bool isWhole =
      header.pixels <= file.size() && (file.size() - header.pixels) / reader->rowBytes() >= header.height;
  if (isWhole) return reader;
  NSRefuse(reason, kDamaged);
  return nullptr;
}

}  // namespace host
