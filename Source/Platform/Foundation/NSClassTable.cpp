// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"

#include "Platform/Foundation/NSValues.h"

#include <deque>
#include <unordered_map>

namespace {

// Entries never move or go, so that pointers to them stay valid.
struct ClassTable {
  std::deque<NSClass> entries;
  std::unordered_map<std::string, const NSClass*> byName;

  bool add(NSClass entry) {
    if (entry.name.empty() || byName.count(entry.name) != 0) {
      return false;
    }
    const NSClass& kept = entries.emplace_back(std::move(entry));
    byName.emplace(kept.name, &kept);
    return true;
  }
};

template <typename Object, typename... Arguments>
std::function<NSObjectRef()> makerOf(Arguments... arguments) {
  return [arguments...] { return std::make_shared<Object>(arguments...); };
}

// The classes of this room are there whatever the order in which libraries and their constants come up.
void addOwnClasses(ClassTable& table) {
  table.add({"NSObject", "", makerOf<NSObject>()});
  table.add({"NSValue", "NSObject", nullptr});
  table.add({"NSNumber", "NSValue", makerOf<NSNumber>(PropertyList::integer(0))});
  table.add({"NSString", "NSObject", makerOf<NSString>(std::string())});
  table.add({"NSMutableString", "NSString", makerOf<NSString>(std::string())});
  table.add({"NSData", "NSObject", makerOf<NSData>(PropertyList::Bytes())});
  table.add({"NSMutableData", "NSData", makerOf<NSMutableData>(PropertyList::Bytes())});
  table.add({"NSDate", "NSObject", makerOf<NSDate>(0.0)});
  table.add({"NSNull", "NSObject", makerOf<NSNull>()});
  table.add({"NSArray", "NSObject", makerOf<NSArray>()});
  table.add({"NSMutableArray", "NSArray", makerOf<NSArray>()});
  table.add({"NSDictionary", "NSObject", makerOf<NSDictionary>()});
  table.add({"NSMutableDictionary", "NSDictionary", makerOf<NSDictionary>()});
}

ClassTable& classTable() {
  // Never destroyed: libraries may look classes up while the process ends.
  static ClassTable* const table = [] {
    auto* made = new ClassTable;
    addOwnClasses(*made);
    return made;
  }();
  return *table;
}

}  // namespace

bool NSRegisterClass(NSClass entry) {
  return classTable().add(std::move(entry));
}

const NSClass* NSClassFromString(std::string_view name) {
  const auto& byName = classTable().byName;
  const auto found = byName.find(std::string(name));
  return found == byName.end() ? nullptr : found->second;
}

std::vector<std::string> NSClassHierarchy(std::string_view name) {
  std::vector<std::string> chain;
  std::string current(name);
  const std::size_t most = classTable().entries.size() + 1;  // superclasses may name each other in a ring
  while (!current.empty() && current != "NSObject" && chain.size() < most) {
    chain.push_back(current);
    const NSClass* entry = NSClassFromString(current);
    current = entry == nullptr ? std::string() : entry->superclassName;
  }
  chain.emplace_back("NSObject");
  return chain;
}
