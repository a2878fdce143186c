// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Mach/Memory.h"

#include <sys/mman.h>

#include <random>
#include <vector>

namespace {

const mach_port_t self = mach_task_self();

// A page that the kernel puts exactly where another was, as it does for the next one who asks.
bool takePlace(vm_address_t address, vm_size_t size) {
  return mmap(bytesAt(address), size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1,
              0) != MAP_FAILED;
}

TEST(EntryLifetime, BytesLiveOnInTheEntryAfterTheMemoryIsGivenBack) {
  for (const bool useMunmap : {false, true}) {
    const auto before = openDescriptors();
    const vm_address_t address = allocated(3 * page);
    std::memset(bytesAt(address), 0x5A, 3 * page);
    const mach_port_t entry = entryOf(address, 3 * page);
    if (useMunmap) {
      ASSERT_EQ(mach_munmap(bytesAt(address), 3 * page), 0);
    } else {
      ASSERT_EQ(vm_deallocate(self, address, 3 * page), KERN_SUCCESS);
    }
    EXPECT_EQ(openDescriptors(), before);
    vm_address_t mapped = 0;
    ASSERT_EQ(mapEntry(entry, &mapped, 3 * page), KERN_SUCCESS);
    for (vm_size_t i = 0; i < 3 * page; ++i) ASSERT_EQ(bytesAt(mapped)[i], 0x5A);
    EXPECT_EQ(mach_port_deallocate(self, entry), KERN_SUCCESS);
    EXPECT_EQ(vm_deallocate(self, mapped, 3 * page), KERN_SUCCESS);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_NE(msync(bytesAt(mapped), page, MS_ASYNC), 0);
  }
}

// Memory of somebody else's that came to lie where ours was is neither changed, nor shared, nor unmapped.
TEST(EntryLifetime, StaleEntryLeavesWhoeverTookItsAddressAlone) {
  const vm_address_t address = allocated(2 * page);
  const mach_port_t entry = entryOf(address, 2 * page);
  ASSERT_EQ(munmap(bytesAt(address), 2 * page), 0);
  ASSERT_TRUE(takePlace(address, 2 * page));
  bytesAt(address)[0] = 42;
  vm_address_t mapped = 0;
  EXPECT_EQ(mapEntry(entry, &mapped, 2 * page), KERN_INVALID_ADDRESS);
  EXPECT_EQ(mach_port_deallocate(self, entry), KERN_SUCCESS);
  EXPECT_EQ(bytesAt(address)[0], 42);
  munmap(bytesAt(address), 2 * page);
}

TEST(EntryLifetime, StaleEntryDoesNotNameTheNextMemoryAtItsAddress) {
  vm_address_t address = allocated(2 * page);
  const mach_port_t old = entryOf(address, 2 * page);
  ASSERT_EQ(munmap(bytesAt(address), 2 * page), 0);
  ASSERT_EQ(vm_allocate(self, &address, 2 * page, VM_FLAGS_FIXED), KERN_SUCCESS);
  bytesAt(address)[0] = 11;
  const mach_port_t fresh = entryOf(address, 2 * page);
  vm_address_t mapped = 0;
  EXPECT_EQ(mapEntry(old, &mapped, page), KERN_INVALID_ADDRESS);
  ASSERT_EQ(mapEntry(fresh, &mapped, page), KERN_SUCCESS);
  EXPECT_EQ(bytesAt(mapped)[0], 11);
  mach_port_deallocate(self, old);
  bytesAt(mapped)[0] = 12;
  EXPECT_EQ(bytesAt(address)[0], 12);
  mach_port_deallocate(self, fresh);
  vm_deallocate(self, address, 2 * page);
  vm_deallocate(self, mapped, page);
}

TEST(EntryLifetime, PartlyUnmappedMemoryKeepsItsBytesOrSaysThatItLostThem) {
  const vm_address_t address = allocated(4 * page);
  for (int i = 0; i < 4; ++i) bytesAt(address)[i * page] = static_cast<std::uint8_t>(i + 1);
  const mach_port_t entry = entryOf(address, 4 * page);
  ASSERT_EQ(vm_deallocate(self, address + page, page), KERN_SUCCESS);
  EXPECT_NE(msync(bytesAt(address + page), page, MS_ASYNC), 0);
  EXPECT_EQ(bytesAt(address)[0], 1);
  EXPECT_EQ(bytesAt(address)[3 * page], 4);
  vm_address_t mapped = 0;
  ASSERT_EQ(mapEntry(entry, &mapped, 4 * page), KERN_SUCCESS);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(bytesAt(mapped)[i * page], i + 1);
  mach_port_deallocate(self, entry);
  vm_deallocate(self, mapped, 4 * page);
  vm_deallocate(self, address, 4 * page);

  const vm_address_t torn = allocated(4 * page);
  const mach_port_t ofTorn = entryOf(torn, 4 * page);
  bytesAt(torn)[0] = 9;
  ASSERT_EQ(munmap(bytesAt(torn + 2 * page), page), 0);
  EXPECT_EQ(mapEntry(ofTorn, &mapped, 4 * page), KERN_INVALID_ADDRESS);
  EXPECT_EQ(bytesAt(torn)[0], 9);
  EXPECT_EQ(vm_deallocate(self, torn, 4 * page), KERN_SUCCESS);
  EXPECT_EQ(mach_port_deallocate(self, ofTorn), KERN_SUCCESS);
}

// Random steps against a plain model: what is mapped reads as was written, and in the end nothing is left over.
TEST(EntryLifetime, AnyMixOfStepsKeepsTheBooks) {
  struct Memory {
    vm_address_t address = 0;
    vm_address_t second = 0;
    mach_port_t entry = 0;
    std::uint8_t mark = 0;
    bool isLost = false;
    bool wasShared = false;
  };
  const auto before = openDescriptors();
  std::mt19937 random(20);
  std::vector<Memory> all(40);
  const vm_size_t size = 2 * page;
  for (int step = 0; step < 20000; ++step) {
    Memory& memory = all[random() % all.size()];
    const unsigned kind = random() % 7;
    for (const vm_address_t place : {memory.address, memory.second}) {
      ASSERT_TRUE(place == 0 || bytesAt(place)[size - 1] == memory.mark);
    }
    if (kind == 0 && !memory.address && !memory.second && !memory.entry) {
      memory = {allocated(size), 0, 0, static_cast<std::uint8_t>(step % 250 + 1)};
      bytesAt(memory.address)[size - 1] = memory.mark;
    } else if (kind == 1 && memory.address && !memory.entry && !memory.wasShared) {
      memory.entry = entryOf(memory.address, size);
    } else if (kind == 2 && memory.entry && !memory.second) {
      const kern_return_t result = mapEntry(memory.entry, &memory.second, size);
      ASSERT_EQ(result, memory.isLost ? KERN_INVALID_ADDRESS : KERN_SUCCESS) << step;
      memory.wasShared = true;
    } else if (kind == 3 && memory.address) {
      ASSERT_EQ(vm_deallocate(self, memory.address, size), KERN_SUCCESS);
      memory.address = 0;
    } else if (kind == 4 && memory.second) {
      ASSERT_EQ(munmap(bytesAt(memory.second), size), 0);
      memory.second = 0;
    } else if (kind == 5 && memory.entry) {
      ASSERT_EQ(mach_port_deallocate(self, memory.entry), KERN_SUCCESS);
      memory.entry = 0;
    } else if (kind == 6 && memory.address && memory.entry && random() % 4 == 0) {
      vm_address_t probe = 0;
      if (random() % 2 == 0) {
        memory.wasShared = true;
        ASSERT_EQ(mapEntry(memory.entry, &probe, page), KERN_SUCCESS);
        ASSERT_EQ(mach_munmap(bytesAt(probe), page), 0);
      } else if (!memory.second) {
        ASSERT_EQ(munmap(bytesAt(memory.address), size), 0);
        memory.address = 0;
        memory.isLost = !memory.wasShared;
      }
    }
  }
  for (Memory& memory : all) {
    for (const vm_address_t place : {memory.address, memory.second}) {
      ASSERT_TRUE(place == 0 || vm_deallocate(self, place, size) == KERN_SUCCESS);
    }
    ASSERT_TRUE(memory.entry == 0 || mach_port_deallocate(self, memory.entry) == KERN_SUCCESS);
  }
  EXPECT_EQ(openDescriptors(), before);
}

}  // namespace
