// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

class PropertyList;

// Finding things by value. Private to this room.

// Hashes that differ from process to process, so that nobody can prepare keys that collide. `kind` keeps apart values
// of equal bytes that are not equal.
std::uint64_t hashOfBytes(std::string_view bytes, unsigned kind = 0);
std::uint64_t hashOfNumber(std::uint64_t bits, unsigned kind = 0);
// Of anything but an array or a dictionary; equal values have equal hashes.
std::uint64_t hashOfLeaf(const PropertyList& leaf);

// Places (0 to 2^32 - 2) of things that are kept elsewhere, by their hashes.
class HashIndex {
 public:
  static constexpr std::size_t kNone = ~std::size_t{0};

  // The place with that hash for which isSame(place) holds, or kNone.
  template <typename IsSame>
  std::size_t find(std::uint64_t hash, IsSame isSame) const {
    if (slots_.empty()) {
      return kNone;
    }
    const auto wanted = static_cast<std::uint32_t>(hash);
    for (std::size_t at = wanted & mask();; at = (at + 1) & mask()) {
      const Slot& slot = slots_[at];
      if (slot.next == 0) {
        return kNone;
      }
      if (slot.hash == wanted && isSame(std::size_t{slot.next} - 1)) {
        return slot.next - 1;
      }
    }
  }

  // Fetches what find() and add() will look at. An index outgrows the caches: whoever has many things to look up says
  // so some of them ahead, and the waits for memory overlap.
  void prefetch(std::uint64_t hash) const {
    if (!slots_.empty()) {
      __builtin_prefetch(&slots_[static_cast<std::uint32_t>(hash) & mask()]);
    }
  }
  static constexpr std::size_t kAhead = 16;

  // Adds a place that is not there yet.
  void add(std::uint64_t hash, std::size_t place);

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t next = 0;  // the place and one; 0 for an empty slot
  };
  std::size_t mask() const { return slots_.size() - 1; }
  void put(Slot slot);
  void grow();

  std::vector<Slot> slots_;  // a power of two, at most half full
  std::size_t count_ = 0;
};
