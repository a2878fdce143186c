// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <functional>

class QCImage;
class QCPatch;
class QCPort;

// What kind of effect a patch is, and which of its ports play which role, read from the "protocols" entry of its
// attributes. A patch may be of several kinds. Port accessors return null when the role is not declared or names no
// port; the port belongs to the patch.

// Makes an image from nothing.
TARN_EXPORT bool isVortoGenerator(const QCPatch& patch);
TARN_EXPORT QCPort* generatorOutputImagePort(const QCPatch& patch);

// Makes an image from another.
TARN_EXPORT bool isVortoFilter(const QCPatch& patch);
TARN_EXPORT QCPort* filterInputImagePort(const QCPatch& patch);
TARN_EXPORT QCPort* filterOutputImagePort(const QCPatch& patch);

// Lays a foreground on a background.
TARN_EXPORT bool isVortoBlendMode(const QCPatch& patch);
TARN_EXPORT QCPort* blendModeInputImageBackgroundPort(const QCPatch& patch);
TARN_EXPORT QCPort* blendModeInputImageForegroundPort(const QCPatch& patch);
TARN_EXPORT QCPort* blendModeOutputImagePort(const QCPatch& patch);

// Goes from image A to image B while its time goes from 0 to 1.
TARN_EXPORT bool isVortoTransition(const QCPatch& patch);
TARN_EXPORT QCPort* transitionInputImageAPort(const QCPatch& patch);
TARN_EXPORT QCPort* transitionInputImageBPort(const QCPatch& patch);
TARN_EXPORT QCPort* transitionInputTimePort(const QCPatch& patch);
TARN_EXPORT QCPort* transitionOutputImagePort(const QCPatch& patch);

// What a host tells about the images that flow through its patches. Pixels are RGBA or BGRA at 8 bits, 16 bits or
// float.
class TARN_EXPORT VortoExecutionContext {
 public:
  virtual ~VortoExecutionContext();
  // The size in pixels.
  virtual std::size_t pixelsWideFromImage(const QCImage& image) = 0;
  virtual std::size_t pixelsHighFromImage(const QCImage& image) = 0;
  virtual int formatFromImage(const QCImage& image) = 0;  // not 0: red first; 0: blue first
  // The first row and the distance of rows in bytes; valid until the image is released. Null when there are no pixels.
  virtual void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) = 0;
};

// A patch class of the host's also implements this to hand out its context.
class TARN_EXPORT VortoRuntime {
 public:
  virtual ~VortoRuntime();
  virtual VortoExecutionContext* vortoExecutionContext();  // null here
};

// Speaks for the patches that come from elsewhere, plug-ins and compositions, and so do not implement VortoRuntime: a
// host that runs them registers one provider for the process. It may return null; a null provider takes the
// registration back.
using VortoExecutionContextProvider = std::function<VortoExecutionContext*(QCPatch& patch)>;
TARN_EXPORT void VortoSetExecutionContextProvider(VortoExecutionContextProvider provider);

// The patch's own context when it implements VortoRuntime, else the provider's; null when there is none.
TARN_EXPORT VortoExecutionContext* vortoExecutionContext(QCPatch& patch);
