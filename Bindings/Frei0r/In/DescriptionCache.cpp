// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/DescriptionCache.h"

#include "Bindings/Frei0r/In/HelperProcess.h"
#include "Platform/Foundation/NSCacheFile.h"

#include <ctime>
#include <filesystem>

namespace vorto::frei0r {
namespace {

constexpr const char* kName = "frei0r";
constexpr std::size_t kLargest = std::size_t{1} << 25;
constexpr std::int64_t kDay = 86'400;  // seconds

}  // namespace

DescriptionCache::DescriptionCache() : heading_("frei0r 1, " + NSFileState(helperProgram()).value_or("")) {
  const auto bytes = NSReadCacheFile(kName, kLargest);
  if (bytes && !readEntries(*bytes)) entries_.clear();
}

bool DescriptionCache::readEntries(std::span<const std::uint8_t> bytes) {
  WireReader file(bytes);
  if (file.text() != heading_) return false;
  const auto sum = file.value<std::uint64_t>();
  const std::span<const std::uint8_t> body = file.bytes();
  if (!file.isAtEnd() || checksum(body) != sum) return false;
  WireReader reader(body);
  while (!reader.isAtEnd()) {
    const std::string path = reader.text();
    Entry entry;
    entry.state = reader.text();
    entry.tried = reader.value<std::int64_t>();
    std::optional<Report> report = reportOf(reader.bytes());
    if (!report || reader.hasFailed()) return false;
    entry.report = std::move(*report);
    entries_.insert_or_assign(path, std::move(entry));
  }
  return true;
}

const Report* DescriptionCache::find(const std::string& path, const std::string& state) const {
  const auto found = entries_.find(path);
  if (found == entries_.end() || found->second.state != state) return nullptr;
  const std::int64_t tried = found->second.tried;
  const std::int64_t now = std::time(nullptr);
  if (tried != 0 && (now < tried || now - tried > kDay)) return nullptr;
  return &found->second.report;
}

void DescriptionCache::add(const std::string& path, const std::string& state, Described described) {
  entries_.insert_or_assign(
      path, Entry{state, described.isFinal ? 0 : std::int64_t{std::time(nullptr)}, std::move(described.report)});
}

void DescriptionCache::write() const {
  WireWriter body;
  for (const auto& [path, entry] : entries_) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) continue;
    body.text(path);
    body.text(entry.state);
    body.value(entry.tried);
    body.bytes(bytesOf(entry.report));
  }
  WireWriter file;
  file.text(heading_);
  file.value(checksum(body.result()));
  file.bytes(body.result());
  if (file.result().size() <= kLargest) NSWriteCacheFile(kName, file.result());
}

}  // namespace vorto::frei0r
