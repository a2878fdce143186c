// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Tests/Host/Clips/ClipFiles.h"

#include <nlohmann/json.hpp>

// Clips written through ClipWriter, and what ffprobe finds in them.

host::FrameKind frameKind(std::uint32_t width, std::uint32_t height, int bits, bool hasAlpha);
// Smooth colors with edges, which move with the number; all values of alpha.
std::string chart(const host::FrameKind& kind, int number);
// A sample of packed ones, of 8 or 16 bits, by its place.
double sampleAt(const std::string& samples, std::size_t place, bool isDeep);

// Frames of 64 x 48 at 25 frames a second.
host::ClipTarget targetFor(const std::string& path, const std::string& codec = "", int bits = 8, bool hasAlpha = false);

inline constexpr std::chrono::seconds kPatience(60);

// Frames of the chart, shown at `times` with the end behind; a dozen, one unit of time each, without.
void write(const host::ClipTarget& target, std::vector<std::int64_t> times = {});
// What an action says when it fails; empty when it does not.
std::string failureOf(const std::function<void()>& action);

nlohmann::json probe(const std::string& path, const std::string& arguments);
// The first stream of video, its frames counted.
nlohmann::json video(const std::string& path);
