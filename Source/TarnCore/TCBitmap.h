// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"
#include "TarnCore/TCImage.h"

#include <cstddef>
#include <cstdint>

class VortoColor;

// An image buffer: a rectangle of pixels of one pixel format (VortoPixelFormat) in page-aligned memory of its own,
// which is also published under a memory entry so that another process can map the same pixels (TCBitmapSharing.h).
//
// States. Empty: `data` is null, every operation on pixels does nothing. Holding: `data` is memory that the bitmap owns
// together with its entry. Unmapped: `memoryEntry` alone is there. Fresh memory is zero.
//
// Sizes are 32-bit and wrap. Whatever they come to, no operation reads or writes outside the memory that was allocated
// (`allocSize` bytes at `data`): it does what its rule says up to the end of the allocation and stops there. Callers
// check sizes in 64 bits before they make a bitmap. Whoever changes the public fields by hand keeps them true.
//
// Nothing throws. Failures are printed on standard error with the system's code and leave the bitmap empty.
// One bitmap is used by one thread at a time.
class TARN_EXPORT VortoBitmap : public VortoImage {
 public:
  std::uint32_t formatCode = 0;
  std::uint32_t allocSize = 0;    // bytes reserved, also when reserving them failed; 0 when none ever were
  std::uint32_t memoryEntry = 0;  // the name of the memory entry (a mach_port_t); 0 when none
  bool flag = false;              // left to hosts; nothing here reads or sets it

