// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "Tests/Mach/Memory.h"

#include <sys/mman.h>

// In a build with the address sanitizer, whoever runs past memory is stopped at once.

namespace {

const mach_port_t self = mach_task_self();

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
  vm_address_t mapped = 0;
  ASSERT_EQ(mapEntry(entry, &mapped, 3 * page), KERN_SUCCESS);
  volatile std::uint8_t* const bytes = bytesAt(address);
  EXPECT_DEATH(bytes[3 * page] = 1, "AddressSanitizer");
  ASSERT_EQ(vm_deallocate(self, address, page), KERN_SUCCESS);
  EXPECT_EQ(msync(bytesAt(address + 3 * page), page, MS_ASYNC), 0) << "the guard is there";
  ASSERT_EQ(vm_deallocate(self, address + page, 2 * page), KERN_SUCCESS);
  EXPECT_NE(msync(bytesAt(address + 3 * page), page, MS_ASYNC), 0);
  vm_deallocate(self, mapped, 3 * page);
  mach_port_deallocate(self, entry);
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
  vm_address_t mapped = 0;
  ASSERT_EQ(mapEntry(entry, &mapped, size), KERN_SUCCESS);
  EXPECT_EQ(bytesAt(mapped)[size - 1], 1);
  for (const vm_address_t place : {next, kept, mapped}) EXPECT_EQ(vm_deallocate(self, place, size), KERN_SUCCESS);
  mach_port_deallocate(self, entry);
}

}  // namespace
