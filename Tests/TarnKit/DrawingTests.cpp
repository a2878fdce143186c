// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSImage.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Tests/TarnKit/Pictures.h"

namespace {

void clear() {
  NSColor::colorWithCalibratedRed(1, 1, 1, 1).set();
  NSBezierPath::fillRect(NSMakeRect(-10, -10, 1000, 1000));
}

// Red, green, blue, white in reading order.
std::shared_ptr<NSImage> fourPixels() {
  auto bitmap = std::make_shared<NSBitmapImageRep>(2, 2, 16);
  const std::uint8_t rows[2][8] = {{255, 0, 0, 255, 0, 255, 0, 255}, {0, 0, 255, 255, 255, 255, 255, 255}};
  for (int row = 0; row < 2; ++row) std::copy_n(rows[row], 8, bitmap->bitmapData() + row * 16);
  auto image = std::make_shared<NSImage>(NSSize{2, 2});
  image->addRepresentation(bitmap);
  return image;
}

// No pixel is mixed, at fractional ratios either: edges lie on the nearest device pixel. What is dirty is told in the
// view's coordinates.
TEST(Drawing, FillsExactlyThePixelsOfARectangle) {
  for (const bool flipped : {false, true}) {
    DrawnView view({20, 12}, flipped, [] {
      clear();
      NSColor::colorWithCalibratedRed(0, 0, 1, 1).set();
      NSBezierPath::fillRect(NSMakeRect(4, 2, 6, 5));
    });
    const QImage image = pictureOf(view);
    const auto device = [&](int x) { return int(std::lround(x * view.devicePixelRatioF())); };
    const int top = flipped ? 2 : 5;
    const QRect painted(QPoint(device(4), device(top)), QPoint(device(4 + 6) - 1, device(top + 5) - 1));
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QRgb expected = painted.contains(x, y) ? qRgb(0, 0, 255) : qRgb(255, 255, 255);
        ASSERT_EQ(image.pixel(x, y), expected) << x << ", " << y << flipped;
      }
    }
    view.grab(QRect(5, 2, 10, 4));
    EXPECT_EQ(view.lastDirty.origin.x, 5);
    EXPECT_EQ(view.lastDirty.origin.y, flipped ? 2 : 6);
  }
}

// Images stand upright on their lower left corner and are not smoothed; patterns repeat from the view's origin.
TEST(Drawing, ImagesAndPatternsStandUpright) {
  constexpr QRgb red = qRgb(255, 0, 0), green = qRgb(0, 255, 0), blue = qRgb(0, 0, 255), white = qRgb(255, 255, 255);
  const auto drawImage = [] { fourPixels()->compositeToPoint({6, 4}, NSCompositeSourceOver); };
  const auto drawPattern = [] {
    NSColor::colorWithPatternImage(fourPixels()).set();
    NSBezierPath::fillRect(NSMakeRect(4, 2, 8, 8));
  };
  struct Spot {
    int x, y;  // from the upper left
    QRgb color;
  };
  const struct {
    bool pattern, flipped;
    std::vector<Spot> spots;
  } cases[] = {{false, false, {{6, 5, red}, {7, 5, green}, {6, 6, blue}}},
               {false, true, {{6, 2, red}, {7, 2, green}, {6, 3, blue}}},
               {true, false, {{4, 8, blue}, {6, 6, blue}, {5, 7, green}, {3, 5, white}}},
               {true, true, {{4, 2, red}, {6, 4, red}, {5, 2, green}, {3, 5, white}}}};
  for (const auto& each : cases) {
    DrawnView view({20, 11}, each.flipped, [&] {
      clear();
      each.pattern ? drawPattern() : drawImage();
    });
    const QImage image = pictureOf(view);
    for (const auto& [x, y, color] : each.spots) {
      EXPECT_EQ(pixelAt(image, view.devicePixelRatioF(), x, y), color) << x << ", " << y << &each - cases;
    }
    for (int i = 0; i < image.width() * image.height(); ++i) {
      const QRgb color = image.pixel(i % image.width(), i / image.width());
      for (const int part : {qRed(color), qGreen(color), qBlue(color)}) ASSERT_TRUE(part == 0 || part == 255);
    }
  }
}

