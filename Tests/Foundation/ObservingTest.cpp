// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/NSValues.h"

#include <gtest/gtest.h>

namespace {

class Observer : public NSKeyValueObserver {
 public:
  explicit Observer(std::function<void(NSObject*)> action = nullptr) : action_(std::move(action)) {}
  void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList& change,
                              void* context) override {
    calls.push_back(keyPath);
    lastContext = context;
    EXPECT_EQ(change.find("kind")->integerValue(), 1);
    if (action_) {
      const auto kept = action_;  // the action may destroy this observer
      kept(object);
    }
  }
  std::vector<std::string> calls;
  void* lastContext = nullptr;

 private:
  std::function<void(NSObject*)> action_;
};

TEST(KeyValueObserving, TellsWhoObservesTheKey) {
  const auto object = std::make_shared<NSObject>();
  Observer observer, other;
  int context = 0;
  object->addObserver(&observer, "value", 0, &context);
  object->addObserver(&observer, "value", 0, nullptr);
  object->addObserver(&other, "other", 0, nullptr);
  object->willChangeValueForKey("value");
  object->didChangeValueForKey("value");
  EXPECT_EQ(observer.calls.size(), 2u);
  EXPECT_TRUE(other.calls.empty());
  object->removeObserver(&observer, "value");  // the newest
  object->didChangeValueForKey("value");
  EXPECT_EQ(observer.calls.size(), 3u);
  EXPECT_EQ(observer.lastContext, &context);
  object->removeObserver(&observer, "value");
  object->removeObserver(&observer, "value");
  object->removeObserver(nullptr, "value");
  object->addObserver(nullptr, "value", 0, nullptr);
  object->didChangeValueForKey("value");
  EXPECT_EQ(observer.calls.size(), 3u);
}

TEST(KeyValueObserving, ObserversMayDieAtAnyTime) {
  const auto object = std::make_shared<NSObject>();
  auto before = std::make_unique<Observer>();
  object->addObserver(before.get(), "value", 0, nullptr);
  before.reset();
  object->didChangeValueForKey("value");

  std::unique_ptr<Observer> victim, itself;
  Observer killer([&](NSObject*) { victim.reset(); });
  victim = std::make_unique<Observer>([](NSObject*) { FAIL() << "told after its death"; });
  itself = std::make_unique<Observer>([&](NSObject*) { itself.reset(); });
  Observer last;
  for (NSKeyValueObserver* each :
       std::initializer_list<NSKeyValueObserver*>{&killer, victim.get(), itself.get(), &last}) {
    object->addObserver(each, "value", 0, nullptr);
  }
  object->didChangeValueForKey("value");
  EXPECT_EQ(itself, nullptr);
  EXPECT_EQ(last.calls.size(), 1u);
}

TEST(KeyValueObserving, AnythingMayChangeWithinANotification) {
  auto object = std::make_shared<NSObject>();
  Observer late, removed, after;
  int depth = 0;
  Observer changer([&](NSObject* changed) {
    changed->removeObserver(&removed, "value");
    for (int i = 0; i < 100; ++i) {
      changed->addObserver(&late, "value", 0, nullptr);
    }
    if (++depth < 3) {
      changed->didChangeValueForKey("value");
    }
  });
  object->addObserver(&changer, "value", 0, nullptr);
  object->addObserver(&removed, "value", 0, nullptr);
  object->addObserver(&after, "value", 0, nullptr);
  object->didChangeValueForKey("value");
  EXPECT_EQ(changer.calls.size(), 3u);
  EXPECT_EQ(after.calls.size(), 3u);
  EXPECT_TRUE(removed.calls.empty());
  EXPECT_EQ(late.calls.size(), 100u + 200u) << "of each notification those that were there before it";

  object = std::make_shared<NSObject>();
  Observer killer([&](NSObject*) { object.reset(); }), next;
  object->addObserver(&killer, "value", 0, nullptr);
  object->addObserver(&next, "value", 0, nullptr);
  object->didChangeValueForKey("value");
  EXPECT_EQ(object, nullptr);
  EXPECT_TRUE(next.calls.empty());
}

TEST(NotificationCenter, TellsByNameAndSenderInOrder) {
  NSNotificationCenter center;
  int sender = 0, other = 0;
  std::string told;
  auto any = center.addObserver("n", nullptr, [&](const NSNotification& each) { told += each.object ? "a" : "-"; });
  auto one = center.addObserver("n", &sender, [&](const NSNotification&) { told += "b"; });
  auto elsewhere = center.addObserver("m", nullptr, [&](const NSNotification&) { told += "c"; });
  center.postNotificationName("n", &sender);
  center.postNotificationName("n", &other);
  center.postNotificationName("n", nullptr);
  EXPECT_EQ(told, "aba-");
  any = std::move(one);  // ends the first one
  center.postNotificationName("n", &sender);
  EXPECT_EQ(told, "aba-b");
  any = NSNotificationCenter::Observation();
  center.postNotificationName("n", &sender);
  EXPECT_EQ(told, "aba-b");
}

TEST(NotificationCenter, ObserversMayComeAndGoWhileTold) {
  auto center = std::make_unique<NSNotificationCenter>();
  std::string told;
  NSNotificationCenter::Observation first, second, late;
  first = center->addObserver("n", nullptr, [&](const NSNotification&) {
    told += "1";
    first = {};  // itself
    second = {};
    late = center->addObserver("n", nullptr, [&](const NSNotification&) { told += "l"; });
  });
  second = center->addObserver("n", nullptr, [&](const NSNotification&) { told += "2"; });
  center->postNotificationName("n", nullptr);
  EXPECT_EQ(told, "1");
  center->postNotificationName("n", nullptr);
  EXPECT_EQ(told, "1l");
  auto killer = center->addObserver("n", nullptr, [&](const NSNotification&) { center.reset(); });
  center->postNotificationName("n", nullptr);
  EXPECT_EQ(center, nullptr);
  EXPECT_EQ(told, "1ll");
}

TEST(ClassTable, KnowsNamesAndSuperclasses) {
  const NSClassRegistration base("TestBase", "NSObject", nullptr);
  const NSClassRegistration ringA("TestRingA", "TestRingB", nullptr), ringB("TestRingB", "TestRingA", nullptr);
  EXPECT_FALSE(NSRegisterClass({"TestBase", "NSString", nullptr}));
  EXPECT_EQ(NSClassFromString("TestBase")->superclassName, "NSObject");
  EXPECT_EQ(NSClassFromString("Unheard"), nullptr);
  using Names = std::vector<std::string>;
  EXPECT_EQ(NSClassHierarchy("NSMutableData"), (Names{"NSMutableData", "NSData", "NSObject"}));
  EXPECT_EQ(NSClassHierarchy("NSObject"), (Names{"NSObject"}));
  EXPECT_EQ(NSClassHierarchy("Unheard"), (Names{"Unheard", "NSObject"}));
  EXPECT_EQ(NSClassHierarchy("TestRingA").back(), "NSObject");
  const auto data = std::make_shared<NSMutableData>(PropertyList::Bytes());
  EXPECT_TRUE(data->isKindOfClass("NSData"));
  EXPECT_FALSE(data->isKindOfClass("NSString"));
}

}  // namespace
