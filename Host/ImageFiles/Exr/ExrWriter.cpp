// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrWriter.h"

#include "Host/ImageFiles/Exr/ExrCodec.h"
#include "Host/ImageFiles/Exr/ExrHeaderBytes.h"
#include "Host/ImageFiles/Exr/ExrMetadata.h"
#include "Host/ImageFiles/HalfFloat.h"
#include "Host/ImageFiles/Interleaving.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace host::exr {
namespace {

constexpr std::size_t kPiece = 256;  // pixels at a time, whose samples stay in the processor's nearest cache
constexpr int kHighestLevel = 12;
constexpr const char* kNotWritten = "it could not be written";

constexpr std::pair<std::string_view, Compression> kCompressions[] = {
    {"none", kNone},   {"rle", kRunLengths}, {"zips", kZipRow}, {"zip", kZip},   {"piz", kPiz},
    {"pxr24", kPxr24}, {"b44", kB44},        {"b44a", kB44a},   {"dwaa", kDwaa}, {"dwab", kDwab},
};

// That of the methods that lose by level is how much, from the library's 45; it has no end that the format knows.
bool checkLevel(std::string_view name, std::uint8_t compression, int level, std::string* reason) {
  const bool isDeflated = compression == kZip || compression == kZipRow;
  if (level < 0 || compression == kDwaa || compression == kDwab) return true;
  if (!isDeflated) return NSRefuse(reason, "the compression \"" + std::string(name) + "\" has no levels");
  return level <= kHighestLevel || NSRefuse(reason, "EXR has no compression level " + std::to_string(level) +
                                                        "; they end at " + std::to_string(kHighestLevel));
}

bool methodOf(const WriteSettings& settings, Method* method, std::string* reason) {
  const std::string_view name = settings.compression.empty() ? "zip" : std::string_view(settings.compression);
  const auto* const found = std::find_if(std::begin(kCompressions), std::end(kCompressions),
                                         [&](const auto& compression) { return compression.first == name; });
  if (found == std::end(kCompressions)) {
    std::string list;
    for (const auto& [known, unused] : kCompressions) list += (list.empty() ? "" : ", ") + std::string(known);
    return NSRefuse(reason, "EXR has no compression \"" + std::string(name) + "\"; it has " + list);
  }
  method->compression = found->second;
  method->level = settings.level;
  return checkLevel(found->first, method->compression, settings.level, reason);
}

// By name, as files have them.
std::vector<Channel> channelsOf(const WriteRequest& request) {
  const SampleKind kind = request.depth == Depth::Half ? SampleKind::Half : SampleKind::Float;
  std::vector<Channel> channels;
  if (hasAlpha(request.channels)) channels.push_back({"A", kind});
  for (const char* name : {"B", "G", "R"}) {
    if (!isGray(request.channels)) channels.push_back({name, kind});
  }
  if (isGray(request.channels)) channels.push_back({"Y", kind});
  return channels;
}

class ExrWriter {
 public:
  ExrWriter(const WriteRequest& request, const Method& method, PixelRows& rows, OutputBytes& output)
      : request_(request), method_(method), rows_(rows), output_(output), channels_(channelsOf(request)) {}

  bool write(std::string* reason) {
    const std::uint64_t rowsAtOnce = rowsOfBlock(method_.compression);
    const std::uint64_t blocks = (request_.height + rowsAtOnce - 1) / rowsAtOnce;
    const Bytes header = headerOfPicture();
    const std::uint64_t table = header.size();
    if (!put(header, reason)) return false;
    at_ += blocks * 8;

    ByteWriter offsets;
    Encoder encoder(method_, channels_);
    for (std::uint64_t top = 0; top < request_.height; top += rowsAtOnce) {
      offsets.number(at_, 8);
      const auto bottom = static_cast<std::int64_t>(std::min<std::uint64_t>(top + rowsAtOnce, request_.height)) - 1;
      const Box box{0, static_cast<std::int64_t>(top), static_cast<std::int64_t>(request_.width) - 1, bottom};
      if (!writeBlock(box, &encoder, reason)) return false;
    }
    return output_.write(table, offsets.take()) || NSRefuse(reason, kNotWritten);
  }

