// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPort.h"

#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Tests/QuartzComposer/TestPatches.h"

namespace {

using P = PropertyList;

// What a port makes of a state: its own state afterwards, or nothing when it refuses and keeps the old value.
struct StateRow {
  const char* name;
  std::shared_ptr<QCPort> (*make)(PropertyList attributes);
  PropertyList given;
  std::optional<PropertyList> expected;
};

template <class Port>
std::shared_ptr<QCPort> make(PropertyList attributes) {
  return std::make_shared<Port>("key", std::move(attributes));
}

P color(const std::vector<double>& components) {
  P array = P::array();
  for (const double component : components) array.append(P::real(component));
  return array;
}

const StateRow stateRows[] = {
    {"NumberKeepsReal", make<QCNumberPort>, P::real(-0.0), P::real(-0.0)},
    {"NumberMakesIntegersReal", make<QCNumberPort>, P::integer(3), P::real(3)},
    {"NumberTakesBooleans", make<QCNumberPort>, P::boolean(true), P::real(1)},
    {"NumberRefusesText", make<QCNumberPort>, text("1"), {}},
    {"BooleanIsNotZero", make<QCBooleanPort>, P::real(0.25), P::boolean(true)},
    {"BooleanOfNegativeZero", make<QCBooleanPort>, P::real(-0.0), P::boolean(false)},
    {"BooleanRefusesText", make<QCBooleanPort>, text("yes"), {}},
    {"IndexTakesWholeReals", make<QCIndexPort>, P::real(7), P::integer(7)},
    {"IndexLargest", make<QCIndexPort>, P::integer(4294967295), P::integer(4294967295)},
    {"IndexTooLarge", make<QCIndexPort>, P::integer(4294967296), {}},
    {"IndexFraction", make<QCIndexPort>, P::real(1.5), {}},
    {"IndexNegative", make<QCIndexPort>, P::integer(-1), {}},
    {"IndexNotANumber", make<QCIndexPort>, P::real(std::nan("")), {}},
    {"IndexInfinite", make<QCIndexPort>, P::real(std::numeric_limits<double>::infinity()), {}},
    {"IndexHuge", make<QCIndexPort>, P::unsignedInteger(~std::uint64_t{0}), {}},
    {"StringTakesText", make<QCStringPort>, text("\xc3\xa9"), text("\xc3\xa9")},
    {"StringRefusesNumbers", make<QCStringPort>, P::integer(1), {}},
    {"ColorOfFour", make<QCColorPort>, color({2, -1, 0.5, 0}), color({2, -1, 0.5, 0})},
    {"ColorOfThree", make<QCColorPort>, color({1, 1, 1}), {}},
    {"ColorOfFive", make<QCColorPort>, color({1, 1, 1, 1, 1}), {}},
    {"ColorOfTexts", make<QCColorPort>, list({text("1"), text("1"), text("1"), text("1")}), {}},
    {"ColorOfData", make<QCColorPort>, P::data({1}), {}},
    {"ImageHasNoState", make<QCImagePort>, P::data({1}), {}},
    {"ObjectMadeByName", make<TestObjectPort>, P::integer(9), P::integer(9)},
    {"ObjectRefusesState", make<TestObjectPort>, text("9"), {}},
    {"ObjectThrowsOnState", make<TestObjectPort>, P::array(), {}},
    {"NoStateForTheBaseClass", make<QCObjectPort>, P::integer(9), {}},
};

}  // namespace

