// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/FrameFiles.h"

#include "Host/Messages/Failure.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr int kMostDigits = 20;

struct Placeholder {
  std::size_t begin = 0;
  std::size_t end = 0;
  int digits = 1;
};

// The next %d or %0Nd at or after a position.
std::optional<Placeholder> findPlaceholder(const std::string& text, std::size_t from) {
  for (std::size_t begin = text.find('%', from); begin != std::string::npos; begin = text.find('%', begin + 1)) {
    std::size_t end = begin + 1;
    int digits = 1;
    if (end < text.size() && text[end] == '0') {
      const auto result = std::from_chars(text.data() + end, text.data() + text.size(), digits);
      if (result.ec != std::errc() || digits < 1 || digits > kMostDigits) continue;
      end = static_cast<std::size_t>(result.ptr - text.data());
    }
    if (end < text.size() && text[end] == 'd') return Placeholder{begin, end + 1, digits};
  }
  return std::nullopt;
}

std::optional<std::uint32_t> parsedFrame(std::string_view text) {
  std::uint32_t frame = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), frame);
  if (text.empty() || result.ec != std::errc() || result.ptr != text.data() + text.size()) return std::nullopt;
  return frame;
}

// The frame that a file name stands for; only a name that path() makes counts.
std::optional<std::uint32_t> frameOfName(const FramePattern& pattern, const std::string& name) {
  const std::string before = fs::path(pattern.before).filename().string();
  if (name.size() <= before.size() + pattern.after.size() || !name.starts_with(before) ||
      !name.ends_with(pattern.after)) {
    return std::nullopt;
  }
  const std::string digits = name.substr(before.size(), name.size() - before.size() - pattern.after.size());
  const auto frame = parsedFrame(digits);
  const auto atLeast = static_cast<std::size_t>(pattern.digits);
  const bool asWritten = digits.size() == atLeast || (digits.size() > atLeast && digits[0] != '0');
  return frame && asWritten ? frame : std::nullopt;
}

// The frames that are there, as their files' names say, in no order.
std::vector<std::uint32_t> framesOfFolder(const FramePattern& pattern, std::error_code& error) {
  const fs::path parent = fs::path(pattern.before).parent_path();
  const fs::path folder = parent.empty() ? fs::path(".") : parent;
  std::vector<std::uint32_t> frames;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (const auto frame = frameOfName(pattern, entry->path().filename().string())) frames.push_back(*frame);
  }
  return frames;
}

std::string nameOf(const FramePattern& pattern) {
  return pattern.before + (pattern.digits > 1 ? "%0" + std::to_string(pattern.digits) + "d" : "%d") + pattern.after;
}

}  // namespace

std::string FramePattern::path(std::uint32_t frame) const {
  const std::string number = std::to_string(frame);
  const auto atLeast = static_cast<std::size_t>(digits);
  return before + std::string(atLeast > number.size() ? atLeast - number.size() : 0, '0') + number + after;
}

std::optional<FramePattern> framePattern(const std::string& path) {
  const auto found = findPlaceholder(path, 0);
  if (!found) return std::nullopt;
  if (findPlaceholder(path, found->end)) {
    throw Failure(ExitCode::Usage, path + ": a name holds the number of the frame once");
  }
  FramePattern pattern{path.substr(0, found->begin), path.substr(found->end), found->digits};
  if (pattern.after.find('/') != std::string::npos) {
    throw Failure(ExitCode::Usage, path + ": the number of the frame belongs into the file's name, not the folder's");
  }
  return pattern;
}

FrameRange parsedFrameRange(const std::string& text) {
  const std::size_t dash = text.find('-');
  const auto first = parsedFrame(std::string_view(text).substr(0, dash));
  const auto last = dash == std::string::npos ? first : parsedFrame(std::string_view(text).substr(dash + 1));
  if (!first || !last || *first > *last) {
    throw Failure(ExitCode::Usage, "--frames " + text + ": give a first and a last frame, as in 1-100");
  }
  return {*first, *last};
}

FrameRange existingFrames(const FramePattern& pattern) {
  std::error_code error;
  const std::vector<std::uint32_t> frames = framesOfFolder(pattern, error);
  if (error) throw Failure(ExitCode::Input, "cannot read " + nameOf(pattern) + ": " + error.message());
  if (frames.empty()) throw Failure(ExitCode::Input, "cannot read " + nameOf(pattern) + ": there is no such frame");
  const auto [first, last] = std::ranges::minmax(frames);
  return {first, last};
}

std::vector<std::uint32_t> framesThere(const FramePattern& pattern, const FrameRange& range) {
  std::error_code error;
  std::vector<std::uint32_t> frames = framesOfFolder(pattern, error);
  std::erase_if(frames, [&](std::uint32_t frame) { return frame < range.first || frame > range.last; });
  return frames;
}

void checkFramesExist(const FramePattern& pattern, const FrameRange& range) {
  for (std::uint64_t frame = range.first; frame <= range.last; ++frame) {
    const std::string path = pattern.path(static_cast<std::uint32_t>(frame));
    std::error_code error;
    if (!fs::exists(path, error)) {
      throw Failure(ExitCode::Input, "frame " + std::to_string(frame) + " is missing: there is no file " + path);
    }
  }
}

}  // namespace host
