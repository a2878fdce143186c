// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// A non-keyed coder: one sequence of objects in one buffer of this system's own. Objects are read in the order in which
// they were written; one met twice is written once.
//
// The buffer is a binary property list: {"archiver": "NSArchiver", "version": 1, "objects": [...], "top": [...]}. An
// object is a number, string or data as it is, or a dictionary with "class" (the names from the class up to NSObject)
// and "values"; places in "top" and "values" are uids, 0 for nil and n for the n-th object.
class TARN_EXPORT NSArchiver : public NSCoder {
 public:
  NSArchiver();
  ~NSArchiver() override;
  bool allowsKeyedCoding() const override { return false; }
  void encodeObject(const NSObjectRef& object) override;
  void encodeObject(const NSObjectRef& object, std::string_view key) override;  // fails: there are no keys
  NSObjectRef decodeObject() override;
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;
  // The buffer of what was encoded; nothing when it failed.
  std::optional<PropertyList::Bytes> finishEncoding();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// Reads what NSArchiver wrote. Encoding fails.
class TARN_EXPORT NSUnarchiver : public NSCoder {
 public:
  NSUnarchiver();
  ~NSUnarchiver() override;
  // First, once; false, with the reason in error(), when the bytes are no such buffer.
  bool initForReadingWithData(std::span<const std::uint8_t> bytes);
  bool allowsKeyedCoding() const override { return false; }
  void encodeObject(const NSObjectRef& object) override;
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
