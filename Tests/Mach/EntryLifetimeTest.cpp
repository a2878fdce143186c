// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Mach/Memory.h"

// Memory that came to lie where ours was, somebody else's or a new one, is neither changed, nor shared, nor unmapped.
TEST(EntryLifetime, StaleEntryLeavesWhoeverTookItsAddressAlone) {
  for (const bool isOurs : {false, true}) {
    vm_address_t address = allocated(2 * page), mapped = 0;
    const mach_port_t old = entryOf(address, 2 * page);
    ASSERT_EQ(munmap(bytesAt(address), 2 * page), 0);
    const int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE;
    ASSERT_TRUE(isOurs ? vm_allocate(self, &address, 2 * page, VM_FLAGS_FIXED) == KERN_SUCCESS
                       : mmap(bytesAt(address), 2 * page, PROT_READ | PROT_WRITE, flags, -1, 0) != MAP_FAILED);
    bytesAt(address)[0] = 42;
    EXPECT_EQ(mapEntry(old, &mapped, 2 * page), KERN_INVALID_ADDRESS);
    const mach_port_t fresh = isOurs ? entryOf(address, 2 * page) : MACH_PORT_NULL;
    if (isOurs) mapped = placeOf(fresh, page);
    release({old}, {});
    EXPECT_EQ(bytesAt(address)[0], 42);
    if (isOurs) {
      bytesAt(mapped)[0] = 43;
      EXPECT_EQ(bytesAt(address)[0], 43);
      release({fresh}, {{mapped, page}});
    }
    release({}, {{address, 2 * page}});
  }
}

TEST(EntryLifetime, PartlyUnmappedMemoryKeepsItsBytesOrSaysThatItLostThem) {
  const vm_address_t address = numbered(4), torn = numbered(4);
  const mach_port_t entry = entryOf(address, 4 * page), ofTorn = entryOf(torn, 4 * page);
  release({}, {{address + page, page}});
  EXPECT_FALSE(isMapped(address + page));
  for (const int i : {0, 3}) EXPECT_EQ(bytesAt(address)[i * page], i + 1);
  vm_address_t place = placeOf(entry, 4 * page);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(bytesAt(place)[i * page], i + 1);
  release({entry}, {{place, 4 * page}, {address, 4 * page}});

  ASSERT_EQ(munmap(bytesAt(torn + 2 * page), page), 0);
  EXPECT_EQ(mapEntry(ofTorn, &place, 4 * page), KERN_INVALID_ADDRESS);
  EXPECT_EQ(bytesAt(torn)[0], 1);
  release({ofTorn}, {{torn, 4 * page}});
}

// Random steps against a plain model: what is mapped reads as was written, and in the end nothing is left over.
TEST(EntryLifetime, AnyMixOfStepsKeepsTheBooks) {
  struct Memory {
    vm_address_t address = 0, second = 0;
    mach_port_t entry = 0;
    std::uint8_t mark = 0;
    bool isLost = false, wasShared = false;
  };
  const auto before = openDescriptors();
  std::mt19937 random(20);
  std::vector<Memory> all(40);
  const vm_size_t size = 64 * page;  // as much as is kept when it is given back
  for (int step = 0; step < 20000; ++step) {
    Memory& memory = all[random() % all.size()];
    const unsigned kind = random() % 7;
    for (const vm_address_t place : {memory.address, memory.second}) {
      for (vm_size_t at = 0; place && at < size; at += size - 1) ASSERT_EQ(bytesAt(place)[at], memory.mark);
    }
    if (kind == 0 && !memory.address && !memory.second && !memory.entry) {
      memory = {allocated(size), 0, 0, static_cast<std::uint8_t>(step % 250 + 1)};
      for (vm_size_t at = 0; at < size; at += 511) ASSERT_EQ(bytesAt(memory.address)[at], 0);
      std::memset(bytesAt(memory.address), memory.mark, size);
    } else if (kind == 1 && memory.address && !memory.entry && !memory.wasShared) {
      memory.entry = entryOf(memory.address, size);
    } else if (kind == 2 && memory.entry && !memory.second) {
      const kern_return_t result = mapEntry(memory.entry, &memory.second, size);
      ASSERT_EQ(result, memory.isLost ? KERN_INVALID_ADDRESS : KERN_SUCCESS) << step;
      memory.wasShared = true;
    } else if (kind == 3 && memory.address) {
      ASSERT_EQ(step % 2 ? vm_deallocate(self, memory.address, size) : mach_munmap(bytesAt(memory.address), size), 0);
      memory.address = 0;
    } else if (kind == 4 && memory.second) {
      ASSERT_EQ(munmap(bytesAt(memory.second), size), 0);
      memory.second = 0;
    } else if (kind == 5 && memory.entry) {
      ASSERT_EQ(mach_port_deallocate(self, memory.entry), KERN_SUCCESS);
      memory.entry = 0;
    } else if (kind == 6 && memory.address && memory.entry && step % 8 == 0) {
      vm_address_t probe = 0;
      memory.wasShared = true;
      ASSERT_EQ(mapEntry(memory.entry, &probe, page), KERN_SUCCESS);
      ASSERT_EQ(mach_munmap(bytesAt(probe), page), 0);
    } else if (kind == 6 && memory.address && memory.entry && !memory.second && step % 8 == 4) {
      ASSERT_EQ(munmap(bytesAt(memory.address), size), 0);
      memory.address = 0;
      memory.isLost = !memory.wasShared;
    }
  }
  for (const Memory& memory : all) {
    for (const vm_address_t place : {memory.address, memory.second}) release({}, {{place, place ? size : 0}});
    if (memory.entry) release({memory.entry}, {});
  }
  EXPECT_EQ(openDescriptors(), before);
}
