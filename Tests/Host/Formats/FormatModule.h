// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

// What a module reads and writes, in memory.

using FileBytesOfTest = std::vector<std::uint8_t>;

// Loads vorto-image-NAME.so, once; ends the process when that fails.
host::ImageFileModule& moduleNamed(const std::string& name);

struct ReadPicture {
  bool isRead = false;
  bool isOtherKind = false;
  std::string reason;
  host::PictureInfo info;
  std::vector<std::uint8_t> pixels;  // rows without gaps

  template <class Sample>
  std::vector<Sample> samples() const {
    std::vector<Sample> samples(pixels.size() / sizeof(Sample));
    if (!pixels.empty()) std::memcpy(samples.data(), pixels.data(), pixels.size());
    return samples;
  }
};

// Reads a picture into memory that was filled with `fill`, and checks that a refusal has a reason and that none of the
// `gap` bytes between rows is written. Fails the test when a picture of more than 2^24 pixels is not refused before its
// pixels are read.
ReadPicture readPicture(host::ImageFileModule& module, const FileBytesOfTest& file, const std::string& layer = {},
                        std::uint8_t fill = 0x5A, std::size_t gap = 32);

// The same through the library of all formats, by the rules of the host; `format` is its name there. Fails the test
// when the library cannot read it.
ReadPicture readByOracle(const FileBytesOfTest& file, const std::string& format);

// Same picture, to the bit.
void expectSamePicture(const ReadPicture& picture, const ReadPicture& expected, const std::string& what);

// A file's contents, or why there is none.
struct WrittenPicture {
  bool isWritten = false;
  std::string reason;
  FileBytesOfTest file;
};
template <class Sample>
WrittenPicture writePicture(host::ImageFileModule& module, const host::WriteRequest& request,
                            const std::vector<Sample>& samples);
WrittenPicture writeBytes(host::ImageFileModule& module, const host::WriteRequest& request, const std::byte* samples,
                          std::size_t rowSize);

template <class Sample>
WrittenPicture writePicture(host::ImageFileModule& module, const host::WriteRequest& request,
                            const std::vector<Sample>& samples) {
  return writeBytes(module, request, reinterpret_cast<const std::byte*>(samples.data()),
                    request.width * host::channelCount(request.channels) * sizeof(Sample));
}

// Cut short and with single bytes changed, a file is refused, or makes the same picture whatever was in memory before.
// `step` and `changes` say how many of its bytes are changed, and to what.
void expectDamageIsHarmless(host::ImageFileModule& module, const FileBytesOfTest& file, const std::string& what,
                            std::size_t step = 1);

FileBytesOfTest contentsOf(const std::string& path);
