// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTRolloverButton.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/TarnInterfaceFile.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "Tests/TarnKit/Pictures.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QHoverEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <QTemporaryFile>

namespace {

constexpr struct {
  std::uint32_t atom;
  int count;
  NSSize size;
} kAtoms[] = {{0xF0381200, 1, {16, 16}},
              {0x10391200, 4, {11, 14}},
              {0x20391200, 4, {11, 14}},
              {0x103A1200, 2, {13, 13}},
              {0x10481A00, 3, {11, 9}}};

TEST(ThemeStore, EveryAtomHasArtworkOfItsSizeInBothSets) {
  const VRTThemeStore store;
  for (const auto& atom : kAtoms) {
    for (int index = 0; index < atom.count; ++index) {
      for (const bool dark : {false, true}) {
        const auto artwork = store.artworkForAtom(atom.atom, index, dark);
        ASSERT_TRUE(artwork);
        QFile file(QString::fromStdString(artwork->file));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << artwork->file;
        QSvgRenderer renderer(file.readAll());
        ASSERT_TRUE(renderer.isValid()) << artwork->file;
        EXPECT_EQ(renderer.defaultSize(), QSize(int(artwork->size.width), int(artwork->size.height)));
        EXPECT_TRUE(NSEqualSizes(artwork->size, atom.size)) << artwork->file;
      }
    }
    EXPECT_FALSE(store.artworkForAtom(atom.atom, atom.count, false));
  }
  ASSERT_TRUE(VRTTheme::theme());
  EXPECT_EQ(VRTTheme::theme(), VRTTheme::theme());
  EXPECT_FALSE(store.artworkForAtom(0, 0, false));
  EXPECT_TRUE(store.artworkForAtom(VRTThemeAtomCursor, 0, false));
}

QColor ground(bool dark) {
  return dark ? QColor(43, 45, 50) : QColor(236, 237, 240);
}

QImage pictureOf(std::uint32_t atom, int index, bool dark) {
  constexpr NSSize size{11, 14};
  DrawnView view(
      size, false,
      [=] {
        DrawThemeAtomAtIndex(NSRect{{}, size}, VRTTheme::theme(), atom, index, 1, 0);
      },
      ground(dark));
  return pictureOf(view);
}

// The gutter fills a swatch of 7 x 7 over each marker, 2 points from its sides, and cuts the outermost row.
TEST(Artwork, MarkersLeaveRoomForTheSwatchAndAMargin) {
  for (const bool dark : {false, true}) {
    for (const std::uint32_t atom : {VRTThemeAtomMarker, VRTThemeAtomMarkerSelected}) {
      const QImage up = pictureOf(atom, 0, dark);
      const QRgb background = ground(dark).rgb();
      const QRgb wellColor = up.pixel(up.width() / 2, up.height() * 8 / 14);
      const double ratio = up.height() / 14.0;
      for (int x = 0; x < up.width(); ++x) {
        EXPECT_EQ(up.pixel(x, up.height() - 1), background);
        // Whatever the swatch does not cover frames it, at every ratio.
        if (x > std::lround(2 * ratio) && x < std::lround(9 * ratio) - 1) {
          EXPECT_EQ(up.pixel(x, int(8 * ratio)), wellColor);
          EXPECT_NE(up.pixel(x, int(12.5 * ratio)), wellColor);
        }
      }
      EXPECT_NE(up.pixel(up.width() / 2, 0), background);  // the tip reaches the strip
      // The one for flipped views is the mirror image.
      const QImage down = pictureOf(atom, 1, dark).mirrored();
      for (int y = 0; y < up.height(); ++y) {
        for (int x = 0; x < up.width(); ++x) {
          EXPECT_NEAR(qGreen(down.pixel(x, y)), qGreen(up.pixel(x, y)), 3) << x << ", " << y;
        }
      }
    }
  }
}

// Selection shows outside the swatch, in the tip alone already: far apart for every color that the swatch may have.
TEST(Artwork, SelectionIsUnmistakable) {
  for (const bool dark : {false, true}) {
    for (const int index : {0, 1, 2, 3}) {
      const QImage normal = pictureOf(VRTThemeAtomMarker, index, dark);
      const QImage selected = pictureOf(VRTThemeAtomMarkerSelected, index, dark);
      const double ratio = normal.height() / 14.0;
      int different = 0;
      for (int y = 0; y < normal.height(); ++y) {
        for (int x = 0; x < normal.width(); ++x) {
          const double column = (x + 0.5) / ratio, row = (y + 0.5) / ratio;
          const double fromTip = index % 2 ? 14 - row : row;
          if (index < 2 && column > 2 && column < 9 && fromTip > 5 && fromTip < 12) continue;
          const QRgb a = normal.pixel(x, y), b = selected.pixel(x, y);
          different +=
              std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b)) > 90;
        }
      }
      EXPECT_GE(different, 24 * ratio * ratio) << index << dark;
    }
  }
}

