// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestPatches.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Tests/QuartzComposer/TestFolder.h"

#include <stdexcept>

namespace {

const NSClassRegistration registeredObject("TestObject", "QCObject", [] { return std::make_shared<TestObject>(); });
const NSClassRegistration registeredSubobject("TestSubobject", "TestObject",
                                              [] { return std::make_shared<TestSubobject>(); });

class SumPatch : public QCPatch {
 public:
  SumPatch() {
    a_ = addInputPort<QCNumberPort>("a", dict({{"default", PropertyList::real(1)}, {"name", text("First")}}));
    b_ = addInputPort<QCNumberPort>("b");
    label_ = addInputPort<QCStringPort>("label");
    image_ = addInputPort<QCImagePort>("image");
    object_ = addInputPort<TestObjectPort>("object");
    sum_ = addOutputPort<QCNumberPort>("sum");
    outputImage_ = addOutputPort<QCImagePort>("outputImage");
    outputObject_ = addOutputPort<TestObjectPort>("outputObject");
  }

 protected:
  bool execute(double, std::string*) override {
    executedLabels().push_back(label_->stringValue());
    sum_->setDoubleValue(a_->doubleValue() + b_->doubleValue());
    return outputImage_->setValue(image_->value()) && outputObject_->setValue(object_->value());
  }

 private:
  std::shared_ptr<QCNumberPort> a_, b_, sum_;
  std::shared_ptr<QCStringPort> label_;
  std::shared_ptr<QCImagePort> image_, outputImage_;
  std::shared_ptr<TestObjectPort> object_, outputObject_;
};

class ThrowPatch : public QCPatch {
 public:
  ThrowPatch() { addOutputPort<QCNumberPort>("sum"); }

 protected:
  bool execute(double, std::string*) override { throw std::runtime_error("thrown on purpose"); }
};

}  // namespace

bool TestObject::initWithStateValue(const PropertyList& state, std::string*) {
  if (state.isArray()) throw std::out_of_range("index 5 beyond 3");
  number_ = state.integerValue();
  return state.type() == PropertyList::Type::Integer;
}

std::vector<std::string>& executedLabels() {
  static std::vector<std::string> labels;
  return labels;
}

std::shared_ptr<GFNodeManager> newManager() {
  static int count = 0;
  auto manager = std::make_shared<GFNodeManager>();
  EXPECT_TRUE(manager->initWithNamespace("org.vorto.test.nodes." + std::to_string(++count)));
  return manager;
}

std::shared_ptr<GFNodeManager> managerWithTestPatches() {
  auto manager = newManager();
  EXPECT_TRUE(manager->registerNodeWithName("Sum", {}, [] { return std::make_shared<SumPatch>(); }));
  EXPECT_TRUE(manager->registerNodeWithName("Throw", {}, [] { return std::make_shared<ThrowPatch>(); }));
  return manager;
}

PropertyList composition(const char* name, const std::vector<std::string>& nodeNames) {
  PropertyList nodes = PropertyList::array();
  for (const std::string& node : nodeNames) {
    nodes.append(dict({{"identifier", text("n" + std::to_string(nodes.items().size()))}, {"name", text(node)}}));
  }
  return dict(
      {{"formatVersion", PropertyList::integer(1)}, {"attributes", dict({{"name", text(name)}})}, {"nodes", nodes}});
}

void loadFile(GFNodeManager& manager, const std::string& name) {
  const TestFolder folder;
  folder.write(name + ".qtz", contentsOf(TEST_DATA "/compositions/" + name + ".qtz"));
  manager.loadPlugInsInFolder(folder.path(), {"qtz"});
}

void load(GFNodeManager& manager, const PropertyList& composition, const std::string& file) {
  const TestFolder folder;
  const auto bytes = PropertyListToBytes(composition, PropertyListFormat::Xml, nullptr);
  ASSERT_TRUE(bytes);
  folder.write(file, std::string(bytes->begin(), bytes->end()));
  manager.loadPlugInsInFolder(folder.path(), {"qtz"});
}
