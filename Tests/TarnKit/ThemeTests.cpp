// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/TarnTheme.h"
#include "Tests/TarnKit/Pictures.h"

namespace {

constexpr const char* well = R"(<svg xmlns="http://www.w3.org/2000/svg" width="8" height="8" viewBox="0 0 8 8">
<path fill="#ff0000" d="M0 0 H8 V8 H0 Z"/><path fill="#00ff00" d="M2 2 H6 V6 H2 Z"/>
<path fill="#0000ff" d="M0 0 H2 V2 H0 Z"/>
</svg>)";
constexpr const char* leftHalfBlack = R"(<svg xmlns="http://www.w3.org/2000/svg" width="4" height="2" viewBox="0 0 4 2">
<path fill="#000000" d="M0 0 H2 V2 H0 Z"/><path fill="#ffff00" d="M2 0 H4 V1 H2 Z"/></svg>)";

class FolderProvider : public TarnThemeProvider {
 public:
  explicit FolderProvider(const TestFolder& folder) : folder_(folder) {}
  std::optional<TarnThemeArtwork> artworkForAtom(std::uint32_t atom, int index, bool dark) const override {
    if (atom == 1) return TarnThemeArtwork{folder_.path("well.svg"), {8, 8}, {2, 2, 2, 2}, {}};
    if (atom == 2) return TarnThemeArtwork{folder_.path(dark ? "dark.svg" : "light.svg"), {4, 2}, {}, {1, 1}};
    if (atom == 3) return TarnThemeArtwork{folder_.path("file" + std::to_string(index) + ".svg"), {4, 4}, {}, {}};
    return std::nullopt;
  }

 private:
  const TestFolder& folder_;
};

struct Theme : testing::Test {
  TestFolder folder;
  TarnTheme* theme = _RegisterThemeProvider(std::make_unique<FolderProvider>(folder));
};

TEST_F(Theme, NinePartsKeepTheirBordersAtEverySize) {
  folder.write("well.svg", well);
  for (const NSSize size : {NSSize{8, 8}, NSSize{31, 17}, NSSize{200, 9}}) {
    for (const bool flipped : {false, true}) {
      const NSRect rect = NSMakeRect(3, 4, size.width, size.height);
      DrawnView view({size.width + 6, size.height + 8}, flipped,
                     [&] { DrawNinePartElementAtIndex(rect, theme, 1, 0, 1, 0); });
      const QImage image = pictureOf(view);
      const QRect points = view.toWidget(rect);
      const auto scaled = [&](int x) { return int(std::lround(x * view.devicePixelRatioF())); };
      const QRect outer(QPoint(scaled(points.left()), scaled(points.top())),
                        QPoint(scaled(points.right() + 1) - 1, scaled(points.bottom() + 1) - 1));
      const int border = scaled(2);
      const QRect inner = outer.adjusted(border, border, -border, -border);
      const QRect corner(outer.topLeft(), QSize(border, border));
      for (int i = 0; i < image.width() * image.height(); ++i) {
        const QPoint at(i % image.width(), i / image.width());
        const QRgb inside = corner.contains(at)  ? qRgb(0, 0, 255)
                            : inner.contains(at) ? qRgb(0, 255, 0)
                                                 : qRgb(255, 0, 0);
        ASSERT_EQ(image.pixel(at), outer.contains(at) ? inside : image.pixel(0, 0)) << at.x() << ", " << at.y();
      }
    }
  }
}

TEST_F(Theme, AtomsStandUprightWithOpacityAndFollowThePalette) {
  folder.write("light.svg", leftHalfBlack);
  folder.write("dark.svg", well);
  for (const bool flipped : {false, true}) {
    DrawnView view({20, 10}, flipped, [&] {
      DrawThemeAtomAtIndex(NSMakeRect(0, 0, 8, 4), theme, 2, 0, 1, 0);
      DrawThemeAtomAtIndex(NSMakeRect(10, 0, 8, 4), theme, 2, 0, 0.5, 0);
    });
    const QImage image = pictureOf(view);
    const QRgb ground = image.pixel(image.width() - 1, image.height() / 2);
    const auto at = [&](int x, int y) { return pixelAt(image, view.devicePixelRatioF(), x, y + (flipped ? 0 : 6)); };
    EXPECT_EQ(at(1, 0), qRgb(0, 0, 0));
    EXPECT_EQ(at(6, 0), qRgb(255, 255, 0));
    EXPECT_EQ(at(6, 3), ground);
    EXPECT_NEAR(qRed(at(11, 0)), qRed(ground) / 2, 2);
    view.setGround(Qt::black);
    EXPECT_EQ(pixelAt(pictureOf(view), view.devicePixelRatioF(), 3, flipped ? 1 : 7), qRgb(0, 255, 0));
  }
}

// Missing, broken, empty and unknown: each is named once, whatever is drawn how often, and the rest still draws.
TEST_F(Theme, FaultsAreReportedOnceByName) {
  folder.write("file1.svg", "<svg>no end");
  folder.write("file2.svg", "");
  folder.write("file3.svg", leftHalfBlack);
  DrawnView view({40, 10}, false, [&] {
    for (int index = 0; index < 4; ++index) {
      DrawThemeAtomAtIndex(NSMakeRect(index * 10, 0, 8, 8), theme, 3, index, 1, 0);
      DrawNinePartElementAtIndex(NSMakeRect(index * 10, 0, 8, 8), theme, 3, index, 1, 0);
    }
    DrawThemeAtomAtIndex(NSMakeRect(0, 0, 8, 8), theme, 0xABCD1200, 7, 1, 0);
    DrawThemeAtomAtIndex(NSMakeRect(0, 0, 8, 8), nullptr, 1, 0, 1, 0);
  });
  testing::internal::CaptureStderr();
  view.grab();
  const QImage image = view.grab().toImage();
  const std::string report = testing::internal::GetCapturedStderr();
  const auto count = [&](const QString& text) { return QString::fromStdString(report).count(text); };
  for (const char* file : {"file0.svg", "file1.svg", "file2.svg"}) EXPECT_EQ(count(file), 1) << report;
  EXPECT_EQ(count("atom 0xABCD1200, index 7"), 1) << report;
  EXPECT_EQ(count("file3.svg"), 0) << report;
  EXPECT_EQ(pixelAt(image, view.devicePixelRatioF(), 31, 5), qRgb(0, 0, 0));
  // Something plain stands where the missing one belongs.
  EXPECT_NE(pixelAt(image, view.devicePixelRatioF(), 14, 2), pixelAt(image, view.devicePixelRatioF(), 19, 2));
}

TEST_F(Theme, CursorsAndImageSources) {
  folder.write("light.svg", leftHalfBlack);
  const TarnThemeImageSource source(2, theme, 0, false);
  EXPECT_EQ(source.size().width, 4);
  const QCursor cursor = CursorOfThemeAtomAtIndex(theme, 2, 0);
  EXPECT_EQ(cursor.hotSpot(), QPoint(1, 1));
  EXPECT_FALSE(cursor.pixmap().isNull());
  testing::internal::CaptureStderr();
  EXPECT_EQ(CursorOfThemeAtomAtIndex(theme, 99, 0).shape(), Qt::ArrowCursor);
  EXPECT_EQ(CursorOfThemeAtomAtIndex(nullptr, 2, 0).shape(), Qt::ArrowCursor);
  EXPECT_EQ(TarnThemeImageSource(99, theme, 0, false).size().width, 0);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(_RegisterThemeProvider(nullptr), nullptr);
}

}  // namespace
