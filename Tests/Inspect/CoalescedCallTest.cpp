// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/CoalescedCall.h"

#include "Tests/Inspect/InspectFixture.h"

#include <gtest/gtest.h>

TEST(CoalescedCall, RunsOnceForAllThatIsWaiting) {
  int runs = 0;
  host::CoalescedCall* itself = nullptr;
  host::CoalescedCall call([&] {
    // Requests that come while it runs make one more.
    if (++runs == 1) {
      for (int i = 0; i < 5; ++i) itself->request();
    }
  });
  itself = &call;
  for (int i = 0; i < 100; ++i) call.request();
  EXPECT_EQ(runs, 0);
  inspect_test::handleEvents();
  EXPECT_EQ(runs, 2);
  call.request();
  call.runNow();
  EXPECT_EQ(runs, 3);
  EXPECT_FALSE(call.isPending());
  inspect_test::handleEvents();
  EXPECT_EQ(runs, 3);
}
