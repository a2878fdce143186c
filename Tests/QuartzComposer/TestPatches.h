// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Tests/QuartzComposer/TestFolder.h"
#include "Tests/Support/Lists.h"

#include <stdexcept>

using Names = std::vector<std::string>;

// Patches and objects that tests build compositions of.

// State: an integer. A state that is an array raises std::out_of_range; anything else is refused.
class TestObject : public QCObject {
 public:
  explicit TestObject(std::int64_t number = 0) : number_(number) {}
  std::string className() const override { return "TestObject"; }
  NSObjectRef copyWithZone() const override { return std::make_shared<TestObject>(number_); }
  std::optional<PropertyList> stateValue() const override { return PropertyList::integer(number_); }
  bool initWithStateValue(const PropertyList& state, std::string*) override {
    if (state.isArray()) throw std::out_of_range("index 5 beyond 3");
    number_ = state.integerValue();
    return state.type() == PropertyList::Type::Integer;
  }
  std::int64_t number() const { return number_; }

 private:
  std::int64_t number_;
};

struct TestSubobject : TestObject {
  using TestObject::TestObject;
  std::string className() const override { return "TestSubobject"; }
};

inline const NSClassRegistration registeredObject("TestObject", "QCObject",
                                                  [] { return std::make_shared<TestObject>(); });
inline const NSClassRegistration registeredSubobject("TestSubobject", "TestObject",
                                                     [] { return std::make_shared<TestSubobject>(); });

struct TestObjectPort : QCObjectPort {
  using QCObjectPort::QCObjectPort;
  std::string className() const override { return "TestObjectPort"; }
  std::string objectClass() const override { return "TestObject"; }
};

struct TestImage : QCImage {
  std::size_t pixelsWide() const override { return 3; }
  std::size_t pixelsHigh() const override { return 2; }
  int _bufferPixelSize() const override { return 4; }
};

// The names of the "Sum" patches in the order in which they were executed, by their input "label".
inline std::vector<std::string> executedLabels;

struct SumPatch : QCPatch {
  bool execute(double, std::string*) override {
    executedLabels.push_back(label->stringValue());
    sum->setDoubleValue(a->doubleValue() + b->doubleValue());
    return outputImage->setValue(image->value()) && outputObject->setValue(object->value());
  }
  std::shared_ptr<QCNumberPort> a =
      addInputPort<QCNumberPort>("a", dict({{"default", PropertyList::real(1)}, {"name", text("First")}}));
  std::shared_ptr<QCNumberPort> b = addInputPort<QCNumberPort>("b"), sum = addOutputPort<QCNumberPort>("sum");
  std::shared_ptr<QCStringPort> label = addInputPort<QCStringPort>("label");
  std::shared_ptr<QCImagePort> image = addInputPort<QCImagePort>("image");
  std::shared_ptr<QCImagePort> outputImage = addOutputPort<QCImagePort>("outputImage");
  std::shared_ptr<TestObjectPort> object = addInputPort<TestObjectPort>("object");
  std::shared_ptr<TestObjectPort> outputObject = addOutputPort<TestObjectPort>("outputObject");
};

struct ThrowPatch : QCPatch {
  ThrowPatch() { addOutputPort<QCNumberPort>("sum"); }
  bool execute(double, std::string*) override { throw std::runtime_error("thrown on purpose"); }
};

// A manager of a namespace of its own.
inline std::shared_ptr<GFNodeManager> newManager() {
  static int count = 0;
  auto manager = std::make_shared<GFNodeManager>();
  EXPECT_TRUE(manager->initWithNamespace("org.vorto.test.nodes." + std::to_string(++count)));
  return manager;
}

// With "Sum" and "Throw", which throws when it is executed.
inline std::shared_ptr<GFNodeManager> managerWithTestPatches() {
  auto manager = newManager();
  EXPECT_TRUE(manager->registerNodeWithName("Sum", {}, [] { return std::make_shared<SumPatch>(); }));
  EXPECT_TRUE(manager->registerNodeWithName("Throw", {}, [] { return std::make_shared<ThrowPatch>(); }));
  return manager;
}

// A composition of nodes "n0", "n1", ... that are not connected.
inline PropertyList composition(const std::string& name, const Names& nodeNames) {
  PropertyList nodes = PropertyList::array();
  for (const std::string& node : nodeNames) {
    nodes.append(dict({{"identifier", text("n" + std::to_string(nodes.items().size()))}, {"name", text(node)}}));
  }
  return dict(
      {{"formatVersion", PropertyList::integer(1)}, {"attributes", dict({{"name", text(name)}})}, {"nodes", nodes}});
}

inline std::string bytesOf(const PropertyList& list) {
  const auto bytes = PropertyListToBytes(list, PropertyListFormat::Binary, nullptr).value_or(PropertyList::Bytes());
  return {bytes.begin(), bytes.end()};
}

// Have the manager load one composition that lies in a folder of its own, or one of the folder "compositions".
inline void load(GFNodeManager& manager, const std::string& contents, const std::string& file = "Test.qtz") {
  const TestFolder folder;
  folder.write(file, contents);
  manager.loadPlugInsInFolder(folder.path(), {"qtz"});
}
inline void load(GFNodeManager& manager, const PropertyList& composition, const std::string& file = "Test.qtz") {
  load(manager, bytesOf(composition), file);
}
inline void loadFile(GFNodeManager& manager, const std::string& name) {
  load(manager, contentsOf(TEST_DATA "/compositions/" + name + ".qtz"), name + ".qtz");
}
