// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelFolder.h"
#include "Channels/VRTChannelGradientSample.h"
#include "Channels/VRTGradientLookup.h"

// The control points of one half of a gradient, its colors or its opacities. The children are samples of the folder's
// kind; anything else among them is left alone and plays no part.
//
// Evaluation at a position x goes by the samples in ascending position (of samples at one position the last child
// counts):
//  - x at or before the first sample: the first sample's value; x after the last: the last one's;
//  - otherwise R is the first sample at or after x, L the one before it, t = (x - L) / (R - L), and L's interpolation
//    kind applies: constant L; linear L + t (R - L); smooth the Bezier value of vorto::kernels::bezierInterp for the x
//    controls (0, m, m, 1), m being L's middle, and the y controls (L, L, R, R). So a position exactly on a sample
//    belongs to the segment on its left.
//  - Any other kind leaves the output as it was.
// A position that is NaN counts as before the first sample; samples at NaN lie after all others. An empty folder leaves
// the output as it was.
class TARN_EXPORT VRTChannelGradientFolder : public VRTChannelFolder {
 public:
  using Sample = VRTGradientLookupSample;
  using Lookup = VRTGradientLookup;

  VRTChannelGradientFolder() = default;
  // Copies nothing: the copy is an empty folder with a fresh id and the default name.
  VRTChannelGradientFolder(const VRTChannelGradientFolder& source);

  // What sortAndRename() puts before the numbers.
  virtual const VortoString& getSampleBaseName() const = 0;

  // Appends a sample that keeps the gradient's look: the color or opacity found at the position, middle 0.5, the
  // interpolation kind of the segment there, id 0. The children are not sorted. In an empty folder, or in a segment of
  // unknown kind, the components are 0; an empty folder gives a smooth sample. The folder owns what is returned.
  virtual VRTChannelGradientSample* insertSample(double time, double position) = 0;

  // Collects the samples into the lookup and arranges it. The time is not used.
  virtual void getLookup(double time, Lookup& lookup) const = 0;

  // Evaluate into alpha, red, green, blue (a color folder writes [1] to [3], an opacity folder [0]). Any NaN is
  // written as the same quiet one.
  virtual void getARGBFromLookup(double position, float* argb, const Lookup& lookup) const = 0;

  // Evaluate into red, green, blue, alpha (a color folder writes [0] to [2], an opacity folder [3]). Answers the entry
  // whose segment was used (L, or the first or last sample); null for an empty lookup.
  virtual const Lookup::Entry* getRGBAFromLookup(double position, double* rgba, const Lookup& lookup) const = 0;

  // Appends a copy of the sample with this id, with id 0, exactly on top of it. Null when there is no such sample. The
  // folder owns what is returned.
  VRTChannelGradientSample* cloneSample(std::uint32_t sampleID);
  // Destroys the sample with this id; no minimum number of samples is kept.
  void deleteSample(std::uint32_t sampleID);

  // Puts the children in ascending position and names them from 1 (RGB1, RGB2, ...). Of samples at the same position
  // all but the last child are destroyed.
  void sortAndRename();
  // Mirrors the gradient: every segment keeps its look. The order of the children stays.
  void flop(double time);
  // Spaces the positions evenly from 0 to 1 (a single sample goes to 0) and centres the middles. Of samples at the same
  // position only the last child moves.
  void spread(double time);

 protected:
  void appendSample(std::unique_ptr<VRTChannelGradientSample> sample);  // with id 0
};

// The colors.
class TARN_EXPORT VRTChannelGradientRGBFolder : public VRTChannelGradientFolder {
 public:
  std::unique_ptr<VRTChannelBase> clone() const override;  // an empty folder
  const VortoString& getSampleBaseName() const override;   // "RGB"
  VRTChannelGradientSampleRGB* insertSample(double time, double position) override;
  void getLookup(double time, Lookup& lookup) const override;
  void getARGBFromLookup(double position, float* argb, const Lookup& lookup) const override;
  const Lookup::Entry* getRGBAFromLookup(double position, double* rgba, const Lookup& lookup) const override;

  // Appends a sample with id 0.
  void addSample(double red, double green, double blue, double position, double middle, std::int32_t interpolation);
};

// The opacities.
class TARN_EXPORT VRTChannelGradientAlphaFolder : public VRTChannelGradientFolder {
 public:
  std::unique_ptr<VRTChannelBase> clone() const override;  // an empty folder
  const VortoString& getSampleBaseName() const override;   // "Alpha"
  VRTChannelGradientSampleAlpha* insertSample(double time, double position) override;
  void getLookup(double time, Lookup& lookup) const override;
  void getARGBFromLookup(double position, float* argb, const Lookup& lookup) const override;
  const Lookup::Entry* getRGBAFromLookup(double position, double* rgba, const Lookup& lookup) const override;

  // Appends a sample with id 0.
  void addSample(double alpha, double position, double middle, std::int32_t interpolation);
};
