// SPDX-License-Identifier: BSD-3-Clause
#include "Editors/VRTEditors.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTProtocols.h"
#include "TarnCore/TCBitmap.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTest>

// A photograph through the effect "Levels" as it ships, with the editor that its port makes.

namespace {

TEST(LevelsOfPhotograph, FollowTheEditor) {
  VRTStartEditors();
  GFNodeManager manager;
  manager.initWithNamespace("effects under test");
  manager.loadPlugInsInFolder(VORTO_TEST_PLUGINS, {"plugin"});
  const std::shared_ptr<QCPatch> levels = manager.nodeInstanceWithName("Levels");
  ASSERT_NE(levels, nullptr);
  auto* image = dynamic_cast<QCImagePort*>(filterInputImagePort(*levels));
  auto* port = dynamic_cast<VRTHistogramPort*>(levels->portForKey("inputLevels"));
  ASSERT_TRUE(image && port);
  port->setValue(std::make_shared<VRTHistogram>());
  const std::unique_ptr<NSTarnView> editor(port->setupParameterView());
  ASSERT_NE(editor, nullptr);

  const QImage photograph = QImage(VORTO_TEST_PHOTOS "/coffee.png").convertToFormat(QImage::Format_RGBA8888);
  ASSERT_GT(photograph.width(), 300);
  const std::shared_ptr<VortoBitmap> bitmap(
      TCCreateBitmap(std::uint32_t(photograph.width()), std::uint32_t(photograph.height()), 0));
  std::copy_n(photograph.constBits(), photograph.sizeInBytes(), static_cast<std::uint8_t*>(bitmap->data));
  VRTImage::setBitmapOfPort(*image, bitmap);

  const auto render = [&] {
    std::string reason;
    EXPECT_TRUE(levels->executeAtTime(0, &reason)) << reason;
    const auto made = VRTImage::bitmapOfPort(dynamic_cast<const QCImagePort&>(*filterOutputImagePort(*levels)));
    const auto* bytes = static_cast<const std::uint8_t*>(made->data);
    return std::vector<std::uint8_t>(bytes, bytes + std::size_t{4} * made->width * made->height);
  };
  const auto before = render();
  editor->show();
  auto* gutter = editor->findChild<QWidget*>("gutterOut");
  QTest::mousePress(gutter, Qt::LeftButton, {}, {213, 6});
  QTest::mouseMove(gutter, {109, 6});
  const auto after = render();
  QTest::mouseRelease(gutter, Qt::LeftButton, {}, {109, 6});
  ASSERT_EQ(before.size(), after.size());
  EXPECT_NE(before, after);
  for (std::size_t i = 0; i < after.size(); i += 4) ASSERT_LE(after[i], 128);
}

}  // namespace
