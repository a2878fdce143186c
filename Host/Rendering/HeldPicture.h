// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"
#include "Host/Files/PictureReading.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/FrameRendering.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// Pictures that somebody holds in memory between files and effects. What is read, rendered and written one by one this
// way becomes what FrameRendering makes of the same files, to the byte.
namespace host {

// A file whose colors went into a picture.
struct HeldSource {
  std::string name;
  std::shared_ptr<const PictureInfo> info;
  std::optional<ColorSpace> told;
};

// Pixels as they flow between patches, and what is known of them.
struct HeldPicture {
  BitmapRef bitmap;                         // never null; any layout that flows between patches
  std::shared_ptr<const PictureInfo> info;  // what the file said, whose alpha is premultiplied by now; null without one
  std::string name = "a picture";           // as messages call it
  Depth depth = Depth::Bits8;               // to write it in, whatever it is held in
  bool isConverted = false;                 // since it was read: integers are made of straight colors
  std::optional<ColorSpace> told;           // of the file's pixels, instead of what it says
  std::optional<ColorSpace> working;        // that they were converted to
  std::vector<HeldSource> others;           // of which it was made, besides the first
};

// Without a file: untagged, in the depth of its samples.
HeldPicture heldBitmap(BitmapRef bitmap);

// What a file or a clip had, premultiplied. Straight alpha of clips is taken off in floats. `told` is instead of what
// the file says of its colors, `working` converts them. Throw Failure.
HeldPicture heldPicture(FilePicture file, const std::string& name, bool isOfClip);
HeldPicture readHeldPicture(const std::string& path, const std::optional<ColorSpace>& told = std::nullopt,
                            const std::optional<ColorSpace>& working = std::nullopt);

// The space that its pixels are in, by what is known of them.
ColorSpace spaceOf(const HeldPicture& picture);

// What is to become of a picture in a file.
struct HeldOutput {
  std::string path;
  FileFormat format = FileFormat::Png;
  OutputAlpha alpha = OutputAlpha::Keep;
  std::optional<Channels> channels;
  std::optional<Depth> depth;
  std::optional<ColorSpace> space;
};

// The colors of pictures that are written one after another: the first decides. Throw Failure.
class HeldPictureOutput {
 public:
  explicit HeldPictureOutput(HeldOutput wishes);
  OutputPicture picture(const HeldPicture& held, std::optional<Channels> channels = std::nullopt);
  std::string clippedSpace() const { return colors_ ? colors_->clippedSpace() : ""; }

 private:
  void begin(const HeldPicture& held, const PictureInfo& first);

  const HeldOutput wishes_;
  std::unique_ptr<ColorFlow> colors_;
};

// Replaces the file once the new one is complete, and says what its colors lost. Throws Failure.
void writeHeldPicture(const HeldPicture& picture, const HeldOutput& output, const WriteSettings& settings);

// An effect that renders pictures which others hold: it keeps none of them. Pictures with a file are converted into the
// space of the first, as inputs of a run are; those without one are taken as they are.
class HeldRendering {
 public:
  // Throws Failure as EffectRendering does.
  HeldRendering(const std::string& effect, std::size_t inputCount, const Framing& framing, std::optional<Depth> depth);
  EffectRendering& effect() { return effect_; }

  // What the effect gets. Tells what is converted. Throws Failure.
  std::vector<HeldPicture> worked(const std::vector<HeldPicture>& inputs) const;
  // The effect's result of worked() pictures, a bitmap of the caller's own. Throws Failure.
  HeldPicture render(const std::vector<HeldPicture>& worked, double time);

 private:
  EffectRendering effect_;
  const std::optional<Depth> depth_;
};

}  // namespace host
