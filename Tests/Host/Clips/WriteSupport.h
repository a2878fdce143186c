// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

// Clips written through ClipWriter, and what other programs find in them.
namespace clips {

// A folder of its own, gone with the object.
class Folder {
 public:
  Folder();
  ~Folder();
  std::string operator/(const std::string& name) const { return path_ + "/" + name; }
  std::vector<std::string> names() const;

 private:
  std::string path_;
};

using Frame = std::vector<std::uint8_t>;

host::FrameKind kindOf(std::uint32_t width, std::uint32_t height, int bits, bool hasAlpha);
// Smooth colors with edges, which move with the number; all values of alpha.
Frame chart(const host::FrameKind& kind, int number);

// A dozen frames of 64 x 48 at 25 frames a second, of a kind.
host::ClipTarget targetFor(const std::string& path, const std::string& codec = "", int bits = 8, bool hasAlpha = false);

// Frames of the chart, shown one unit of time each, or at `times` with the end behind.
void write(const host::ClipTarget& target, std::vector<std::int64_t> times = {});
// What write() says when it fails; empty when it does not.
std::string failureOf(const host::ClipTarget& target, const std::vector<std::int64_t>& times = {});

// The standard output of a command of the shell. A failure of the test when it fails.
std::string run(const std::string& command);
nlohmann::json probe(const std::string& path, const std::string& arguments);
// The first stream of video, its frames counted.
nlohmann::json video(const std::string& path);
// All frames decoded, in a pixel format, one after another.
Frame decoded(const std::string& path, const std::string& pixelFormat, const std::string& decoder = "");

}  // namespace clips
