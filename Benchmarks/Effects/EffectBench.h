// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPatch.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// What effects cost as hosts run them: a whole patch a frame, its output's memory included, beside memcpy of the frame
// and beside what a programmer would call instead.

using Frame = std::shared_ptr<const VortoBitmap>;

// What an effect works on: one image or two, and where its peers put their result.
struct Frames {
  Frame first, second;
  std::shared_ptr<VortoBitmap> out;
};

struct Peer {
  std::string name;
  std::function<void(const Frames&)> work;
};

// The peers of an effect at a layout; results are allowed to be approximate, or less than the effect's.
std::vector<Peer> peersOf(const std::string& effect, std::uint32_t formatCode);
// Those of a row of filters.
std::vector<Peer> filterPeersOf(const std::string& row, std::uint32_t formatCode);

// An effect under measurement, with the settings of its row.
struct Effect {
  const char* name;
  const char* first;
  const char* second;  // null where there is one image
  void (*prepare)(QCPatch&);
  const char* row = name;  // what its row, and its peers, go by
};

// Rows for every size, depth and kind of alpha; the effects must last. Returns true.
bool registerRows(std::span<const Effect> effects);

void setNumber(QCPatch& patch, const char* key, double value);
