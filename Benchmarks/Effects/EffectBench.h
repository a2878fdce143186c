// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// What effects cost as hosts run them: a whole patch a frame, its output's memory included, beside memcpy of the frame
// and beside what a programmer would call instead.

class QCPatch;

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

// An effect under measurement, with its ports of images: none for a generator, the second null for a filter.
struct MeasuredEffect {
  const char* name;
  const char* first;
  const char* second;
  void (*prepare)(QCPatch&);      // sets parameters; may be null
  const char* variant = nullptr;  // stands behind the name
};

// Registers the rows of these effects, which last as long as the program.
bool registerRows(std::span<const MeasuredEffect> effects);

// For `prepare`.
void setNumber(QCPatch& patch, const char* key, double value);

// The peers of an effect at a layout; results are allowed to be approximate, or less than the effect's.
std::vector<Peer> peersOf(const std::string& effect, std::uint32_t formatCode);
std::vector<Peer> blendPeersOf(const std::string& effect, std::uint32_t formatCode);
