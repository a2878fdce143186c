// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Mach/MemoryEntries.h"

#include <sys/mman.h>

#include <utility>

namespace mach {

MemoryEntries& MemoryEntries::shared() {
  static MemoryEntries& entries = *new MemoryEntries;  // statics may still own bitmaps when the process ends
  return entries;
}

mach_port_t MemoryEntries::add(Entry entry) {
  do {
    ++lastName_;
  } while (lastName_ == MACH_PORT_NULL || lastName_ == mach_task_self() || entries_.count(lastName_) != 0);
  entries_.emplace(lastName_, std::move(entry));
  return lastName_;
}

const Entry* MemoryEntries::find(mach_port_t name) const {
  const auto found = entries_.find(name);
  return found == entries_.end() ? nullptr : &found->second;
}

bool MemoryEntries::remove(mach_port_t name) {
  const auto found = entries_.find(name);
  if (found == entries_.end()) return false;
  const std::shared_ptr<MemoryObject> object = std::move(found->second.object);
  entries_.erase(found);
  if (object.use_count() == 1) removePlacesOf(object);
  return true;
}

void MemoryEntries::removePlacesOf(const std::shared_ptr<MemoryObject>& object) {
  const auto isOf = [&object](const Placement& placement) { return placement.object.lock() == object; };
  if (!object->isAnonymous()) {
    std::erase_if(placements_, [&isOf](const auto& placed) { return isOf(placed.second); });
    return;
  }
  const auto home = placements_.find(object->home().start);
  if (home != placements_.end() && isOf(home->second)) placements_.erase(home);
}

MemoryEntries::Placements::iterator MemoryEntries::firstOverlapping(const Range& range) {
  auto placed = placements_.lower_bound(range.start);
  if (placed != placements_.begin() && std::prev(placed)->second.end > range.start) --placed;
  return placed != placements_.end() && placed->first < range.end ? placed : placements_.end();
}

kern_return_t MemoryEntries::entryFor(const Range& range, Entry* entry) {
  const auto placed = firstOverlapping(range);
  if (placed != placements_.end()) {
    const Range place{placed->first, placed->second.end};
    const std::shared_ptr<MemoryObject> object = placed->second.object.lock();
    const kern_return_t checked = !object                 ? KERN_INVALID_ADDRESS
                                  : object->isAnonymous() ? checkAllocatedMemory(place)
                                                          : checkMappingOf(object->descriptor(), place);
    if (checked == KERN_SUCCESS) {
      if (!place.contains(range)) return KERN_INVALID_ARGUMENT;
      *entry = {object, placed->second.offset + (range.start - place.start), range.size()};
      return KERN_SUCCESS;
    }
    if (checked != KERN_INVALID_ADDRESS) return checked;
    forget(range);
  }
  if (msync(reinterpret_cast<void*>(range.start), range.size(), MS_ASYNC) != 0) return KERN_INVALID_ADDRESS;
  *entry = {std::make_shared<MemoryObject>(range), 0, range.size()};
  place(entry->object, 0, range);
  return KERN_SUCCESS;
}

void MemoryEntries::forget(const Range& range) {
  for (auto placed = firstOverlapping(range); placed != placements_.end() && placed->first < range.end;) {
    if (const auto object = placed->second.object.lock(); object && object->isAnonymous()) object->lose();
    placed = placements_.erase(placed);
  }
}

void MemoryEntries::place(const std::shared_ptr<MemoryObject>& object, std::size_t offset, const Range& range) {
  forget(range);
  placements_[range.start] = {range.end, offset, object};
}

kern_return_t MemoryEntries::unmap(const Range& range) {
  // Memory that keeps some of its pages cannot stay behind as a whole.
  for (auto placed = firstOverlapping(range); placed != placements_.end() && placed->first < range.end; ++placed) {
    const auto object = placed->second.object.lock();
    if (!object || !object->isAnonymous() || range.contains({placed->first, placed->second.end})) continue;
    const kern_return_t shared = object->share();
    if (shared == KERN_INVALID_ADDRESS) {
      object->lose();  // unmapped by others before, no bytes to keep
    } else if (shared != KERN_SUCCESS) {
      return shared;
    }
  }
  kern_return_t result = KERN_SUCCESS;
  std::uintptr_t reached = range.start;
  const auto unmapTo = [&reached, &result](std::uintptr_t end) {
    if (end <= reached) return;
    if (const kern_return_t given = giveBack({reached, end}); given != KERN_SUCCESS) result = given;
  };
  for (auto placed = firstOverlapping(range); placed != placements_.end() && placed->first < range.end;) {
    const auto object = placed->second.object.lock();
    if (object && object->isAnonymous() && range.contains({placed->first, placed->second.end})) {
      object->detach();
      unmapTo(placed->first);
      reached = placed->second.end;
    }
    placed = placements_.erase(placed);
  }
  unmapTo(range.end);
  return result;
}

}  // namespace mach
