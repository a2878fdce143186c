// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/IccProfiles.h"

#include <cmath>
#include <utility>

namespace {

using Bytes = std::vector<std::uint8_t>;

void add16(Bytes& bytes, std::uint32_t value) {
  bytes.push_back(static_cast<std::uint8_t>(value >> 8));
  bytes.push_back(static_cast<std::uint8_t>(value));
}
void add32(Bytes& bytes, std::uint32_t value) {
  add16(bytes, value >> 16);
  add16(bytes, value & 0xFFFF);
}
void addText(Bytes& bytes, const std::string& text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

Bytes xyzTag(const std::array<double, 3>& xyz) {
  Bytes tag;
  addText(tag, "XYZ ");
  add32(tag, 0);
  for (const double value : xyz) add32(tag, static_cast<std::uint32_t>(std::lround(value * 65536)));
  return tag;
}

Bytes curveTag(const TestProfile& profile) {
  Bytes tag;
  addText(tag, "curv");
  add32(tag, 0);
  add32(tag, profile.table.empty() ? 1 : static_cast<std::uint32_t>(profile.table.size()));
  if (profile.table.empty()) add16(tag, static_cast<std::uint32_t>(std::lround(profile.gamma * 256)));
  for (const std::uint16_t value : profile.table) add16(tag, value);
  return tag;
}

Bytes descriptionTag(const std::string& text) {
  Bytes tag;
  addText(tag, "desc");
  add32(tag, 0);
  add32(tag, static_cast<std::uint32_t>(text.size() + 1));
  addText(tag, text);
  tag.resize(tag.size() + 1 + 4 + 4 + 2 + 1 + 67);
  return tag;
}

std::vector<std::pair<std::string, Bytes>> tagsOf(const TestProfile& profile) {
  std::vector<std::pair<std::string, Bytes>> tags{{"desc", descriptionTag(profile.description)},
                                                  {"wtpt", xyzTag({0.9642, 1, 0.8249})}};
  if (profile.model == "GRAY") {
    tags.emplace_back("kTRC", curveTag(profile));
    return tags;
  }
  const char* const colors[] = {"r", "g", "b"};
  for (std::size_t c = 0; c < 3; ++c) {
    tags.emplace_back(std::string(colors[c]) + "XYZ", xyzTag(profile.columns[c]));
    tags.emplace_back(std::string(colors[c]) + "TRC", curveTag(profile));
  }
  return tags;
}

}  // namespace

std::vector<std::uint8_t> profileBytes(const TestProfile& profile) {
  const auto tags = tagsOf(profile);
  Bytes table;
  Bytes data;
  add32(table, static_cast<std::uint32_t>(tags.size()));
  const std::size_t begin = 128 + 4 + 12 * tags.size();
  for (const auto& [name, tag] : tags) {
    addText(table, name);
    add32(table, static_cast<std::uint32_t>(begin + data.size()));
    add32(table, static_cast<std::uint32_t>(tag.size()));
    data.insert(data.end(), tag.begin(), tag.end());
    while (data.size() % 4 != 0) data.push_back(0);
  }
  Bytes bytes;
  add32(bytes, static_cast<std::uint32_t>(begin + data.size()));
  add32(bytes, 0);
  add32(bytes, 0x02400000);  // version 2.4
  addText(bytes, "mntr" + profile.model + profile.connection);
  bytes.resize(36);
  addText(bytes, "acsp");
  bytes.resize(68);
  for (const std::uint32_t value : {0xF6D6u, 0x10000u, 0xD32Du}) add32(bytes, value);  // D50
  bytes.resize(128);
  bytes.insert(bytes.end(), table.begin(), table.end());
  bytes.insert(bytes.end(), data.begin(), data.end());
  return bytes;
}
