// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>

// What describes an image or a texture to those who store it. Only copied and compared here.
struct TARN_EXPORT VortoImageAttributes {
  std::uint32_t imageTag = 0;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  std::uint32_t bitsPerChannel = 8;
  std::uint32_t channels = 4;
  std::uint32_t rowPadding = 0;
  std::uint32_t reserved = 0;
  std::uint32_t textureTarget = 0x84F5;  // GL_TEXTURE_RECTANGLE_EXT
  std::uint32_t storageHint = 0x85BD;    // private storage
  std::uint8_t flag1 = 0;
  std::uint8_t flag2 = 1;
  std::uint32_t extra1 = 0;
  std::uint32_t extra2 = 0;

  // The fields up to the texture target; the storage hint and what follows it may differ.
  bool operator==(const VortoImageAttributes& o) const;
};

// The descriptor of a rectangle of pixels. It owns nothing; VortoBitmap gives it memory.
class TARN_EXPORT VortoImage {
 public:
  std::uint32_t imageTag = 0;  // 0 plain image, 9 bitmap
  std::uint32_t width;         // pixels per row
  std::uint32_t height;        // rows
  std::uint32_t bitsPerChannel;
  std::uint32_t channels;    // per pixel
  std::uint32_t rowPadding;  // bytes appended to every row
  std::uint32_t reserved1 = 0;
  std::uint32_t reserved2 = 0;
  std::uint8_t* data = nullptr;  // the first row; null when there are no pixels

  VortoImage(std::uint32_t width, std::uint32_t height, std::uint32_t bitsPerChannel, std::uint32_t channels,
             std::uint32_t rowPadding);
  virtual ~VortoImage();

  // Copies the fields imageTag to rowPadding; the rest of the record stays.
  virtual void getAttributes(VortoImageAttributes& attributes) const;
  // The bytes that copies take: (width + rowPadding) x height x (bitsPerChannel / 8) x channels, modulo 2 to the 32.
  // The padding counts as pixels here and as bytes everywhere else, so this may exceed what is allocated.
  virtual std::uint32_t getSize() const;
  virtual void draw();  // nothing

 protected:
  VortoImage(const VortoImage&) = default;
  VortoImage& operator=(const VortoImage&) = delete;
};
