// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Mach/Memory.h"

#include <cerrno>

TEST(VirtualMemory, IsPageAlignedZeroAndWritableToItsLastPage) {
  for (const vm_size_t size : {vm_size_t{1}, page, page + 1, vm_size_t{5} << 20}) {
    const vm_address_t address = allocated(size);
    EXPECT_EQ(address % page, 0u);
    const vm_size_t whole = (size + page - 1) / page * page;
    for (vm_size_t i = 0; i < whole; i += 511) ASSERT_EQ(bytesAt(address)[i], 0);
    std::memset(bytesAt(address), 7, whole);
    EXPECT_EQ(vm_deallocate(self, address, size), KERN_SUCCESS);
    EXPECT_FALSE(isMapped(address, whole));
  }
}

TEST(VirtualMemory, GivesTheResultCodes) {
  constexpr vm_size_t largest = std::numeric_limits<vm_size_t>::max();
  vm_address_t address = 42;
  EXPECT_EQ(vm_allocate(self, &address, 0, VM_FLAGS_ANYWHERE), KERN_SUCCESS);
  EXPECT_EQ(address, 0u);
  EXPECT_EQ(vm_allocate(self, &address, std::size_t{1} << 60, VM_FLAGS_ANYWHERE), KERN_NO_SPACE);
  EXPECT_EQ(vm_allocate(self, &address, largest, VM_FLAGS_ANYWHERE), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(vm_allocate(self + 1, &address, page, VM_FLAGS_ANYWHERE), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(address, 0u) << "written on failure";
  for (const vm_address_t nothing : {vm_address_t{0}, vm_address_t{0xDEAD000}}) release({}, {{nothing, 0}});
  EXPECT_EQ(vm_deallocate(self, page, largest), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(mach_port_deallocate(self, 0x7FFFFFFF), KERN_INVALID_NAME);
  EXPECT_EQ(mapEntry(0x7FFFFFFF, &address, page), KERN_INVALID_OBJECT);
  EXPECT_EQ(mach_munmap(reinterpret_cast<void*>(1), page), -1);
  EXPECT_EQ(errno, EINVAL);

  const vm_address_t wanted = address = allocated(2 * page);
  EXPECT_EQ(vm_allocate(self, &address, page, VM_FLAGS_FIXED), KERN_NO_SPACE);
  release({}, {{wanted, 2 * page}});
  EXPECT_EQ(vm_allocate(self, &address, page, VM_FLAGS_FIXED), KERN_SUCCESS);
  EXPECT_EQ(address++, wanted);
  release({}, {{wanted, page}});
  EXPECT_EQ(vm_allocate(self, &address, page, VM_FLAGS_FIXED), KERN_INVALID_ARGUMENT);
}

TEST(MemoryEntry, RefusesWhatItCannotName) {
  const vm_address_t address = allocated(4 * page);
  mach_port_t entry = MACH_PORT_NULL;
  const auto make = [&](vm_size_t size, vm_offset_t at, vm_prot_t permission, mach_port_t parent) {
    return mach_make_memory_entry(self, &size, at, permission, &entry, parent);
  };
  EXPECT_EQ(make(0, address, readAndWrite, 0), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(make(page, address, VM_PROT_READ, 0), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(make(page, address, readAndWrite, 5), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(make(page, 0, readAndWrite, 0), KERN_INVALID_ADDRESS);
  EXPECT_EQ(entry, MACH_PORT_NULL);

  vm_size_t size = page + 1;
  ASSERT_EQ(mach_make_memory_entry(self, &size, address + 1, readAndWrite, &entry, 0), KERN_SUCCESS);
  EXPECT_EQ(size, 2 * page) << "the pages that were touched";
  mach_port_t other = MACH_PORT_NULL;
  EXPECT_EQ(mach_make_memory_entry(self, &size, address + page, readAndWrite, &other, 0), KERN_INVALID_ARGUMENT);
  vm_address_t mapped = 0;
  EXPECT_EQ(mapEntry(entry, &mapped, 2 * page + 1), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(mapEntry(entry, &mapped, page, 2 * page), KERN_INVALID_ARGUMENT);
  EXPECT_EQ(mapEntry(entry, &mapped, page, 1), KERN_INVALID_ARGUMENT);
  release({entry}, {{address, 4 * page}});
}

TEST(MemoryEntry, CostsNoDescriptorUntilItIsMapped) {
  const auto before = openDescriptors();
  std::vector<std::pair<vm_address_t, mach_port_t>> all(10000);
  for (auto& [address, entry] : all) entry = entryOf(address = allocated(page), page);
  for (std::size_t i = 0; i < all.size(); ++i) bytesAt(all[i].first)[page - 1] = static_cast<std::uint8_t>(i);
  for (std::size_t i = 0; i < all.size(); ++i) ASSERT_EQ(bytesAt(all[i].first)[page - 1], i % 256);
  EXPECT_EQ(openDescriptors(), before);
  const vm_address_t place = placeOf(all[7].second, page);
  EXPECT_EQ(openDescriptors(), before + 1);
  for (const auto& [address, entry] : all) release({entry}, {{address, page}});
  EXPECT_EQ(openDescriptors(), before);
  release({}, {{place, page}});
}

TEST(MemoryEntry, SharesTheSameBytesAtTheOldAddressAndTheNew) {
  const vm_size_t size = 600 * page;
  const vm_address_t address = allocated(size);
  const auto pattern = [](vm_size_t i) { return static_cast<std::uint8_t>(i * 31 >> 3); };
  for (vm_size_t i = 0; i < size; ++i) bytesAt(address)[i] = pattern(i);
  const mach_port_t entry = entryOf(address, size);
  const vm_address_t mapped = placeOf(entry, size);
  ASSERT_NE(mapped, address);
  for (vm_size_t i = 0; i < size; ++i) ASSERT_EQ(bytesAt(mapped)[i], pattern(i));
  bytesAt(mapped)[size - 1] = 99;
  EXPECT_EQ(bytesAt(address)[size - 1], 99);
  const vm_address_t copy = placeOf(entry, page, size - page, true);
  bytesAt(address)[size - 1] = 1;
  EXPECT_EQ(bytesAt(copy)[page - 1], 99) << "a copy keeps the bytes of its moment";
  release({entry}, {});
  EXPECT_EQ(bytesAt(mapped)[size - 1], 1) << "memory outlives the entry";
  release({}, {{address, size}, {mapped, size}, {copy, page}});
}

TEST(MemoryEntry, OfAPartNamesThatPart) {
  const vm_address_t address = numbered(8);
  const mach_port_t whole = entryOf(address, 8 * page), part = entryOf(address + 3 * page, 2 * page);
  const vm_address_t ofPart = placeOf(part, page, page);
  EXPECT_EQ(bytesAt(ofPart)[0], 5);
  release({whole}, {});
  bytesAt(address)[4 * page] = 77;
  EXPECT_EQ(bytesAt(ofPart)[0], 77);
  const mach_port_t again = entryOf(ofPart, page);  // what was mapped can be named again
  const vm_address_t third = placeOf(again, page);
  EXPECT_EQ(bytesAt(third)[0], 77);
  release({part, again}, {{address, 8 * page}, {ofPart, page}, {third, page}});
}

// In a build with the address sanitizer, whoever runs past memory is stopped at once.
TEST(GuardPagesTest, StopWhoeverRunsPastMemorySharedOrNotAndGoWithTheLastPage) {
  if (!kHasAddressSanitizer) GTEST_SKIP() << "guards stand in builds with the address sanitizer alone";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  for (const vm_size_t size : {page, 3 * page, 600 * page}) {
    const vm_address_t address = allocated(size);
    volatile std::uint8_t* const bytes = bytesAt(address);
    bytes[size - 1] = 1;
    EXPECT_DEATH(bytes[size] = 1, "AddressSanitizer");
    const mach_port_t entry = entryOf(address, size);
    const vm_address_t place = size == 3 * page ? placeOf(entry, size) : 0;
    EXPECT_DEATH(bytes[size] = 1, "AddressSanitizer");
    release({}, {{address, size - page}});
    EXPECT_TRUE(isMapped(address + size)) << "the guard is there";
    release({entry}, {{address + size - page, page}, {place, place ? size : 0}});
    EXPECT_EQ(isMapped(address + size), false);
    EXPECT_DEATH(bytes[0] = 1, "AddressSanitizer") << "given back";
  }
}

TEST(GuardPagesTest, PoisonEndsWhenMemoryIsGivenBackOrShared) {
  const vm_size_t size = 64 * page;
  mach_limit_kept_memory(size);
  const vm_address_t address = allocated(size);
  poisonMemory(bytesAt(address + page), size - page);
  ASSERT_EQ(vm_deallocate(self, address, size), KERN_SUCCESS);
  vm_address_t next = address;
  ASSERT_EQ(vm_allocate(self, &next, size, VM_FLAGS_FIXED), KERN_SUCCESS);
  std::memset(bytesAt(next), 1, size);
  const vm_address_t kept = allocated(size);
  std::memset(bytesAt(kept), 1, size);
  const mach_port_t entry = entryOf(kept, size);
  poisonMemory(bytesAt(kept + size - page), page);
  const vm_address_t place = placeOf(entry, size);
  EXPECT_EQ(bytesAt(place)[size - 1], 1);
  release({entry}, {{next, size}, {kept, size}, {place, size}});
}