TEST(Artwork, TheWellsInnerAreaStartsTwoPointsInside) {
  for (const bool dark : {false, true}) {
    const NSSize size{40, 26};
    const auto draw = [=] {
      DrawNinePartElementAtIndex(NSRect{{}, size}, VRTTheme::theme(), VRTThemeAtomWell, 0, 1, 0);
    };
    DrawnView view(size, false, draw, ground(dark));
    const QImage image = pictureOf(view);
    const int border = int(std::lround(2 * view.devicePixelRatioF()));
    const QRgb inner = image.pixel(image.width() / 2, image.height() / 2);
    const QRect area = image.rect().adjusted(border, border, -border, -border), around = area.adjusted(-1, -1, 1, 1);
    for (int y = around.top(); y <= around.bottom(); ++y) {
      for (int x = around.left(); x <= around.right(); ++x) {
        EXPECT_EQ(image.pixel(x, y) == inner, area.contains(x, y)) << x << ", " << y;
      }
    }
  }
}

TEST(RolloverButton, StandsInInterfaceFiles) {
  QTemporaryFile file;
  ASSERT_TRUE(file.open());
  file.write(R"(<ui version="4.0"><class>Panel</class><widget class="NSTarnView" name="masterView">
                <widget class="VRTRolloverButton" name="more"/></widget></ui>)");
  file.close();
  VRTRegisterRolloverButton();
  VRTRolloverButton* more = nullptr;
  TarnInterfaceFile form;
  form.addOutlet("more", more);
  const auto root = form.loadFile(file.fileName().toStdString());
  ASSERT_TRUE(more);
  EXPECT_EQ(more->parentWidget(), root.get());
  more->rolloverCell().setRolloverImageSource(std::nullopt);
}

TEST(RolloverButton, ShowsItsOtherImageUnderThePointer) {
  VRTRolloverButton button(NSMakeRect(0, 0, 20, 20));
  const TarnThemeImageSource spread(VRTThemeAtomGutterButton, VRTTheme::theme(), 0, false);
  const TarnThemeImageSource flop(VRTThemeAtomGutterButton, VRTTheme::theme(), 1, false);
  button.cell().setImageSource(spread);
  const auto hovered = [&](bool over) {
    button.setAttribute(Qt::WA_UnderMouse, over);
    return button.grab().toImage();
  };
  const QImage spreadOver = hovered(true);
  button.rolloverCell().setRolloverImageSource(flop);
  const QImage quiet = hovered(false);
  const QImage flopOver = hovered(true);
  EXPECT_NE(flopOver, spreadOver);
  button.cell().setImageSource(flop);
  EXPECT_EQ(hovered(true), flopOver);
  EXPECT_NE(hovered(false), quiet);
  button.cell().setImageSource(spread);
  button.rolloverCell().setRolloverImageSource(std::nullopt);
  EXPECT_EQ(hovered(true), spreadOver);
}

}  // namespace
