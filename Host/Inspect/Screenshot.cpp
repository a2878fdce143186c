// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Screenshot.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Rendering/ColorFlow.h"
#include "Host/Viewer/Viewer.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <QWindow>
#include <cstring>
#include <utility>

namespace host {
namespace {

constexpr int kMostMilliseconds = 10000;  // until a window system has shown a window

void waitUntilShown(QWidget& window) {
  window.show();
  QElapsedTimer waited;
  waited.start();
  while (!window.windowHandle() || !window.windowHandle()->isExposed()) {
    if (waited.hasExpired(kMostMilliseconds)) throw Failure(ExitCode::Unexpected, "the window did not appear");
    QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
  }
  QCoreApplication::processEvents();
}

BitmapRef bitmapOf(const QImage& image) {
  const auto bitmap = newUnsetBitmap(static_cast<std::uint32_t>(image.width()),
                                     static_cast<std::uint32_t>(image.height()), VortoPixelFormat::RGBA8, "the window");
  for (int y = 0; y < image.height(); ++y) {
    std::memcpy(bitmap->data + static_cast<std::size_t>(y) * bytesPerRow(*bitmap), image.constScanLine(y),
                std::size_t{4} * bitmap->width);
  }
  return bitmap;
}

}  // namespace

void writeScreenshot(QWidget& window, const std::string& path) {
  waitUntilShown(window);
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    if (auto* viewer = dynamic_cast<Viewer*>(widget)) viewer->showNow();
  }
  const QImage image = window.grab().toImage().convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  OutputPicture picture{bitmapOf(image), Depth::Bits8, Channels::RGB, {}};
  ColorFlow({}).toOutput(picture, fileFormatOf(path), path);
  writePicture(path, picture);
  window.hide();
}

}  // namespace host
