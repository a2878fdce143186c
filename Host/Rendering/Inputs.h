// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Files/PictureReading.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Layouts.h"
#include "Host/Rendering/ClipFrames.h"
#include "Host/Rendering/ColorFlow.h"
#include "Host/Rendering/RenderPlan.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// The depth that holds the values of both.
Depth commonDepth(Depth a, Depth b);

// Pictures of one working depth and one color space.
struct InputPictures {
  std::vector<BitmapRef> bitmaps;
  // With keepFileBitmaps(): as the files have them, unconverted, alpha as the infos say; null where the bitmap is that.
  std::vector<BitmapRef> fileBitmaps;
  std::vector<std::shared_ptr<const PictureInfo>> infos;  // what their files say
  std::vector<std::string> paths;                         // the files that they came from
  Depth depth = Depth::Bits8;                             // of what is made of them, whatever they are held in
};

// The files that flow into an effect: stills, sequences and clips. A still is read once.
class Inputs {
 public:
  // Without a depth the first pictures decide: the deepest of theirs, 8 < 16 < half < float, but float for 16 and half
  // together. Later frames are converted to it.
  // With a layout all go through bitmaps of it.
  Inputs(const std::vector<std::string>& paths, std::optional<Depth> depth, std::optional<Layout> layout = {},
         ColorWishes colors = {});

  enum class Kind { Still, Sequence, Clip };
  std::size_t count() const { return sources_.size(); }
  Kind kind(std::size_t input) const;
  const std::string& path(std::size_t input) const { return sources_[input].path; }
  bool areSequence() const;  // any of them
  bool haveClip() const;

  // What there is of a sequence. Throws Failure when there is nothing.
  FrameRange existingFramesOf(std::size_t input) const;
  // The given frames, or all that exist. Throws Failure when one is missing, or when sequences have different frames.
  FrameRange checkedFrames(std::optional<FrameRange> wanted) const;

  // The file that a frame of an input is in, as messages name it.
  std::string fileAt(std::size_t input, const PlannedFrame& frame) const;

  // Decides depth and colors of the run by what the files of its first frame say, by input: once, before pictures.
  // Without it the first pictures decide. Afterwards the pictures of a frame follow from its own files, whatever frames
  // were before. Throws Failure when colors cannot be converted.
  void begin(const std::vector<std::string>& paths, const std::vector<const PictureInfo*>& infos);
  // The same, by the plan's first frame: what its files say, without their pixels. Throws Failure for one that cannot
  // be read, too.
  std::vector<PictureInfo> begin(const PlannedFrame& first, ClipFrames* clips);

  // From here on pictures have their files' own bitmaps too.
  void keepFileBitmaps() { keepsFileBitmaps_ = true; }

  // Whether pictures are held in floats because clips have alpha that is straight: premultiplied in the bits of a clip
  // colors would lose most of what they are under a small alpha, and neutral effects would change them.
  bool areHeldWider() const { return areHeldWider_; }

  // Of what is made of the pictures; nothing before it is decided, and where there are no inputs.
  std::optional<Depth> depth() const { return depth_; }

  // Throw Failure for a file that cannot be read.
  InputPictures pictures() { return picturesAt(0); }
  InputPictures picturesAt(std::uint32_t frame);  // of that number, of all sequences
  // `clips` may be null where no input is a clip.
  InputPictures picturesAt(const PlannedFrame& frame, ClipFrames* clips);

  ColorFlow& colors() { return colors_; }

 private:
  struct Source {
    std::string path;
    std::optional<FramePattern> pattern;
    bool isClip = false;
    // What was read last; of a still, all there is, as frames have it that convert nothing.
    std::optional<std::uint32_t> frame;
    BitmapRef bitmap;
    BitmapRef fileBitmap;
    SampleType sample = SampleType::UInt8;  // that it was wanted in
    BitmapRef stillAsFloat;                 // once a frame has needed it
    std::shared_ptr<const PictureInfo> info;

    bool isMoving() const { return isClip || pattern; }
  };
  FilePicture readAt(std::size_t input, const PlannedFrame& frame, ClipFrames* clips);
  void takeMoving(std::size_t input, FilePicture file, const PlannedFrame& frame, ClipFrames* clips);
  SampleType workingSample(bool needsFloat) const;
  BitmapRef stillOf(Source& source) const;
  BitmapRef bitmapOf(std::size_t index, FilePicture file, const std::string& path, SampleType working);

  std::vector<Source> sources_;
  bool hasBegun_ = false;
  bool keepsFileBitmaps_ = false;
  bool areHeldWider_ = false;
  std::optional<Depth> depth_;
  std::optional<Layout> layout_;
  ColorFlow colors_;
};

}  // namespace host
