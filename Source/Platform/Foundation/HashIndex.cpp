// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/HashIndex.h"

#include "Platform/Foundation/PropertyList.h"

#include <sys/random.h>
#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>

namespace {

struct Secret {
  std::uint64_t start;
  std::uint64_t factor;
};

const Secret& secret() {
  static const Secret made = [] {
    Secret drawn{};
    if (::getrandom(&drawn, sizeof drawn, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof drawn)) {
      const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
      drawn.start = static_cast<std::uint64_t>(now) * 0x9E3779B97F4A7C15;
      drawn.factor = drawn.start ^ reinterpret_cast<std::uintptr_t>(&drawn);
    }
    drawn.factor |= 1;
    return drawn;
  }();
  return made;
}

// The halves of the product folded into one. Which pairs collide depends on the factor, which nobody outside knows.
std::uint64_t folded(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::size_t kFirstSlots = 32;

}  // namespace

std::uint64_t hashOfBytes(std::string_view bytes, unsigned kind) {
  const Secret& key = secret();
  std::uint64_t hash = folded(key.start ^ bytes.size(), key.factor + kind);
  for (std::size_t at = 0; at < bytes.size(); at += sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, std::min(sizeof word, bytes.size() - at));
    hash = folded(hash ^ word, key.factor);
  }
  return folded(hash ^ key.start, key.factor);
}

std::uint64_t hashOfNumber(std::uint64_t bits, unsigned kind) {
  const Secret& key = secret();
  return folded(folded(bits ^ key.start, key.factor + std::uint64_t{2} * kind) ^ kind, key.factor);
}

std::uint64_t hashOfLeaf(const PropertyList& leaf) {
  const unsigned kind = static_cast<unsigned>(leaf.type()) + 1;
  switch (leaf.type()) {
    case PropertyList::Type::Boolean:
      return hashOfNumber(leaf.boolValue() ? 1 : 0, kind);
    case PropertyList::Type::Integer:
      return hashOfNumber(leaf.unsignedValue(), kind);
    case PropertyList::Type::Real:
      return hashOfNumber(std::bit_cast<std::uint64_t>(leaf.doubleValue()), kind);
    case PropertyList::Type::Date:
      return hashOfNumber(std::bit_cast<std::uint64_t>(leaf.dateValue()), kind);
    case PropertyList::Type::Uid:
      return hashOfNumber(leaf.uidValue(), kind);
    case PropertyList::Type::String:
      return hashOfBytes(leaf.stringValue(), kind);
    default:
      return hashOfBytes({reinterpret_cast<const char*>(leaf.bytes().data()), leaf.bytes().size()}, kind);
  }
}

void HashIndex::add(std::uint64_t hash, std::size_t place) {
  if (slots_.size() < 2 * (count_ + 1)) {
    grow();
  }
  put({static_cast<std::uint32_t>(hash), static_cast<std::uint32_t>(place + 1)});
  ++count_;
}

void HashIndex::put(Slot slot) {
  std::size_t at = slot.hash & mask();
  while (slots_[at].next != 0) {
    at = (at + 1) & mask();
  }
  slots_[at] = slot;
}

void HashIndex::grow() {
  std::vector<Slot> former(std::max(kFirstSlots, 2 * slots_.size()));
  former.swap(slots_);
  for (const Slot& each : former) {
    if (each.next != 0) {
      put(each);
    }
  }
}
