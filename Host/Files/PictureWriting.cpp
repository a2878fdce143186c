// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/PictureWriting.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Files/OutputFile.h"
#include "Host/ImageFiles/Exif.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Pixels/Alpha.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>

namespace host {
namespace {

Channels channelsOf(bool isGray, bool hasAlpha) {
  if (isGray) return hasAlpha ? Channels::GrayAlpha : Channels::Gray;
  return hasAlpha ? Channels::RGBA : Channels::RGB;
}

Channels heldChannels(const FormatTraits& traits, Channels wanted) {
  return channelsOf(isGray(wanted) && traits.holdsGray, hasAlpha(wanted) && traits.alpha != AlphaKind::None);
}

WriteRequest requestFor(FileFormat format, const OutputPicture& picture, const WriteSettings& settings) {
  const FormatTraits& traits = traitsOf(format);
  WriteRequest request;
  request.format = format;
  request.width = picture.bitmap->width;
  request.height = picture.bitmap->height;
  request.channels = heldChannels(traits, picture.channels);
  request.depth = storedDepth(format, picture.depth);
  request.sample = sampleTypeOf(request.depth);
  request.alpha = hasAlpha(request.channels) ? traits.alpha : AlphaKind::None;
  request.settings = settings;
  return request;
}

bool encode(FileFormat format, const OutputPicture& picture, const WriteSettings& settings, OutputBytes& output,
            std::uint64_t* clipped, std::string* reason) {
  WriteRequest request = requestFor(format, picture, settings);
  FileMetadata metadata = picture.metadata;
  metadata.exif = exifOfSize(metadata.exif, request.width, request.height);
  request.metadata = &metadata;
  OutputRows rows = rowsOf(picture, request.sample, request.channels, request.alpha);
  const bool isWritten = imageFileModule(format).write(request, rows, output, reason);
  *clipped = rows.clippedPixels();
  return isWritten;
}

}  // namespace

std::optional<Channels> parsedChannels(const std::string& text) {
  if (text.empty() || text == "auto") return std::nullopt;
  if (text == "gray") return Channels::Gray;
  if (text == "gray+alpha") return Channels::GrayAlpha;
  if (text == "rgb") return Channels::RGB;
  if (text == "rgba") return Channels::RGBA;
  throw Failure(ExitCode::Usage, "--channels " + text + ": give auto, gray, gray+alpha, rgb or rgba");
}

Channels keptChannels(const VortoBitmap& result, Channels ofInputs) {
  return channelsOf(isGray(ofInputs) && isGray(result), hasAlpha(ofInputs) || !isOpaque(result));
}

OutputRows rowsOf(const OutputPicture& picture, SampleType sample, Channels channels, AlphaKind alpha) {
  return {*picture.bitmap, {sample, channels, alpha, picture.isConverted, picture.colors.get()}};
}

std::uint64_t writePicture(const std::string& path, FileFormat format, const OutputPicture& picture,
                           const WriteSettings& settings) {
  OutputFile file(path);
  std::string reason;
  std::uint64_t clipped = 0;
  if (!encode(format, picture, settings, file, &clipped, &reason)) {
    throw Failure(ExitCode::Output, "cannot write " + path + ": " + (file.fault().empty() ? reason : file.fault()));
  }
  file.commit();
  return clipped;
}

std::uint64_t writePicture(const std::string& path, const OutputPicture& picture) {
  return writePicture(path, fileFormatOf(path), picture, {});
}

std::uint64_t encodePicture(FileFormat format, const OutputPicture& picture, const WriteSettings& settings,
                            const BytesTaker& take) {
  OutputBuffer buffer;
  std::string reason;
  std::uint64_t clipped = 0;
  if (!encode(format, picture, settings, buffer, &clipped, &reason)) {
    throw Failure(ExitCode::Output, "cannot write to the standard output: " + reason);
  }
  take(buffer.bytes());
  return clipped;
}

std::vector<std::string> lostMetadata(std::optional<FileFormat> format, const OutputPicture& picture) {
  const FileMetadata& metadata = picture.metadata;
  using enum FileFormat;
  const auto isOneOf = [format](std::initializer_list<FileFormat> formats) {
    return format && std::ranges::find(formats, *format) != formats.end();
  };
  std::vector<std::string> lost;
  if (picture.losesColorTag) lost.emplace_back("the color space");
  if (!metadata.exif.empty() && !isOneOf({Png, Jpeg, Tiff, WebP})) lost.emplace_back("Exif");
  if (metadata.resolution && !isOneOf({Png, Jpeg, Tiff, Exr})) lost.emplace_back("the resolution");
  if (metadata.pixelAspect && !isOneOf({Png, Jpeg, Tiff, Exr, Dpx, Clip})) lost.emplace_back("the pixel aspect ratio");
  if (metadata.frameRate && !isOneOf({Exr, Dpx, Clip})) lost.emplace_back("the frame rate");
  if (metadata.timeCode && !isOneOf({Exr, Dpx, Clip})) lost.emplace_back("the time code");
  if (format == Exr) return lost;
  for (const HeaderAttribute& attribute : metadata.attributes) lost.push_back("the attribute " + attribute.name);
  return lost;
}

void tellOfLosses(const std::string& what, std::optional<FileFormat> format, const OutputPicture& picture) {
  const std::vector<std::string> lost = lostMetadata(format, picture);
  if (!lost.empty()) remark(what + " does not hold " + joinedNames(lost, " or ") + " of the first input");
}

}  // namespace host
