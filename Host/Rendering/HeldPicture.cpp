// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/HeldPicture.h"

#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/FileSpace.h"
#include "Host/Files/FileFormat.h"
#include "Host/Messages/Remark.h"
#include "Host/Pixels/Alpha.h"
#include "Host/Pixels/Layouts.h"
#include "TarnCore/TCBitmap.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

Depth depthOfSamples(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return Depth::Bits8;
    case SampleType::UInt16:
      return Depth::Bits16;
    case SampleType::Float:
      break;
  }
  return Depth::Float;
}

SampleType samplesOf(const HeldPicture& picture) {
  return sampleTypeOfResult(*picture.bitmap, picture.name);
}

std::shared_ptr<const PictureInfo> premultipliedInfo(const PictureInfo& info) {
  auto result = std::make_shared<PictureInfo>(info);
  if (result->alpha == AlphaKind::Straight) result->alpha = AlphaKind::Premultiplied;
  return result;
}

// An untagged picture of those pixels.
PictureInfo bareInfo(const HeldPicture& picture) {
  PictureInfo info;
  info.width = picture.bitmap->width;
  info.height = picture.bitmap->height;
  info.sample = samplesOf(picture);
  info.depth = picture.depth;
  info.alpha = AlphaKind::Premultiplied;
  return info;
}

// The space that the pixels are known to be in, where it is not what the file says.
std::optional<ColorSpace> spaceBeside(const HeldPicture& picture) {
  return picture.working ? picture.working : picture.told;
}

}  // namespace

HeldPicture heldBitmap(BitmapRef bitmap) {
  HeldPicture picture;
  picture.bitmap = std::move(bitmap);
  picture.depth = depthOfSamples(samplesOf(picture));
  return picture;
}

HeldPicture heldPicture(FilePicture file, const std::string& name, bool isOfClip) {
  HeldPicture picture;
  picture.name = name;
  picture.depth = file.info->depth;
  if (file.info->alpha == AlphaKind::Straight) {
    if (isOfClip) file.bitmap = inDepth(file.bitmap, SampleType::Float, name);
    picture.isConverted = isOfClip;
    premultiply(*file.bitmap);
  }
  picture.info = premultipliedInfo(*file.info);
  picture.bitmap = std::move(file.bitmap);
  return picture;
}

HeldPicture readHeldPicture(const std::string& path, const std::optional<ColorSpace>& told,
                            const std::optional<ColorSpace>& working) {
  FilePicture file = readPicture(path);
  ColorFlow colors({working, std::nullopt, {told}});
  colors.begin({path}, {file.info.get()});
  MutableBitmapRef converted = colors.toWorking(0, file, path);
  const bool isConverted = converted != nullptr;
  HeldPicture picture;
  if (isConverted) {
    picture.name = path;
    picture.depth = file.info->depth;
    picture.info = premultipliedInfo(*file.info);
    picture.bitmap = std::move(converted);
  } else {
    picture = heldPicture(std::move(file), path, false);
  }
  picture.isConverted = isConverted;
  picture.told = told;
  picture.working = working;
  return picture;
}

ColorSpace spaceOf(const HeldPicture& picture) {
  if (const auto space = spaceBeside(picture)) return *space;
  if (!picture.info) return assumedSpace(picture.depth);
  return spaceOfFile(*picture.info, !userConfiguration().empty()).space;
}

HeldPictureOutput::HeldPictureOutput(HeldOutput wishes) : wishes_(std::move(wishes)) {}

// All that went into it decides. What there was to say of that, reading and rendering said.
void HeldPictureOutput::begin(const HeldPicture& held, const PictureInfo& first) {
  std::vector<std::string> names{held.name};
  std::vector<const PictureInfo*> infos{&first};
  ColorWishes wishes{held.working, wishes_.space, {held.told}};
  for (const HeldSource& other : held.others) {
    names.push_back(other.name);
    infos.push_back(other.info.get());
    wishes.inputs.push_back(other.told);
  }
  colors_ = std::make_unique<ColorFlow>(std::move(wishes));
  const RemarksRedirected nowhere([](const Remark&) {});
  colors_->begin(names, infos);
}

