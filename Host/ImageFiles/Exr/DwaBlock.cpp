// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/DwaBlock.h"

#include "Host/ImageFiles/FileBytes.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace host::exr {
namespace {

// The numbers at the start of a block, in their order.
enum Number : std::uint64_t {
  kVersion,
  kDeflatedRaw,    // of channels that are only deflated: bytes of samples,
  kDeflatedBytes,  // and of what is stored
  kAcBytes,
  kDcBytes,
  kRunBytes,
  kRunPacked,
  kRunRaw,  // of channels in runs: bytes of samples
  kAcCount,
  kDcCount,
  kAcCompression,
  kNumberCount
};

enum class Scheme : std::uint8_t { Deflated, Cosines, Runs };

// How the channels of a name and a kind are stored.
struct Rule {
  std::string base;
  Scheme scheme = Scheme::Deflated;
  SampleKind kind = SampleKind::Half;
  bool ignoresCase = true;
};

// The rules of blocks that do not hold any.
std::vector<Rule> firstRules() {
  std::vector<Rule> rules;
  for (const char* name : {"r", "red", "g", "grn", "green", "b", "blu", "blue", "y", "by", "ry"}) {
    for (const SampleKind kind : {SampleKind::Half, SampleKind::Float}) rules.push_back({name, Scheme::Cosines, kind});
  }
  for (const SampleKind kind : {SampleKind::UInt, SampleKind::Half, SampleKind::Float}) {
    rules.push_back({"a", Scheme::Runs, kind});
  }
  return rules;
}

bool readRules(FileBytes& bytes, std::uint64_t at, std::vector<Rule>* rules) {
  const std::uint64_t end = at + bytes.number(at, 2);
  for (at += 2; at < end && bytes.isWhole();) {
    Rule rule;
    for (std::uint64_t unit; (unit = bytes.number(at++, 1)) != 0 && at < end;) rule.base += static_cast<char>(unit);
    const std::uint64_t flags = bytes.number(at, 1);
    rule.scheme = static_cast<Scheme>(flags >> 2 & 3);
    rule.ignoresCase = (flags & 1) != 0;
    rule.kind = static_cast<SampleKind>(bytes.number(at + 1, 1));
    at += 2;
    rules->push_back(std::move(rule));
  }
  return bytes.isWhole();
}

std::string lowered(std::string_view text) {
  std::string lower(text);
  for (char& unit : lower) {
    if (unit >= 'A' && unit <= 'Z') unit = static_cast<char>(unit - 'A' + 'a');
  }
  return lower;
}

Scheme schemeOf(const Channel& channel, const std::vector<Rule>& rules) {
  const std::string base = channel.name.substr(channel.name.rfind('.') + 1);
  const auto found = std::find_if(rules.begin(), rules.end(), [&](const Rule& rule) {
    return rule.kind == channel.kind && (rule.ignoresCase ? lowered(rule.base) == lowered(base) : rule.base == base);
  });
  return found == rules.end() ? Scheme::Deflated : found->scheme;
}

bool inflatesTo(std::span<const std::uint8_t> stored, std::uint64_t size) {
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater(
      libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  return inflater && libdeflate_zlib_decompress(inflater.get(), stored.data(), stored.size(), bytes.data(),
                                                bytes.size(), nullptr) == LIBDEFLATE_SUCCESS;
}

}  // namespace

bool isDwaBlockWhole(std::span<const std::uint8_t> stored, const std::vector<Channel>& channels, std::uint64_t width,
                     std::uint64_t height) {
  FileBytes bytes(stored, false);
  const auto number = [&](Number which) { return bytes.number(which * 8, 8); };
  std::uint64_t data = kNumberCount * 8;
  std::vector<Rule> rules;
  if (number(kVersion) < 2) {
    rules = firstRules();
  } else {
    if (!readRules(bytes, data, &rules)) return false;
    data += bytes.number(data, 2);
  }
  std::uint64_t deflated = 0;
  std::uint64_t cosines = 0;
  std::uint64_t runs = 0;
  for (const Channel& channel : channels) {
    switch (schemeOf(channel, rules)) {
      case Scheme::Deflated:
        deflated += width * height * channel.size();
        break;
      case Scheme::Cosines:
        cosines += ((width + 7) / 8) * ((height + 7) / 8);
        break;
      case Scheme::Runs:
        runs += width * height * channel.size();
        break;
      default:
        return false;
    }
  }
  if (!bytes.isWhole() || number(kDeflatedRaw) != deflated || number(kDcCount) != cosines || number(kRunRaw) != runs) {
    return false;
  }
  const auto inflated = bytes.range(data, number(kDeflatedBytes));
  return bytes.isWhole() && (deflated == 0 || inflatesTo(inflated, deflated));
}

}  // namespace host::exr
