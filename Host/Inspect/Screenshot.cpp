// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Screenshot.h"

#include "Host/Files/ImageFileLoader.h"
#include "Host/Messages/Failure.h"

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

ImagePixels pixelsOf(const QImage& image) {
  ImagePixels pixels;
  pixels.width = static_cast<std::uint32_t>(image.width());
  pixels.height = static_cast<std::uint32_t>(image.height());
  allocatePixels(pixels);
  const std::size_t rowBytes = std::size_t{4} * pixels.width;
  for (int y = 0; y < image.height(); ++y) {
    std::memcpy(pixels.bytes.get() + static_cast<std::size_t>(y) * rowBytes, image.constScanLine(y), rowBytes);
  }
  return pixels;
}

}  // namespace

void writeScreenshot(QWidget& window, const std::string& path) {
  waitUntilShown(window);
  const QImage image = window.grab().toImage().convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  writeImageFile(path, pixelsOf(image), Depth::Bits8);
  window.hide();
}

}  // namespace host
