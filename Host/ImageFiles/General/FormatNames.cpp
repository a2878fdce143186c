// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/FormatNames.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace host {
namespace {

using namespace std::string_view_literals;

struct Sign {
  const char* format;
  std::string_view bytes;
  std::size_t offset = 0;
};

constexpr Sign kSigns[] = {
    {"tiff", "II\x2a\0"sv},
    {"tiff", "MM\0\x2a"sv},
    {"tiff", "II\x2b\0"sv},
    {"tiff", "MM\0\x2b"sv},
    {"webp", "WEBP"sv, 8},
    {"bmp", "BM"sv},
    {"dpx", "SDPX"sv},
    {"dpx", "XPDS"sv},
    {"cineon", "\x80\x2a\x5f\xd7"sv},
    {"hdr", "#?RADIANCE"sv},
    {"hdr", "#?RGBE"sv},
    {"jpeg2000", "\0\0\0\x0cjP  \r\n\x87\n"sv},
    {"jpeg2000", "\xff\x4f\xff\x51"sv},
    {"heif", "ftypheic"sv, 4},
    {"heif", "ftypheix"sv, 4},
    {"heif", "ftypmif1"sv, 4},
    {"heif", "ftypavif"sv, 4},
    {"gif", "GIF8"sv},
    {"psd", "8BPS"sv},
    {"pnm", "P1"sv},
    {"pnm", "P2"sv},
    {"pnm", "P3"sv},
    {"pnm", "P4"sv},
    {"sgi", "\x01\xda"sv},
    {"dds", "DDS "sv},
    {"iff", "FOR4"sv},
    {"fits", "SIMPLE  ="sv},
    {"ico", "\0\0\1\0"sv},
    {"softimage", "\x53\x80\xf6\x34"sv},
};

struct Extension {
  const char* format;
  std::string_view extension;
};

constexpr Extension kExtensions[] = {{"targa", ".tga"}, {"rla", ".rla"}};

bool hasSign(std::span<const std::uint8_t> file, const Sign& sign) {
  return file.size() >= sign.offset + sign.bytes.size() &&
         std::memcmp(file.data() + sign.offset, sign.bytes.data(), sign.bytes.size()) == 0;
}

}  // namespace

const char* formatNameOf(std::span<const std::uint8_t> file, const std::string& extension) {
  const auto sign = std::ranges::find_if(kSigns, [&](const Sign& s) { return hasSign(file, s); });
  if (sign != std::end(kSigns)) return sign->format;
  constexpr std::string_view footer = "TRUEVISION-XFILE.\0"sv;
  if (file.size() > 44 && std::memcmp(file.data() + file.size() - footer.size(), footer.data(), footer.size()) == 0) {
    return "targa";
  }
  std::string small = extension;
  std::ranges::transform(small, small.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  const auto known = std::ranges::find(kExtensions, std::string_view(small), &Extension::extension);
  return known == std::end(kExtensions) ? nullptr : known->format;
}

}  // namespace host
