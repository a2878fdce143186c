// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCObject.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

class VRTChannelGradient;
class VRTChannelHistogram;

// Base of the parameter values: coding and copying go through the state value, so a copy never shares channels with its
// source. A state that does not fit leaves the object as it was.
class TARN_EXPORT VRTObject : public QCObject {
 public:
  std::string className() const override { return "VRTObject"; }
  // A new object of the same class made from the state value; null when there is none.
  NSObjectRef copyWithZone() const override;
  // The state under the key "state", or without a key when the coder has none. Nothing is thrown here: a state that
  // would make initWithStateValue() throw fails the coder with the reason.
  void encodeWithCoder(NSCoder& coder) const override;
  bool initWithCoder(NSCoder& coder) override;

 protected:
  // The keys of the state dictionary that the class reads: in an archive, entries under others may be of any class.
  // None when the state is no dictionary, or all of it counts.
  virtual std::span<const std::string> stateKeys() const;
};

// A gradient. Owns its channel from construction to destruction.
//
// State: the arrays of its color and of its opacity samples, in the form that VRTStateKeys.h describes.
class TARN_EXPORT VRTGradient : public VRTObject {
 public:
  VRTGradient();  // white at 0 to black at 1, smooth, opaque
  ~VRTGradient() override;
  // A new one, as the constructor makes it.
  static std::shared_ptr<VRTGradient> gradient();
  std::string className() const override { return "VRTGradient"; }

  VRTChannelGradient* kxChannelGradient() const { return _kxChannelGradient.get(); }  // edited in place; not a copy

  // Fill `count` entries of four components (alpha, red, green, blue) at time 0; see VRTChannelGradient::getGradient.
  void getGradient8(std::uint8_t* out, std::uint32_t samples) const;
  void getGradient16(std::uint16_t* out, std::uint32_t samples) const;
  void getGradientFloat(float* out, std::uint32_t samples) const;

  std::optional<PropertyList> stateValue() const override;
  // Missing arrays keep the default samples; samples are neither sorted nor named; numbers may be written as text
  // (PropertyList::doubleValue()), and an entry that is neither reads as 0. Anything that is not a dictionary with
  // arrays is refused. An array that ends within a group throws std::out_of_range, the one exception of this framework.
  bool initWithStateValue(const PropertyList& state, std::string* reason = nullptr) override;

 protected:
  std::span<const std::string> stateKeys() const override;

 private:
  std::unique_ptr<VRTChannelGradient> _kxChannelGradient;
};

// A levels adjustment; channel 0 RGB, 1 red, 2 green, 3 blue, 4 alpha. Other channels read 0 and store nothing.
class TARN_EXPORT VRTHistogram : public VRTObject {
 public:
  VRTHistogram();
  ~VRTHistogram() override;
  // A new one, as the constructor makes it.
  static std::shared_ptr<VRTHistogram> histogram();
  std::string className() const override { return "VRTHistogram"; }

  // Edited in place; not a copy.
  VRTChannelHistogram* kxChannelHistogram() const { return _kxChannelHistogram.get(); }

  // The channel that the editor shows, and the values of each channel: 0 to 1, gamma 0 to 5; stored as given.
  int selectedChannel() const;
  void setSelectedChannel(int channel);
  double blackInForChannel(int channel) const;
  double blackOutForChannel(int channel) const;
  double whiteInForChannel(int channel) const;
  double whiteOutForChannel(int channel) const;
  double gammaForChannel(int channel) const;
  void setBlackIn(double value, int channel);
  void setBlackOut(double value, int channel);
  void setWhiteIn(double value, int channel);
  void setWhiteOut(double value, int channel);
  void setGamma(double value, int channel);

  // The keys of VRTStateKeys::levelsKeys(), in that order.
  std::optional<PropertyList> stateValue() const override;
  // A missing key reads as 0; numbers may be written as text.
  bool initWithStateValue(const PropertyList& state, std::string* reason = nullptr) override;

 protected:
  std::span<const std::string> stateKeys() const override;

 private:
  std::unique_ptr<VRTChannelHistogram> _kxChannelHistogram;
};

// Any archivable object, as one parameter. State: data that holds a keyed archive of the object, which is null in a new
// one. A value that cannot be archived has no state, nor has opaque data nested more than 16 deep, which is not read
// either. What the archive names must be in the class table.
class TARN_EXPORT VRTOpaqueData : public VRTObject {
 public:
  VRTOpaqueData();
  ~VRTOpaqueData() override;
  // A new one, empty or with a value.
  static std::shared_ptr<VRTOpaqueData> data();
  static std::shared_ptr<VRTOpaqueData> dataWithValue(NSObjectRef value);
  std::string className() const override { return "VRTOpaqueData"; }
  // The class that values must be of.
  static std::string valueClass() { return "NSObject"; }

  // The object itself, not a copy; may be null.
  bool initWithValue(NSObjectRef value);
  NSObjectRef value() const { return _value; }

  std::optional<PropertyList> stateValue() const override;
  bool initWithStateValue(const PropertyList& state, std::string* reason = nullptr) override;

 private:
  NSObjectRef _value;
};
