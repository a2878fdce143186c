// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Tests/Support/Lists.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using Names = std::vector<std::string>;

// Patches and objects that tests build compositions of.

// State: an integer. A state that is an array raises std::out_of_range; anything else is refused.
class TestObject : public QCObject {
 public:
  explicit TestObject(std::int64_t number = 0) : number_(number) {}
  std::string className() const override { return "TestObject"; }
  NSObjectRef copyWithZone() const override { return std::make_shared<TestObject>(number_); }
  std::optional<PropertyList> stateValue() const override { return PropertyList::integer(number_); }
  bool initWithStateValue(const PropertyList& state, std::string* reason) override;
  std::int64_t number() const { return number_; }

 private:
  std::int64_t number_;
};

class TestSubobject : public TestObject {
 public:
  using TestObject::TestObject;
  std::string className() const override { return "TestSubobject"; }
};

class TestObjectPort : public QCObjectPort {
 public:
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "TestObjectPort"; }
  std::string objectClass() const override { return "TestObject"; }
};

class TestImage : public QCImage {
 public:
  std::size_t pixelsWide() const override { return 3; }
  std::size_t pixelsHigh() const override { return 2; }
  int _bufferPixelSize() const override { return 4; }
};

// The names of the "Sum" patches in the order in which they were executed, by their input "label".
std::vector<std::string>& executedLabels();

// A manager of a namespace of its own with the nodes
//   "Sum"   inputs a (default 1), b (numbers), label (string), image, object; outputs sum, outputImage, outputObject
//   "Throw" output sum; throws when it is executed
std::shared_ptr<GFNodeManager> newManager();
std::shared_ptr<GFNodeManager> managerWithTestPatches();

// A composition of nodes "n0", "n1", ... that are not connected.
PropertyList composition(const char* name, const std::vector<std::string>& nodeNames);
void loadFile(GFNodeManager& manager, const std::string& name);  // of the folder "compositions"
// Writes one list into a folder of its own and has the manager load it.
void load(GFNodeManager& manager, const PropertyList& composition, const std::string& file = "Test.qtz");
