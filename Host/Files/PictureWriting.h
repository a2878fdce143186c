// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/OutputRows.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

// A picture that is ready to be written: premultiplied, in a layout that flows between patches.
struct OutputPicture {
  BitmapRef bitmap;
  Depth depth = Depth::Bits8;  // that it was rendered at; what a format cannot hold goes in the next that it can
  Channels channels = Channels::RGBA;           // that it is to have; a format that holds fewer has fewer
  FileMetadata metadata;                        // what the format cannot hold is left out
  std::shared_ptr<RowColors> colors = nullptr;  // to the file's space; null where the bitmap is in it
  bool isConverted = false;                     // to the file's space or before: integers are made of straight colors
  bool areChannelsTold = false;  // by the user: gray is not made into colors to hold a profile for colors
  bool losesColorTag = false;    // what the first input says of its colors does not go into the file
};

// "gray", "gray+alpha", "rgb", "rgba"; nothing for an empty text and "auto". Throws Failure for any other.
std::optional<Channels> parsedChannels(const std::string& text);

// The fewest channels that hold a result whose inputs had those: gray where they were gray and it is, without alpha
// where they had none and it is opaque.
Channels keptChannels(const VortoBitmap& result, Channels ofInputs);

// A file, replaced only once the new one is complete. Returns of how many pixels its integers could not hold the
// colors. Throws Failure naming it and the cause.
std::uint64_t writePicture(const std::string& path, FileFormat format, const OutputPicture& picture,
                           const WriteSettings& settings);
// In the format that the extension says, with its usual settings.
std::uint64_t writePicture(const std::string& path, const OutputPicture& picture);

// The same for the standard output: the bytes of the file, handed over piece by piece.
using BytesTaker = std::function<void(std::span<const std::uint8_t>)>;
std::uint64_t encodePicture(FileFormat format, const OutputPicture& picture, const WriteSettings& settings,
                            const BytesTaker& take);

// The picture's rows as a file of integers or floats wants them.
OutputRows rowsOf(const OutputPicture& picture, SampleType sample, Channels channels, AlphaKind alpha);

// What a file of the format, or a stream of frames, which is none, does not keep of what the first input says of
// itself: "the time code", ...
std::vector<std::string> lostMetadata(std::optional<FileFormat> format, const OutputPicture& picture);
// Remarks on it, where there is any; `what` is as messages call the format.
void tellOfLosses(const std::string& what, std::optional<FileFormat> format, const OutputPicture& picture);

}  // namespace host
