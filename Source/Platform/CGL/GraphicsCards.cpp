// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/GraphicsCards.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <system_error>
#include <vector>

namespace cgl {

namespace {

// The entries of the folder in the order of their names; none when it cannot be read.
std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> entries;
  std::error_code error;
  for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
    entries.push_back(it->path());
  std::sort(entries.begin(), entries.end());
  return entries;
}

std::string firstWordOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::string word;
  stream >> word;
  return word;
}

}  // namespace

std::uint32_t activeDisplays(const std::filesystem::path& cards) {
  std::uint32_t count = 0;
  for (const auto& entry : entriesOf(cards)) {
    if (firstWordOf(entry / "status") == "connected" && firstWordOf(entry / "enabled") == "enabled") ++count;
  }
  return count;
}

std::uint64_t dedicatedMemory(const std::filesystem::path& cards) {
  for (const auto& entry : entriesOf(cards)) {
    std::ifstream stream(entry / "device" / "mem_info_vram_total");
    std::uint64_t bytes = 0;
    if (stream >> bytes && bytes > 0) return bytes;
  }
  return 0;
}

std::uint64_t mainMemory() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  return pages > 0 && pageSize > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) : 0;
}

}  // namespace cgl