TEST(Drawing, NothingHappensWithoutAContextOrAnythingToDraw) {
  EXPECT_EQ(NSGraphicsContext::currentContext(), nullptr);
  NSColor().set();
  NSBezierPath::fillRect(NSMakeRect(0, 0, 5, 5));
  NSDrawFocusRing(NSMakeRect(0, 0, 5, 5));
  fourPixels()->compositeToPoint({}, NSCompositeCopy);
  DrawnView view({10, 10}, false, [] {
    clear();
    NSColor::colorWithPatternImage(nullptr).set();
    NSBezierPath::fillRect(NSMakeRect(0, 0, 10, 10));
    NSColor::colorWithCalibratedRed(0, 0, 0, 1).set();
    for (const double width : {-5.0, std::nan("")}) NSBezierPath::fillRect(NSMakeRect(0, 0, width, 5));
    NSBezierPath::strokeRect(NSMakeRect(0, 0, 5, 5), 0);
    NSImage({5, 5}).compositeToPoint({}, NSCompositeSourceOver);
    NSImage empty({-5, 5});
    empty.addRepresentation(std::make_shared<NSBitmapImageRep>(0, 0, 0));
    empty.compositeToPoint({}, NSCompositeSourceOver);
  });
  const QImage image = pictureOf(view);
  for (int x = 0; x < image.width(); ++x) EXPECT_EQ(image.pixel(x, image.height() - 1), qRgb(255, 255, 255));
}

TEST(Bitmaps, HaveZeroedRowsOfThePitchAskedFor) {
  NSBitmapImageRep bitmap(3, 2, 16);
  EXPECT_TRUE(bitmap.bytesPerRow() == 16 && NSBitmapImageRep(3, 2, 5).bytesPerRow() == 12);
  EXPECT_EQ(std::count(bitmap.bitmapData(), bitmap.bitmapData() + 32, 0), 32);
  EXPECT_EQ(NSBitmapImageRep(1, 0xFFFFFFFF, 4).bitmapData(), nullptr);
  EXPECT_EQ(NSBitmapImageRep(0xFFFFFFFF, 1, 4).pixelsWide(), 0U);
}

TEST(Images, ComeFromFilesOrNotAtAll) {
  const TestFolder folder;
  const std::string path = folder.path("half.png");
  QImage picture(3, 2, QImage::Format_ARGB32);
  picture.fill(QColor(255, 0, 0, 128));
  picture.save(QString::fromStdString(path));
  const std::shared_ptr<NSImage> image = NSImage::initWithContentsOfFile(path);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size().width, 3);
  for (const int byte : {0, 3}) EXPECT_EQ(image->representation()->bitmapData()[byte], 128);
  EXPECT_EQ(NSImage::initWithContentsOfFile(folder.path("none.png")), nullptr);
  EXPECT_EQ(NSImage::initWithContentsOfFile(folder.write("broken.png", "no picture")), nullptr);
}

TEST(Colors, AreLimitedWhereTheyAreDrawnAndFollowTheWidgetsPalette) {
  const NSColor color = NSColor::colorWithCalibratedRed(1.5, -0.5, std::nan(""), 0.25);
  double red = 0, alpha = 0;
  color.getRed(&red, nullptr, nullptr, &alpha);
  EXPECT_TRUE(red == 1.5 && alpha == 0.25);
  EXPECT_EQ(color.toQColor().rgba(), qRgba(255, 0, 0, 64));
  bool dark = false;
  DrawnView view({10, 10}, false, [&] { dark = NSTarnColor::isDark(); });
  for (const bool wanted : {true, false, true}) {
    view.setGround(wanted ? QColor(40, 40, 40) : QColor(240, 240, 240));
    view.grab();
    EXPECT_EQ(dark, wanted);
  }
}

}  // namespace
