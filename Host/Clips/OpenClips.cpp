// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/OpenClips.h"

#include "Host/Messages/Remark.h"

namespace host {

void OpenClips::open(std::size_t input, const std::string& path, std::size_t slots, std::chrono::seconds patience) {
  clips_[input] = std::make_unique<Clip>(path, slots, patience);
  const ClipInfo& info = clips_[input]->reader.info();
  if (!info.remark.empty()) remark(path + ": " + info.remark);
}

std::vector<const ClipInfo*> OpenClips::infos() const {
  std::vector<const ClipInfo*> result;
  for (const auto& clip : clips_) result.push_back(clip ? &clip->reader.info() : nullptr);
  return result;
}

}  // namespace host
