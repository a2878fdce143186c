// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Mach/Memory.h"

// In a build with the address sanitizer, whoever runs past memory is stopped at once.

TEST(GuardPages, StopWhoeverRunsPastMemorySharedOrNotAndGoWithTheLastPage) {
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
  // Poison ends when memory is given back or shared.
  const vm_size_t size = 64 * page;
  mach_limit_kept_memory(size);
  vm_address_t next = allocated(size);
  poisonMemory(bytesAt(next + page), size - page);
  release({}, {{next, size}});
  ASSERT_EQ(vm_allocate(self, &next, size, VM_FLAGS_FIXED), KERN_SUCCESS);
  const vm_address_t kept = allocated(size);
  for (const vm_address_t memory : {next, kept}) std::memset(bytesAt(memory), 1, size);
  const mach_port_t entry = entryOf(kept, size);
  poisonMemory(bytesAt(kept + size - page), page);
  const vm_address_t place = placeOf(entry, size);
  EXPECT_EQ(bytesAt(place)[size - 1], 1);
  release({entry}, {{next, size}, {kept, size}, {place, size}});
}
