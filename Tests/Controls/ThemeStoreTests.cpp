// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTRolloverButton.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QHoverEvent>
#include <QPainter>
#include <QSvgRenderer>
#include <functional>

namespace {

struct Atom {
  std::uint32_t atom;
  int count;
  NSSize size;
};

constexpr Atom atoms[] = {
    {0xF0381200, 1, {16, 16}}, {0x10391200, 4, {11, 14}}, {0x20391200, 4, {11, 14}},
    {0x103A1200, 2, {13, 13}}, {0x10481A00, 3, {11, 9}},
};

TEST(ThemeStore, EveryAtomHasArtworkOfItsSizeInBothSets) {
  const VRTThemeStore store;
  for (const Atom& atom : atoms) {
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
  EXPECT_FALSE(store.artworkForAtom(0, 0, false));
  EXPECT_TRUE(store.artworkForAtom(VRTThemeAtomCursor, 0, false));
}

TEST(ThemeStore, TheThemeIsOne) {
  ASSERT_TRUE(VRTTheme::theme());
  EXPECT_EQ(VRTTheme::theme(), VRTTheme::theme());
}

class AtomView : public NSTarnView {
 public:
  AtomView(NSSize size, bool dark, std::function<void()> draw) : NSTarnView(NSRect{{}, size}), draw_(std::move(draw)) {
    QPalette palette;
    palette.setColor(QPalette::Window, dark ? QColor(43, 45, 50) : QColor(236, 237, 240));
    setPalette(palette);
  }
  QImage picture() { return grab().toImage().convertToFormat(QImage::Format_RGB32); }

 protected:
  void drawRect(NSRect) override { draw_(); }

 private:
  std::function<void()> draw_;
};

QImage pictureOf(std::uint32_t atom, int index, NSSize size, bool dark) {
  AtomView view(size, dark, [=] { DrawThemeAtomAtIndex(NSRect{{}, size}, VRTTheme::theme(), atom, index, 1, 0); });
  return view.picture();
}

// The gutter fills a swatch of 7 x 7 over each marker, 2 points from its sides, and cuts the outermost row.
TEST(Artwork, MarkersLeaveRoomForTheSwatchAndAMargin) {
  for (const bool dark : {false, true}) {
    for (const std::uint32_t atom : {VRTThemeAtomMarker, VRTThemeAtomMarkerSelected}) {
      const QImage up = pictureOf(atom, 0, {11, 14}, dark);
      const QRgb background = AtomView({11, 14}, dark, [] {}).picture().pixel(0, 0);
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
      const QImage down = pictureOf(atom, 1, {11, 14}, dark).mirrored();
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
      const QImage normal = pictureOf(VRTThemeAtomMarker, index, {11, 14}, dark);
      const QImage selected = pictureOf(VRTThemeAtomMarkerSelected, index, {11, 14}, dark);
      const double ratio = normal.height() / 14.0;
      int different = 0;
      for (int y = 0; y < normal.height(); ++y) {
        for (int x = 0; x < normal.width(); ++x) {
          const double column = (x + 0.5) / ratio;
          const double row = (y + 0.5) / ratio;
          const double fromTip = index % 2 ? 14 - row : row;
          if (index < 2 && column > 2 && column < 9 && fromTip > 5 && fromTip < 12) continue;
          const QRgb a = normal.pixel(x, y);
          const QRgb b = selected.pixel(x, y);
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
    AtomView view(size, dark, [=] {
      DrawNinePartElementAtIndex(NSRect{{}, size}, VRTTheme::theme(), VRTThemeAtomWell, 0, 1, 0);
    });
    const QImage image = view.picture();
    const int border = int(std::lround(2 * view.devicePixelRatioF()));
    const QRgb inner = image.pixel(image.width() / 2, image.height() / 2);
    for (int x = border; x < image.width() - border; ++x) {
      EXPECT_EQ(image.pixel(x, border), inner);
      EXPECT_EQ(image.pixel(x, image.height() - 1 - border), inner);
      EXPECT_NE(image.pixel(x, border - 1), inner);
      EXPECT_NE(image.pixel(x, image.height() - border), inner);
    }
    for (int y = border; y < image.height() - border; ++y) {
      EXPECT_EQ(image.pixel(border, y), inner);
      EXPECT_NE(image.pixel(border - 1, y), inner);
      EXPECT_NE(image.pixel(image.width() - border, y), inner);
    }
  }
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
