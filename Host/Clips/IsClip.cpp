// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/ClipReader.h"
#include "Host/Files/FileFormat.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>

namespace host {
namespace {

using namespace std::string_view_literals;

// As much of a file as tells its kind: three packets of a transport stream with time stamps.
constexpr std::size_t kStart = std::size_t{3} * 192;

// Nothing for what is no regular file or cannot be opened.
std::optional<Bytes> startOf(const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return std::nullopt;
  struct stat state {};
  std::optional<Bytes> start;
  if (::fstat(descriptor, &state) == 0 && S_ISREG(state.st_mode)) {
    start.emplace(kStart);
    start->resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::pread(descriptor, start->data(), kStart, 0))));
  }
  ::close(descriptor);
  return start;
}

bool startsWith(std::string_view bytes, std::string_view magic, std::size_t at = 0) {
  return bytes.size() >= at && bytes.substr(at).starts_with(magic);
}

// Files of boxes: the first tells what they hold.
enum class Boxes { None, Clip, Picture };
Boxes boxesOf(std::string_view bytes) {
  for (const auto box : {"moov"sv, "mdat"sv, "wide"sv, "pnot"sv, "free"sv, "skip"sv}) {
    if (startsWith(bytes, box, 4)) return Boxes::Clip;
  }
  if (!startsWith(bytes, "ftyp"sv, 4)) return Boxes::None;
  const std::string_view brand = bytes.substr(8, 4);
  constexpr std::array kPictures = {"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv, "hevx"sv, "mif1"sv, "mif2"sv,
                                    "msf1"sv, "avif"sv, "avis"sv, "jp2 "sv, "jpx "sv, "jpm "sv, "jxl "sv, "crx "sv};
  return std::ranges::find(kPictures, brand) != kPictures.end() ? Boxes::Picture : Boxes::Clip;
}

// Packets of one size, each of which starts with the same byte; before it may stand a time stamp.
bool isTransportStream(std::string_view bytes) {
  const auto holds = [&](std::size_t first, std::size_t size) {
    for (std::size_t i = 0; i < 3; ++i) {
      if (first + i * size >= bytes.size() || bytes[first + i * size] != 'G') return false;
    }
    return true;
  };
  return holds(0, 188) || holds(4, 192);
}

bool isClipByBytes(std::string_view bytes) {
  for (const auto magic :
       {"\x1A\x45\xDF\xA3"sv, "OggS"sv, "FLV\x01"sv, "\x06\x0E\x2B\x34"sv, "nut/multimedia container"sv, "YUV4MPEG2 "sv,
        "DKIF"sv, "\x30\x26\xB2\x75\x8E\x66\xCF\x11"sv, ".RMF"sv, "\0\0\x01\xBA"sv, "\0\0\x01\xB3"sv}) {
    if (startsWith(bytes, magic)) return true;
  }
  return (startsWith(bytes, "RIFF"sv) && startsWith(bytes, "AVI "sv, 8)) || boxesOf(bytes) == Boxes::Clip ||
         isTransportStream(bytes);
}

bool isPictureByBytes(const Bytes& bytes, std::string_view text) {
  return formatOfBytes(bytes) || boxesOf(text) == Boxes::Picture || startsWith(text, "GIF8"sv) ||
         startsWith(text, "RIFF"sv);
}

std::string extensionOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::ranges::transform(extension, extension.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; });
  return extension;
}

bool isExtensionOfClip(const std::string& extension) {
  constexpr std::array kExtensions = {
      ".mp4"sv,  ".m4v"sv,  ".mov"sv, ".qt"sv,   ".mkv"sv,   ".webm"sv, ".avi"sv, ".mxf"sv, ".ts"sv,
      ".m2ts"sv, ".mts"sv,  ".mpg"sv, ".mpeg"sv, ".m1v"sv,   ".m2v"sv,  ".vob"sv, ".ogv"sv, ".flv"sv,
      ".nut"sv,  ".ivf"sv,  ".y4m"sv, ".dv"sv,   ".dif"sv,   ".h264"sv, ".264"sv, ".avc"sv, ".h265"sv,
      ".265"sv,  ".hevc"sv, ".obu"sv, ".vc1"sv,  ".mjpeg"sv, ".mjpg"sv, ".wmv"sv, ".asf"sv, ".3gp"sv,
      ".3g2"sv,  ".gxf"sv,  ".wtv"sv, ".rm"sv,   ".rmvb"sv,  ".drc"sv,  ".divx"sv};
  return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

}  // namespace

bool isClip(const std::string& path) {
  const std::string extension = extensionOf(path);
  // Pictures one behind another begin as one does.
  if (extension == ".mjpeg" || extension == ".mjpg") return true;
  const auto start = startOf(path);
  if (!start) return isExtensionOfClip(extension);
  const std::string_view bytes(reinterpret_cast<const char*>(start->data()), start->size());
  return isClipByBytes(bytes) || (isExtensionOfClip(extension) && !isPictureByBytes(*start, bytes));
}

}  // namespace host