  VortoBitmap();  // empty
  VortoBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerChannel, std::uint32_t channels,
              std::uint32_t formatCode, std::uint32_t rowPadding);
  VortoBitmap(const VortoBitmap& source);                     // with memory of its own, as clone()
  VortoBitmap& operator=(const VortoBitmap& other) = delete;  // clone() for a new size, copy() for pixels alone
  ~VortoBitmap() override;

  // Reserve memory for the descriptor, with the slack that every bitmap has; what was held is released first. A failure
  // calls the guarantee callback once with the size, if there is one, and tries once more.
  void allocateMemory();
  void deallocateMemory();  // memory and entry; allocSize stays

  // Map the entry of a bitmap that has no `data`, and undo it; the pixels live as long as the entry does. What
  // operations between two mappings of one entry in one process do is undefined: they are the same pixels at two
  // addresses.
  void mapIntoMemory();
  void unmapFromMemory();

  void clear();  // empty, of no size and of code 0; rowPadding stays

  // Copies pixels in from memory laid out as this bitmap is: rows with their padding, or getSize() bytes when there is
  // none. `source` must hold that many; null is left alone.
  void setData(const void* source);

  // Called with the size in bytes when memory is short, to free some elsewhere; its result is ignored. One for the
  // process; null switches it off. Set it before other threads make bitmaps.
  static void setGuaranteeMemoryCallback(bool (*callback)(unsigned int));

  // Becomes a bitmap of the source's size and format (with its own row padding) with the source's getSize() bytes.
  // Cloning itself does nothing.
  void clone(const VortoBitmap& source);

  // Takes the source's pixels; this bitmap was made in the right size and format before. With equal channel counts
  // getSize() bytes are taken as they are, whatever the source holds; YUV8 and ARGB8 are converted into each other; any
  // other pair does nothing.
  void copy(const VortoBitmap& source);

  // Between YUV8 and ARGB8 (the names notwithstanding), in video range after BT.601, in integers; alpha becomes 255 one
  // way and is ignored the other. Row padding is ignored. Other formats do nothing. A last pixel without a partner is
  // dropped on the way to YUV8.
  static void convertYUVtoRGBA(VortoBitmap* destination, const VortoBitmap* source);
  static void convertRGBAtoYUV(VortoBitmap* destination, const VortoBitmap* source);

  // Operations on every pixel in place. But for preMult, unPreMult and flip, which know rows and their padding, they
  // take width x height pixels from the start of `data` on. Layouts that an operation does not name count as RGBA8 over
  // that many four-byte pixels, unless it says that it leaves them alone.

  // Alpha becomes its complement, in ARGB8, RGBA16, LuminanceAlpha16, RGBAHalfFloat and RGBAFloat too.
  void invertAlpha();
  // Alpha becomes `alpha`, 0 to 1 (integers are clamped), in the same layouts.
  void setConstantAlpha(double alpha);
  // Red, green and blue take the value of alpha, in ARGB8, RGBA16, RGBAHalfFloat and RGBAFloat too.
  void duplicateAlphaToRGB();
  // Takes off the premultiplication of pixels that lie on a background, in the same layouts: with values of 0 to 1,
  // c becomes (c - background x (1 - alpha)) / alpha, rounded; where alpha is not above 0, it becomes the background.
  void unpremultiply(const VortoColor& background);
  // c becomes floor(c x alpha / 255), in RGBA8 and ARGB8; others are left alone.
  void preMult();
  // Takes premultiplication off, cut off to integers: pixels of any layout count as ARGB8 in their first four bytes. c
  // becomes c / alpha, at most 1; pixels of alpha 0 stay.
  void unPreMult();
  // Between (red, green, blue, alpha) and (alpha, red, green, blue): RGBA8 becomes ARGB8 or the other way round;
  // RGBA16 and RGBAFloat are reordered and keep their code; others are left alone.
  void convertToARGB();
  void convertToRGBA();
  void flip();  // upside down

  // Copies into this bitmap, which was made in its size and format before. What lies outside the source's memory leaves
  // this bitmap's pixels as they are. The source may be this bitmap: pixels follow one another from the first row on.

  // The rows upside down. Aborts with a report when rows differ in bytes, or, with unequal channel counts, unless a
  // YUV8 source turns into ARGB8.
  void copyWithFlip(const VortoBitmap& source);
  // The same for four-byte pixels, each from (A, R, G, B) to (R, G, B, A). Aborts with a report when rows differ in
  // bytes.
  void copyWithFlipAndSwizzleARGBtoRGBA(const VortoBitmap& source);
  // The first four bytes of the source's pixels from (A, R, G, B) to (R, G, B, A), or the other way round.
  void copyWithSwizzleARGBToRGBA(const VortoBitmap& source);
  void copyWithSwizzleRGBToARGB(const VortoBitmap& source);
  // The rectangle of this bitmap's size at column x and row y, from its last row to its first with `flip`. A YUV8
  // source is turned into ARGB8, chroma lagging: an even column takes the V of the column before it.
  void copyWithCropping(const VortoBitmap& source, int x, int y, bool flip);
  // From ARGB8 to ARGB8 without premultiplication against a background, as unpremultiply but limited to 0 to 1 and cut
  // off to integers.
  void copyWithUnPreMult(const VortoBitmap& source, const VortoColor& background);

  // Fill this bitmap, made in its size and format before, from one of another size by nearest neighbours
  // (TCBitmapScaling.h). A YUV8 source is turned into ARGB8 first.
  // The source is read in this bitmap's layout (any unknown code counts as RGBA8).
  void copyWithScaling(const VortoBitmap& source);
  // The source is read in its own layout; this bitmap is ARGB8, RGBA16 or RGBAFloat, and any other does nothing.
  void copyWithScalingAndDepthConversion(const VortoBitmap& source);

  // What is done to pixels that leave the system, on the way from another bitmap and in place: premultiplication is
  // taken off against the background, then alpha is copied into the colors (alphaToGray, which wins) or becomes 1
  // (opaque).
  void copyWithOutputConversion(const VortoBitmap& source, bool unpremultiply, bool opaque, bool alphaToGray,
                                const VortoColor& background);
  void doOutputConversion(bool unpremultiply, bool opaque, bool alphaToGray, const VortoColor& background);

  // The bytes that may be touched at `data`. In a build with the address sanitizer those behind the pixels are
  // poisoned until an operation's rule reaches them.
  std::size_t accessibleBytes() const { return data ? allocSize : 0; }

 private:
  static bool (*_guaranteeMemory)(unsigned int);
};

// A bitmap of a format known at compile time; TCPixel.h has the pixel types and names the nine that exist.
template <class Pixel, std::uint32_t bits, std::uint32_t channelCount, std::uint32_t code>
class TARN_EXPORT VortoBitmap_t : public VortoBitmap {
 public:
  VortoBitmap_t(std::uint32_t w, std::uint32_t h) : VortoBitmap(w, h, bits, channelCount, code, 0) {}
};

// A new bitmap of the format, which the caller deletes; null for code 3 and for codes above 9. It is empty when there
// was no memory for it.
TARN_EXPORT VortoBitmap* TCCreateBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode);
// The same for who writes every pixel next: they hold anything at first, which spares clearing them.
TARN_EXPORT VortoBitmap* TCCreateUnsetBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode);
