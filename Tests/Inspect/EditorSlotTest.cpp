// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EditorSlot.h"

#include "Editors/VRTEditors.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "TarnCore/TCBitmap.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/Lists.h"

#include <gtest/gtest.h>

#include <QLabel>

namespace {

class EditorSlotTest : public testing::Test {
 protected:
  EditorSlotTest() {
    VRTStartEditors();
    VortoSetExecutionContextProvider([this](QCPatch&) { return &context; });
    levels->setValue(VRTHistogram::histogram());
  }
  ~EditorSlotTest() override { VortoSetExecutionContextProvider(nullptr); }

  // How often pixels are looked at when another image flows in.
  int looksAtNewImage() {
    const int before = context.queried;
    VRTImage::setBitmapOfPort(*image, std::shared_ptr<const VortoBitmap>(TCCreateBitmap(4, 4, 0)));
    return context.queried - before;
  }

  inspect_test::CountingContext context;
  QCPatch patch{attributesOfKind("filter", dict({{"inputImagePort", text("image")}}))};
  QCImagePort* const image = patch.addInputPort<QCImagePort>("image").get();
  VRTHistogramPort* const levels = patch.addInputPort<VRTHistogramPort>("levels").get();
};

}  // namespace

TEST_F(EditorSlotTest, FollowsImagesOnlyWhileItIsSeen) {
  QWidget window;
  auto* slot = new host::EditorSlot(*levels, &window);
  ASSERT_NE(slot->editor(), nullptr);
  EXPECT_EQ(slot->size(), QSize(218, 137));
  EXPECT_FALSE(slot->isAttached());
  EXPECT_EQ(looksAtNewImage(), 0) << "not shown yet";
  window.show();
  for (QWidget* part : {static_cast<QWidget*>(slot), &window}) {  // folded away, closed
    EXPECT_TRUE(slot->isAttached());
    EXPECT_EQ(looksAtNewImage(), 1);
    part->hide();
    EXPECT_EQ(looksAtNewImage(), 0);
    part->show();
  }
  slot->refresh();
  EXPECT_EQ(looksAtNewImage(), 1) << "attached once, however often";
}

TEST_F(EditorSlotTest, FollowsTheSizeOfItsEditor) {
  auto* gradient = patch.addInputPort<VRTGradientPort>("gradient").get();
  QWidget window;
  host::EditorSlot slot(*gradient, &window);
  ASSERT_NE(slot.editor(), nullptr);
  window.show();
  for (const bool empty : {false, true, false}) {
    gradient->setValue(empty ? nullptr : VRTGradient::gradient());
    EXPECT_EQ(slot.size(), QSize(236, empty ? 25 : 75));
    EXPECT_EQ(slot.size(), slot.editor()->size());
  }
}

TEST_F(EditorSlotTest, SaysThatThereIsNoEditor) {
  auto* opaque = patch.addInputPort<VRTOpaqueDataPort>("opaque").get();
  QWidget window;
  host::EditorSlot slot(*opaque, &window);
  window.show();
  EXPECT_EQ(slot.editor(), nullptr);
  ASSERT_NE(slot.findChild<QLabel*>(), nullptr);
  EXPECT_NE(slot.findChild<QLabel*>()->text(), "");
}
