// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Mach/Memory.h"

#include <sys/resource.h>

#include <thread>

// Memory that was given back and comes again must be as good as new, nobody else's, and out of everybody's reach.

namespace {

constexpr vm_size_t small = 64 * page;
constexpr vm_size_t large = 1027 * page;  // some huge pages and a rest

class KeptMemoryTest : public testing::Test {
 protected:
  KeptMemoryTest() {
    mach_release_kept_memory();
    mach_limit_kept_memory(64 << 20);  // the address sanitizer's build keeps nothing unless it is asked to
  }
};

bool isZero(vm_address_t address, vm_size_t size) {
  return bytesAt(address)[0] == 0 && std::memcmp(bytesAt(address), bytesAt(address) + 1, size - 1) == 0;
}

vm_address_t filled(vm_size_t size, int value = 0xAB) {
  const vm_address_t address = allocated(size);
  std::memset(bytesAt(address), value, size);
  return address;
}

void giveBack(vm_address_t address, vm_size_t size) {
  release({}, {{address, size}});
}

TEST_F(KeptMemoryTest, IsUnmappedForItsFormerOwnerAndZeroForTheNext) {
  for (const vm_size_t size : {small, large}) {
    const vm_address_t first = filled(size);
    giveBack(first, size);
    EXPECT_FALSE(isMapped(first, page)) << "a stale pointer faults";
    const vm_address_t second = allocated(size);
    EXPECT_EQ(mach_release_kept_memory(), 0u) << "it was used again";
    EXPECT_TRUE(isZero(second, size));
    giveBack(second, size);
    EXPECT_EQ(mach_release_kept_memory(), size);
    EXPECT_FALSE(isMapped(second, page));
  }
}

TEST_F(KeptMemoryTest, IsZeroBehindWhatTheNextOverwrites) {
  giveBack(filled(large), large);
  const VMUnsetMemory outer(large);
  {
    const VMUnsetMemory overwritten(page + 1);
    const vm_address_t address = allocated(large);
    EXPECT_FALSE(isZero(address, page)) << "nothing was cleared that is overwritten";
    EXPECT_TRUE(isZero(address + page + 1, large - page - 1));
    giveBack(address, large);
  }
  EXPECT_FALSE(isZero(allocated(large), page)) << "the outer one counts again";
}

TEST_F(KeptMemoryTest, OfEntriesIsKeptOnceNobodyNamesItUnlessItWasEverShared) {
  for (const bool entryFirst : {false, true}) {
    const vm_address_t address = filled(large);  // either may be released first
    const mach_port_t entry = entryOf(address, large);
    if (entryFirst) release({entry}, {});
    giveBack(address, large);
    if (!entryFirst) {
      EXPECT_EQ(mach_release_kept_memory(), 0u) << "the entry names it still";
      release({entry}, {});
    }
    EXPECT_EQ(mach_release_kept_memory(), large);
    EXPECT_FALSE(isMapped(address, page));
  }
  // Somebody else could write to it, or would see the next picture.
  const SocketPair sockets;
  const vm_address_t address = filled(large), sent = filled(small);
  const mach_port_t entry = entryOf(address, large), ofSent = entryOf(sent, small);
  const vm_address_t place = placeOf(entry, large);
  ASSERT_EQ(mach_send_memory_entry(sockets.ours(), ofSent, nullptr, 0), KERN_SUCCESS);
  release({entry, ofSent}, {{address, large}, {sent, small}});
  EXPECT_EQ(bytesAt(place)[0], 0xAB);
  giveBack(place, large);
  EXPECT_EQ(mach_release_kept_memory(), 0u);
}

TEST_F(KeptMemoryTest, WhatIsMissingOrSomebodyElsesIsNotKept) {
  // A file may have come to lie where memory was; 0 stands for none.
  const int file = memfd_create("file", MFD_CLOEXEC);
  ASSERT_EQ(ftruncate(file, static_cast<off_t>(small)), 0);
  for (const auto& [offset, size, kind] :
       {std::tuple{vm_size_t{0}, small, 0}, {3 * page, page, 0}, {0, small, MAP_SHARED}, {0, small, MAP_PRIVATE}}) {
    const vm_address_t taken = filled(small);
    ASSERT_EQ(munmap(bytesAt(taken + offset), size), 0);
    if (kind) {
      ASSERT_NE(mmap(bytesAt(taken), small, PROT_READ | PROT_WRITE, kind | MAP_FIXED, file, 0), MAP_FAILED);
      bytesAt(taken)[0] = 5;
    }
    giveBack(taken, small);
    EXPECT_FALSE(isMapped(taken, page));
  }
  EXPECT_EQ(mach_release_kept_memory(), 0u);
  // Memory that is kept may come to lie where an entry's memory was.
  const vm_address_t lost = filled(small), other = filled(small);
  const mach_port_t entry = entryOf(lost, small);
  ASSERT_EQ(munmap(bytesAt(lost), small), 0);
  giveBack(other, small);
  vm_address_t mapped = 0;
  EXPECT_EQ(mapEntry(entry, &mapped, small), KERN_INVALID_ADDRESS);
  release({entry}, {});
  EXPECT_EQ(mach_release_kept_memory(), small);
  char byte = 0;
  EXPECT_EQ(pread(file, &byte, 1, 0), 1);
  EXPECT_EQ(byte, 5) << "nothing was cleared through it";
  close(file);
}

TEST_F(KeptMemoryTest, PartsAndNeighboursGoTheirOwnWays) {
  const vm_address_t address = filled(3 * small, 1);
  giveBack(address + small, small);
  EXPECT_TRUE(bytesAt(address)[small - 1] == 1 && bytesAt(address)[2 * small] == 1);
  const vm_address_t again = allocated(small);
  EXPECT_TRUE(isZero(again, small));
  EXPECT_EQ(mach_release_kept_memory(), 0u);
  giveBack(address, 3 * small);  // with the hole
  for (const vm_address_t part : {address, address + 2 * small}) EXPECT_FALSE(isMapped(part));
  EXPECT_EQ(mach_release_kept_memory(), 0u);
  giveBack(again, small);

  // Two that lie side by side, given back as one.
  const vm_address_t place = allocated(2 * small);
  giveBack(place, 2 * small);
  mach_release_kept_memory();
  for (vm_address_t half : {place, place + small}) {
    ASSERT_EQ(vm_allocate(self, &half, small, VM_FLAGS_FIXED), KERN_SUCCESS);
  }
  std::memset(bytesAt(place), 3, 2 * small);
  giveBack(place, 2 * small);
  EXPECT_FALSE(isMapped(place));
  const vm_address_t both = allocated(2 * small);
  EXPECT_TRUE(isZero(both, 2 * small));
  giveBack(both, 2 * small);
}

TEST_F(KeptMemoryTest, ComesAgainWritableAndAbleToBeShared) {
  const vm_address_t first = filled(small);
  ASSERT_EQ(mprotect(bytesAt(first), small, PROT_READ), 0);
  ASSERT_EQ(madvise(bytesAt(first), small, MADV_DODUMP), 0);
  ASSERT_EQ(madvise(bytesAt(first), small, MADV_DONTFORK), 0);
  giveBack(first, small);
  const vm_address_t second = allocated(small);
  EXPECT_EQ(mach_release_kept_memory(), 0u) << "it is the same memory";
  EXPECT_TRUE(isZero(second, small));
  std::memset(bytesAt(second), 4, small);
  const ChildResult child = RunInChild([second] { return bytesAt(second)[small - 1]; });
  EXPECT_TRUE(child.exitedWith(4)) << "a child has its own copy, as of all memory";
  const mach_port_t entry = entryOf(second, small);
  const vm_address_t place = placeOf(entry, small);
  EXPECT_EQ(bytesAt(place)[small - 1], 4);
  release({entry}, {{second, small}, {place, small}});
}

TEST_F(KeptMemoryTest, StaysWithinItsLimit) {
  mach_limit_kept_memory(3 * small);
  std::vector<vm_address_t> all(6);
  for (vm_address_t& address : all) address = filled(small);
  for (const vm_address_t address : all) giveBack(address, small);
  for (const vm_size_t size : {4 * small, page}) giveBack(filled(size), size);
  EXPECT_EQ(mach_release_kept_memory(), 3 * small);
  giveBack(filled(small), small);
  mach_limit_kept_memory(0);
  giveBack(filled(small), small);
  EXPECT_EQ(mach_release_kept_memory(), 0u);
}

TEST_F(KeptMemoryTest, MakesRoomBeforeAnAllocationFails) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "no limit of address space under the address sanitizer";
  constexpr vm_size_t kept = vm_size_t{32} << 20;
  giveBack(filled(kept), kept);
  rlimit before;
  ASSERT_EQ(getrlimit(RLIMIT_AS, &before), 0);
  vm_size_t pagesInUse = 0;
  std::ifstream("/proc/self/statm") >> pagesInUse;
  const rlimit tight{pagesInUse * page + kept / 4, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
  vm_address_t address = 0, second = 0;
  const kern_return_t fits = vm_allocate(self, &address, kept - page, VM_FLAGS_ANYWHERE);
  const kern_return_t doesNot = vm_allocate(self, &second, kept - page, VM_FLAGS_ANYWHERE);
  ASSERT_EQ(setrlimit(RLIMIT_AS, &before), 0);
  EXPECT_TRUE(fits == KERN_SUCCESS && doesNot == KERN_NO_SPACE) << fits << ", " << doesNot;
  EXPECT_EQ(mach_release_kept_memory(), 0u);
  giveBack(address, kept - page);
}

// Threads make and release at once; every byte is as its owner left it, and zero at first.
TEST_F(KeptMemoryTest, ServesThreads) {
  std::vector<int> faults(4);
  std::vector<std::thread> threads;
  for (unsigned thread = 0; thread < 4; ++thread) {
    threads.emplace_back([mark = std::uint8_t(thread + 1), &count = faults[thread]] {
      std::mt19937 random(mark);
      for (int i = 0; i < 300; ++i) {
        const vm_size_t size = small * (1 + random() % 2);
        vm_address_t address = 0;
        count += vm_allocate(self, &address, size, VM_FLAGS_ANYWHERE) != KERN_SUCCESS || !isZero(address, size);
        std::memset(bytesAt(address), mark, size);
        count += bytesAt(address)[size - 1] != mark || bytesAt(address)[0] != mark;
        count += vm_deallocate(self, address, size) != KERN_SUCCESS;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(faults, std::vector<int>(4));
}

}  // namespace
