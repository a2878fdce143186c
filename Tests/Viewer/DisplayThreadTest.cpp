// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayThread.h"

#include "TarnCore/TCPixelFormat.h"
#include "Tests/Viewer/ViewerFixture.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

namespace {

using host::DisplayOrder;
using host::DisplayThread;
using viewer_test::newBitmap;
using viewer_test::pictureOf;

// All of a picture, made brighter so that it takes its time.
DisplayOrder orderOf(const host::PreviewPictureRef& picture, double exposure = 0) {
  DisplayOrder order;
  order.picture = picture;
  const QRect all(0, 0, static_cast<int>(picture->size.width), static_cast<int>(picture->size.height));
  order.place = {all, all};
  order.colors.exposure = exposure;
  return order;
}

}  // namespace

TEST(DisplayThread, NewestOrderWinsAndOvertakenOnesAreDropped) {
  std::promise<void> begun;
  std::promise<void> mayGoOn;
  std::shared_future<void> goesOn = mayGoOn.get_future().share();
  std::atomic<int> finished = 0;
  DisplayThread thread([&] {
    if (++finished != 1) return;
    begun.set_value();
    goesOn.wait();
  });
  std::vector<host::PreviewPictureRef> pictures;
  for (int i = 0; i < 50; ++i) {
    const auto byte = static_cast<std::uint8_t>(i);
    pictures.push_back(pictureOf(newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::RGBA8, {byte, byte, byte, 255})));
  }
  thread.order(orderOf(pictures[0]));
  begun.get_future().wait();
  for (const auto& picture : pictures) thread.order(orderOf(picture));  // while the first is not done with
  mayGoOn.set_value();
  thread.waitUntilIdle();
  EXPECT_EQ(finished, 2);
  const auto frame = thread.take();
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->order.picture, pictures.back());
  EXPECT_EQ(frame->result.pixel(0, 0), qRgb(49, 49, 49));
  EXPECT_FALSE(thread.take()) << "once";
}

TEST(DisplayThread, EndsInTheMiddleOfWork) {
  const auto large = pictureOf(viewer_test::noise(240, 240, VortoPixelFormat::RGBAFloat),
                               viewer_test::noise(240, 240, VortoPixelFormat::RGBA8));
  for (int i = 0; i < 8; ++i) {
    std::atomic<bool> isAlive = true;
    {
      DisplayThread thread([&] { EXPECT_TRUE(isAlive); });
      for (int n = 0; n < 3; ++n) {
        DisplayOrder order = orderOf(large, 0.1 * n);
        order.wantsBefore = true;
        thread.order(order);
        std::this_thread::sleep_for(std::chrono::milliseconds(i));
        thread.take();
      }
    }
    isAlive = false;
  }
}

TEST(DisplayThread, ShowsBothPicturesAndFailuresAreSaid) {
  DisplayThread thread([] {});
  const auto picture = pictureOf(newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::RGBA8, {1, 2, 3, 255}),
                                 newBitmap<std::uint8_t>(1, 1, VortoPixelFormat::RGBA8, {4, 5, 6, 255}));
  DisplayOrder order = orderOf(picture);
  order.wantsBefore = true;
  thread.order(order);
  thread.waitUntilIdle();
  const auto both = thread.take();
  EXPECT_EQ(both->result.pixel(0, 0), qRgb(1, 2, 3));
  EXPECT_EQ(both->before.pixel(0, 0), qRgb(4, 5, 6));
  EXPECT_EQ(both->shownAs, "sRGB");
  order.place.visible = order.place.place = QRect(0, 0, 1 << 30, 1 << 30);
  thread.order(order);
  thread.waitUntilIdle();
  EXPECT_FALSE(thread.take()->failure.empty());
}
