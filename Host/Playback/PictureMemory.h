// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewPicture.h"

#include <cstdint>
#include <unordered_map>

namespace host {

// How many bytes of pixels a number of pictures hold together: a bitmap that several of them share counts once.
class PictureMemory {
 public:
  void add(const PreviewPicture& picture);
  void remove(const PreviewPicture& picture);  // that was added
  std::uint64_t bytes() const { return bytes_; }

 private:
  std::unordered_map<const VortoBitmap*, std::uint32_t> holders_;
  std::uint64_t bytes_ = 0;
};

}  // namespace host