OutputPicture HeldPictureOutput::picture(const HeldPicture& held, std::optional<Channels> channels) {
  const PictureInfo bare = held.info ? PictureInfo() : bareInfo(held);
  const PictureInfo& info = held.info ? *held.info : bare;
  OutputPicture picture;
  picture.bitmap = outputConverted(held.bitmap, wishes_.alpha);
  picture.depth = wishes_.depth.value_or(held.depth);
  const std::optional<Channels> told = wishes_.channels ? wishes_.channels : channels;
  picture.channels = told ? *told : keptChannels(*picture.bitmap, info.channels);
  picture.areChannelsTold = wishes_.channels.has_value();
  picture.metadata = info.metadata;
  if (wishes_.alpha == OutputAlpha::Gray) {
    picture.metadata.color = {};  // alpha is no color
  } else {
    if (!colors_) begin(held, info);
    colors_->toOutput(picture, wishes_.format, wishes_.path);
  }
  picture.isConverted = picture.isConverted || held.isConverted;
  return picture;
}

void writeHeldPicture(const HeldPicture& picture, const HeldOutput& output, const WriteSettings& settings) {
  HeldPictureOutput made(output);
  const std::uint64_t clipped = writePicture(output.path, output.format, made.picture(picture), settings);
  tellOfClipping(clipped, made.clippedSpace());
}

HeldRendering::HeldRendering(const std::string& effect, std::size_t inputCount, const Framing& framing,
                             std::optional<Depth> depth)
    : effect_(effect, inputCount, framing, depth), depth_(depth) {}

std::vector<HeldPicture> HeldRendering::worked(const std::vector<HeldPicture>& inputs) const {
  std::vector<HeldPicture> pictures = inputs;
  const bool areColorsKnown = !pictures.empty() && pictures[0].info;
  std::vector<std::size_t> tagged;  // which ones the flow of colors is about
  std::vector<std::string> names;
  std::vector<const PictureInfo*> infos;
  ColorWishes wishes;
  for (std::size_t i = 0; areColorsKnown && i < pictures.size(); ++i) {
    if (!pictures[i].info) continue;
    tagged.push_back(i);
    names.push_back(pictures[i].name);
    infos.push_back(pictures[i].info.get());
    wishes.inputs.push_back(spaceBeside(pictures[i]));
  }
  if (areColorsKnown) wishes.working = pictures[0].working;
  ColorFlow colors(wishes);
  if (tagged.size() > 1) colors.begin(names, infos);
  for (std::size_t place = 0; tagged.size() > 1 && place < tagged.size(); ++place) {
    HeldPicture& picture = pictures[tagged[place]];
    const FilePicture file{std::const_pointer_cast<VortoBitmap>(picture.bitmap), picture.info};  // is read alone
    if (MutableBitmapRef converted = colors.toWorking(place, file, picture.name)) {
      picture.bitmap = std::move(converted);
      picture.isConverted = true;
    }
  }
  std::optional<Depth> depth = depth_;
  SampleType widest = SampleType::UInt8;
  for (const HeldPicture& picture : pictures) {
    if (!depth_) depth = depth ? commonDepth(*depth, picture.depth) : picture.depth;
    widest = std::max(widest, samplesOf(picture));
  }
  if (!depth) return pictures;
  const bool isAnyConverted = std::ranges::any_of(pictures, &HeldPicture::isConverted);
  const SampleType wanted = sampleTypeOf(*depth);
  const SampleType working = isAnyConverted ? SampleType::Float : depth_ ? wanted : std::max(wanted, widest);
  for (HeldPicture& picture : pictures) {
    picture.bitmap = inDepth(picture.bitmap, working, picture.name);
    picture.depth = *depth;
    picture.isConverted = isAnyConverted;
  }
  return pictures;
}

HeldPicture HeldRendering::render(const std::vector<HeldPicture>& worked, double time) {
  InputPictures pictures;
  HeldPicture result;
  for (const HeldPicture& picture : worked) {
    pictures.bitmaps.push_back(picture.bitmap);
    pictures.depth = picture.depth;
    if (picture.info) pictures.infos.push_back(picture.info);
  }
  if (!worked.empty()) {
    result = worked[0];
    result.bitmap = nullptr;
  }
  for (std::size_t i = 1; result.info && i < worked.size(); ++i) {
    const HeldPicture& other = worked[i];
    if (other.info) result.others.push_back({other.name, other.info, spaceBeside(other)});
    result.others.insert(result.others.end(), other.others.begin(), other.others.end());
  }
  effect_.connect(pictures);
  result.bitmap = effect_.takenResult(time);
  result.depth = effect_.depthOf(*result.bitmap);
  if (result.info) {
    auto info = std::make_shared<PictureInfo>(*result.info);
    info->channels = pictures.infos.size() == worked.size() ? commonChannels(pictures.infos) : Channels::RGBA;
    result.info = std::move(info);
  }
  return result;
}

}  // namespace host
