// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstddef>
#include <optional>
#include <string>

// Base of the objects that object ports carry. What a subclass returns as its state value is what documents and
// compositions store.
class TARN_EXPORT QCObject : public NSObject {
 public:
  std::string className() const override { return "QCObject"; }
  // Nothing when the object has no storable state; the default has none.
  virtual std::optional<PropertyList> stateValue() const;
  // Restores a freshly made object; false, with the object unusable and the cause in *reason (which may be null, and
  // may be left as it was), when the value does not fit. The default refuses.
  virtual bool initWithStateValue(const PropertyList& state, std::string* reason = nullptr);
};

// What image ports carry: an image that is never changed once it has been handed to a port, so that it is shared, not
// copied. The pixels belong to the class above that implements it.
class TARN_EXPORT QCImage : public NSObject {
 public:
  std::string className() const override { return "QCImage"; }
  NSObjectRef copyWithZone() const override;  // the same image
  // The size in pixels.
  virtual std::size_t pixelsWide() const = 0;
  virtual std::size_t pixelsHigh() const = 0;
  virtual int _bufferPixelSize() const = 0;  // bytes per pixel
};

// The value of a color port: red, green, blue and alpha, normally 0 to 1, not premultiplied.
class TARN_EXPORT QCColor : public NSObject {
 public:
  QCColor() = default;
  QCColor(double red, double green, double blue, double alpha);
  std::string className() const override { return "QCColor"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  void encodeWithCoder(NSCoder& coder) const override;
  bool initWithCoder(NSCoder& coder) override;

  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;
};