 private:
  Bytes headerOfPicture() const {
    static const FileMetadata none;
    const FileMetadata& metadata = request_.metadata ? *request_.metadata : none;
    const Box box{0, 0, static_cast<std::int64_t>(request_.width) - 1, static_cast<std::int64_t>(request_.height) - 1};
    const HeaderValues values{method_.compression, &channels_, box, box, pixelAspectOf(metadata)};
    return headerBytes(values, attributesOf(metadata));
  }

  bool writeBlock(const Box& box, Encoder* encoder, std::string* reason) {
    const std::size_t rowSize = wordsOfRow();
    samples_.resize(rowSize * static_cast<std::size_t>(box.height()));
    std::uint16_t* to = samples_.data();
    for (std::int64_t y = box.top; y <= box.bottom; ++y, to += rowSize) {
      sortRow(reinterpret_cast<const float*>(rows_.row(static_cast<std::uint32_t>(y))), to);
    }
    const auto stored = encoder->encode(box, samples_, reason);
    if (stored.empty()) return false;
    ByteWriter head;
    head.integer(box.top);
    head.number(stored.size(), 4);
    return put(head.take(), reason) && put(stored, reason);
  }

  std::size_t wordsOfRow() const { return request_.width * channels_.size() * channels_[0].size() / 2; }

  // Channel by channel, in the opposite order of that in pixels.
  void sortRow(const float* pixels, std::uint16_t* row) const {
    const std::size_t count = channels_.size();
    const std::size_t channelSize = request_.width * channels_[0].size() / 2;
    float samples[4][kPiece];
    float* const planes[] = {samples[0], samples[1], samples[2], samples[3]};
    for (std::size_t done = 0; done < request_.width; done += kPiece) {
      const std::size_t piece = std::min<std::size_t>(kPiece, request_.width - done);
      separate(pixels + done * count, count, piece, planes);
      for (std::size_t i = 0; i < count; ++i) {
        storeSamples(samples[count - 1 - i], piece, row + i * channelSize + done * channels_[0].size() / 2);
      }
    }
  }

  void storeSamples(const float* samples, std::size_t count, std::uint16_t* to) const {
    if (channels_[0].kind == SampleKind::Half) {
      floatsToHalves(samples, count, to);
    } else {
      std::memcpy(to, samples, count * sizeof(float));
    }
  }

  bool put(std::span<const std::uint8_t> bytes, std::string* reason) {
    if (!output_.write(at_, bytes)) return NSRefuse(reason, kNotWritten);
    at_ += bytes.size();
    return true;
  }

  const WriteRequest& request_;
  Method method_;
  PixelRows& rows_;
  OutputBytes& output_;
  std::vector<Channel> channels_;
  std::vector<std::uint16_t> samples_;
  std::uint64_t at_ = 0;
};

}  // namespace

bool writeExr(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) {
  Method method;
  if (!methodOf(request.settings, &method, reason)) return false;
  if (request.depth != Depth::Half && request.depth != Depth::Float) {
    return NSRefuse(reason, "EXR files hold half or float samples");
  }
  constexpr std::uint64_t kLargestBlock = std::numeric_limits<std::int32_t>::max();
  const std::uint64_t pixelSize = channelCount(request.channels) * (request.depth == Depth::Half ? 2 : 4);
  if (request.width == 0 || request.height == 0 || request.height > kLargestBlock ||
      request.width > kLargestBlock / (pixelSize * rowsOfBlock(method.compression))) {
    return NSRefuse(reason, "EXR does not hold pictures of " + std::to_string(request.width) + " x " +
                                std::to_string(request.height) + " pixels");
  }
  return ExrWriter(request, method, rows, output).write(reason);
}

}  // namespace host::exr
