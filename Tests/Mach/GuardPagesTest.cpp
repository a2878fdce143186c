// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Mach/Memory.h"

// In a build with the address sanitizer, whoever runs past memory is stopped at once.

namespace {

class GuardPagesTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!kHasAddressSanitizer) GTEST_SKIP() << "guards stand in builds with the address sanitizer alone";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
  }
};

TEST_F(GuardPagesTest, StopWhoeverRunsPastMemory) {
  for (const vm_size_t size : {page, 600 * page}) {
    const vm_address_t address = allocated(size);
    volatile std::uint8_t* const bytes = bytesAt(address);
    bytes[size - 1] = 1;
    EXPECT_DEATH(bytes[size] = 1, "AddressSanitizer");
    EXPECT_EQ(vm_deallocate(self, address, size), KERN_SUCCESS);
    EXPECT_DEATH(bytes[0] = 1, "AddressSanitizer") << "given back";
  }
}

TEST_F(GuardPagesTest, StandBehindSharedMemoryTooAndGoWithTheLastPage) {
  const vm_address_t address = allocated(3 * page);
  const mach_port_t entry = entryOf(address, 3 * page);
  const vm_address_t place = placeOf(entry, 3 * page);
  volatile std::uint8_t* const bytes = bytesAt(address);
  EXPECT_DEATH(bytes[3 * page] = 1, "AddressSanitizer");
  release({}, {{address, page}});
  EXPECT_TRUE(isMapped(address + 3 * page)) << "the guard is there";
  release({entry}, {{address + page, 2 * page}, {place, 3 * page}});
  EXPECT_FALSE(isMapped(address + 3 * page));
}

TEST_F(GuardPagesTest, PoisonEndsWhenMemoryIsGivenBackOrShared) {
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

}  // namespace