TEST(Port, StatesAreTakenOrRefusedWhole) {
  for (const StateRow& row : stateRows) {
    SCOPED_TRACE(row.name);
    const auto port = row.make({});
    const auto before = port->stateValue();
    std::string reason;
    EXPECT_EQ(port->setStateValue(row.given, &reason), row.expected.has_value());
    EXPECT_EQ(reason.empty(), row.expected.has_value()) << reason;
    EXPECT_EQ(port->stateValue(), row.expected ? row.expected : before);
    EXPECT_EQ(port->setStateValue(row.given, nullptr), row.expected.has_value());

    // The same state as a default; ports of images and objects have none.
    const bool hasDefault = std::string_view(port->kind()) != "image" && std::string_view(port->kind()) != "object";
    const auto withDefault = row.make(dict({{"default", row.given}}));
    EXPECT_EQ(withDefault->stateValue(), row.expected && hasDefault ? row.expected : before);
  }
}

TEST(Port, AnnouncesBothKeyPathsAroundEveryChangeToObserversThatMayLetGoOfIt) {
  struct Recorder : NSKeyValueObserver {
    void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList&, void*) override {
      seen.push_back(keyPath + "=" + std::to_string(dynamic_cast<QCNumberPort&>(*object).doubleValue()));
      if (seen.size() == 5) port.reset();
    }
    Names seen;
    std::shared_ptr<QCNumberPort> port = std::make_shared<QCNumberPort>("key");
  } recorder;
  const auto& port = recorder.port;
  for (const char* path : {"value", "__rawValue__"}) port->addObserver(&recorder, path, 0, nullptr);
  port->setDoubleValue(4);
  EXPECT_EQ(recorder.seen, (Names{"value=4.000000", "__rawValue__=4.000000"}));
  EXPECT_FALSE(port->setValue(nullptr));
  port->willChangeValue();
  EXPECT_EQ(recorder.seen.size(), 2u) << "a refused value is not announced";
  port->didChangeValue();
  EXPECT_EQ(recorder.seen.size(), 4u);
  QCNumberPort* const dying = port.get();
  dying->setDoubleValue(1);
  EXPECT_EQ(port, nullptr);
}

TEST(Port, ObjectPortsTakeAndKeepTheirClass) {
  TestObjectPort port("key");
  EXPECT_TRUE(port.setValue(std::make_shared<TestSubobject>(1)));
  EXPECT_FALSE(port.setValue(std::make_shared<QCObject>()));
  std::string reason;
  EXPECT_FALSE(port.setValue(NSNumber::numberWithInt(1), &reason));
  EXPECT_EQ(reason, "a port of kind object does not take this NSNumber");
  struct Unregistered : TestObject {
    std::string className() const override { return "Unregistered"; }
  };
  EXPECT_FALSE(port.setValue(std::make_shared<Unregistered>(), &reason));
  EXPECT_EQ(reason, "a port of kind object does not take this Unregistered, a class that nobody has registered");
  EXPECT_TRUE(port.setValue(nullptr));
  EXPECT_EQ(port.stateValue(), std::nullopt);
  EXPECT_FALSE(port.setStateValue(P::array(), &reason));
  EXPECT_EQ(reason, "this state does not fit a TestObject: index 5 beyond 3");

  QCObjectPort any("key");
  EXPECT_TRUE(any.setValue(std::make_shared<TestObject>()));
  EXPECT_FALSE(any.setValue(std::make_shared<QCColor>())) << "no QCObject";
  EXPECT_TRUE(any.takesValuesOf(port));
  EXPECT_FALSE(port.takesValuesOf(any));
  EXPECT_FALSE(port.takesValuesOf(QCImagePort("key")));
  EXPECT_TRUE(QCIndexPort("key").takesValuesOf(QCBooleanPort("key")));
  EXPECT_FALSE(QCStringPort("key").takesValuesOf(QCNumberPort("key")));

  QCPatch patch;
  const auto other = patch.addInputPort<TestObjectPort>("a")->portWithKey("b", dict({{"name", text("B")}}));
  ASSERT_TRUE(other);
  EXPECT_EQ(other->className() + other->key() + other->name(), "TestObjectPortbB");
  EXPECT_EQ(other->node(), nullptr);
  EXPECT_EQ(port.portWithKey("c", {}), nullptr) << "it belongs to no patch";
}
