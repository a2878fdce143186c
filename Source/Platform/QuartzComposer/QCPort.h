// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSValues.h"
#include "Platform/QuartzComposer/QCObject.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QCPatch;

// A named value on a patch. Observers may watch the key paths "value" and "__rawValue__"; both are announced around
// every change.
//
// Attributes (a dictionary, all optional): "name" (what people read), "minimum", "maximum" (numbers and indexes),
// "default" (numbers, booleans, indexes, strings and colors: the initial value, in the form of stateValue(); one that
// does not fit is passed over), "menu" (an array of strings, one per index). Nothing clamps a value to its range on the
// way in; hosts check.
//
// Numbers, booleans and indexes convert into one another where nothing is lost but precision: a number port stores
// reals, a boolean port is true for a number that is not zero, an index port takes whole numbers only.
class TARN_EXPORT QCPort : public NSObject {
 public:
  explicit QCPort(std::string key, PropertyList attributes = {});
  ~QCPort() override;
  std::string className() const override { return "QCPort"; }

  // What it was made with.
  const std::string& key() const { return key_; }
  const PropertyList& attributes() const { return attributes_; }
  std::string name() const;                // the attribute "name", or the key
  QCPatch* node() const { return node_; }  // the patch that owns the port; null once that patch is gone
  // "number", "boolean", "index", "string", "color", "image", "object"
  virtual const char* kind() const = 0;

  // Null in image and object ports that are empty; other ports always hold a value.
  NSObjectRef value() const { return value_; }
  NSObjectRef rawValue() const { return value_; }  // the stored object itself, which editors change in place
  // Stores what acceptedValue() makes of it, between willChangeValue() and didChangeValue(); false, with the cause in
  // *reason (which may be null) and the old value kept, when the port does not take such a value. Null is taken by
  // image and object ports.
  bool setValue(const NSObjectRef& value, std::string* reason = nullptr);

  // Bracket a change that is made to the value in place.
  void willChangeValue();
  void didChangeValue();

  // The value as documents and compositions store it; nothing for images and for empty object ports.
  virtual std::optional<PropertyList> stateValue() const;
  // False, with the cause in *reason (which may be null) and the old value kept, when the state does not fit the port.
  virtual bool setStateValue(const PropertyList& state, std::string* reason);

  // Whether values of another port can flow into this one.
  virtual bool takesValuesOf(const QCPort& source) const;
  // A new port of this class with another key and other attributes, for a patch that publishes a port of an inner one.
  // Null when the port was not made by addInputPort() or addOutputPort(), or its class cannot be made from a key and
  // attributes alone.
  std::shared_ptr<QCPort> portWithKey(std::string key, PropertyList attributes) const;

 protected:
  // For constructors: the attribute "default" where it fits, else the fallback. Nothing is announced.
  void setInitialValue(NSObjectRef fallback);
  // The value of that state, or nothing when there is none.
  virtual NSObjectRef valueFromState(const PropertyList& state) const;
  // What is stored for a value: the value, a converted one, or nothing to refuse.
  virtual std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const = 0;

 private:
  friend class QCPatch;
  using Maker = std::shared_ptr<QCPort> (*)(std::string key, PropertyList attributes);
  std::string refusalOf(const NSObjectRef& value) const;
  std::string key_;
  PropertyList attributes_;
  QCPatch* node_ = nullptr;
  Maker maker_ = nullptr;
  NSObjectRef value_;
};

// Carries a real.
class TARN_EXPORT QCNumberPort : public QCPort {
 public:
  explicit QCNumberPort(std::string key, PropertyList attributes = {});
  std::string className() const override { return "QCNumberPort"; }
  const char* kind() const override { return "number"; }
  double doubleValue() const;  // 0 until set or given a default
  // As setValue().
  void setDoubleValue(double value);

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// Carries true or false.
class TARN_EXPORT QCBooleanPort : public QCPort {
 public:
  explicit QCBooleanPort(std::string key, PropertyList attributes = {});
  std::string className() const override { return "QCBooleanPort"; }
  const char* kind() const override { return "boolean"; }
  // False until set or given a default.
  bool booleanValue() const;
  void setBooleanValue(bool value);

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// A choice: a whole number from 0. Numbers that are not whole, or negative, or above 4294967295 are refused.
class TARN_EXPORT QCIndexPort : public QCPort {
 public:
  explicit QCIndexPort(std::string key, PropertyList attributes = {});
  std::string className() const override { return "QCIndexPort"; }
  const char* kind() const override { return "index"; }
  // 0 until set or given a default.
  std::uint32_t indexValue() const;
  void setIndexValue(std::uint32_t value);

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// Carries a text in UTF-8.
class TARN_EXPORT QCStringPort : public QCPort {
 public:
  explicit QCStringPort(std::string key, PropertyList attributes = {});
  std::string className() const override { return "QCStringPort"; }
  const char* kind() const override { return "string"; }
  // Empty until set or given a default.
  std::string stringValue() const;
  void setStringValue(const std::string& value);

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// State: an array of four reals, red, green, blue, alpha.
class TARN_EXPORT QCColorPort : public QCPort {
 public:
  explicit QCColorPort(std::string key, PropertyList attributes = {});
  std::string className() const override { return "QCColorPort"; }
  const char* kind() const override { return "color"; }
  std::shared_ptr<QCColor> colorValue() const;  // opaque black until set
  std::optional<PropertyList> stateValue() const override;

 protected:
  NSObjectRef valueFromState(const PropertyList& state) const override;
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// Carries an image, or none. An image has no state: stateValue() is nothing, and setStateValue() refuses.
class TARN_EXPORT QCImagePort : public QCPort {
 public:
  using QCPort::QCPort;
  std::string className() const override { return "QCImagePort"; }
  const char* kind() const override { return "image"; }
  std::shared_ptr<QCImage> imageValue() const;  // null when nothing is connected
  std::optional<PropertyList> stateValue() const override;
  bool setStateValue(const PropertyList& state, std::string* reason) override;

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};

// Carries QCObjects of one class and of its subclasses, by the class table; anything else is refused. A C++ subclass
// that gives itself a name of its own is one only once it is registered under it (NSClassRegistration in
// NSClassTable.h).
class TARN_EXPORT QCObjectPort : public QCPort {
 public:
  using QCPort::QCPort;
  std::string className() const override { return "QCObjectPort"; }
  const char* kind() const override { return "object"; }
  virtual std::string objectClass() const;  // "QCObject" here
  std::optional<PropertyList> stateValue() const override;
  // Makes an objectClass() through the class table and gives it the state; what that throws becomes the reason.
  bool setStateValue(const PropertyList& state, std::string* reason) override;
  bool takesValuesOf(const QCPort& source) const override;  // object ports of the same class or of one below it

 protected:
  std::optional<NSObjectRef> acceptedValue(const NSObjectRef& value) const override;
};
