// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>

struct CGLContextObject;
using CGLContextObj = CGLContextObject*;

// The pixel format codes 0 to 9 and what OpenGL calls them. Bitmaps, textures and the histogram share this one table.
//
// Any other code counts as 8-bit ARGB without alpha.
class TARN_EXPORT VortoPixelFormat {
 public:
  using Code = std::uint32_t;

  static constexpr Code RGBA8 = 0;
  static constexpr Code ARGB8 = 1;
  static constexpr Code YUV8 = 2;          // YCbCr 4:2:2; two pixels are the bytes U, Y0, V, Y1
  static constexpr Code ARGB8NoAlpha = 3;  // alpha is ignored; no bitmap is ever made of it
  static constexpr Code RGBA16 = 4;        // 16-bit codes are unsigned words in the machine's byte order
  static constexpr Code RGB16 = 5;
  static constexpr Code LuminanceAlpha16 = 6;
  static constexpr Code Luminance16 = 7;
  static constexpr Code RGBAHalfFloat = 8;
  static constexpr Code RGBAFloat = 9;

  // What a code stands for. Bits per pixel of YUV8 are those of a pair.
  static bool hasAlpha(Code code);
  static std::uint32_t getGLInternalFormat(Code code);
  static std::uint32_t getGLDataFormat(Code code);
  static std::uint32_t getGLDataType(Code code);
  static std::uint32_t getBitsPerPixel(Code code);
  static std::uint32_t getBitsPerChannel(Code code);

  // The code of an OpenGL format and type. The format counts for 16-bit words alone; an unknown type gives ARGB8. Code
  // 3 is never given.
  static Code getPixelFormat(std::uint32_t glFormat, std::uint32_t glType);
};

// The four depths a channel can have.
class TARN_EXPORT VortoBitDepth {
 public:
  // Unsigned integers, or floats of two and four bytes.
  enum Type : std::uint32_t {
    Integer8 = 0,
    Integer16 = 1,
    Half = 2,
    Float = 3,
  };

  // Of four channels, in bits; the pixel format is an OpenGL internal format. 0 for a type that is none.
  static std::uint32_t getBitsPerPixel(Type type);
  static std::uint32_t getBitsPerChannel(Type type);
  static std::uint32_t getPixelFormat(Type type);

  // 48 bits are 16-bit integers, 64 are 16-bit integers or halves, 128 are floats; anything else is 8-bit. Bits per
  // channel count as bits of four channels (12 is 16-bit integer).
  static Type getFromBitsPerPixel(int bits, bool integer);
  static Type getFromBitsPerChannel(int bits, bool integer);

 private:
  static const std::uint32_t _bitsPerPixel[4];
  static const std::uint32_t _bitsPerChannel[4];
  static const std::uint32_t _pixelFormat[4];
};

// Fills width x height pixels of four bytes, without padding, with a checkerboard of 8 x 8 cells: first byte 255, the
// others 192 or 255, the top left cell the darker one. A null pointer is left alone.
TARN_EXPORT void VortoMakeCheckerImage(void* pixels, unsigned width, unsigned height);

// The largest texture edge in pixels to use with a channel depth of 8, 16 or 32 bits on this machine: what the hardware
// takes, limited by the video memory that each display's share comes to.
//
// The first call queries OpenGL with `context` current and puts the previous context back; without a context it queries
// the current one, or else one that it makes and gives up again. Its results stay for the life of the process. A
// renderer in software counts as a graphics device; where none can be queried at all the hardware's limit is taken for
// 2048. To be called on the thread that owns the host's contexts.
TARN_EXPORT int VRTMaxTextureDimension(CGLContextObj context, int bitsPerChannel);
