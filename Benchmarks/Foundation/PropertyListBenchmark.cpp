// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if VORTO_HAVE_PLIST
#include <plist/plist.h>
#endif

// Reading lists beside libplist, and how writing and archiving grow with the number of values.

namespace {

using Bytes = PropertyList::Bytes;
using Format = PropertyListFormat;

// Small dictionaries of every common kind of value, as documents hold them; four values and four keys each.
PropertyList mixedList(std::size_t values) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> unit;
  PropertyList::Array items;
  for (std::size_t i = 0; i < values / 9; ++i) {
    PropertyList entry;
    entry.set("name", PropertyList::string("sample " + std::to_string(i)));
    entry.set("position", PropertyList::real(unit(random)));
    entry.set("count", PropertyList::integer(static_cast<std::int64_t>(i)));
    entry.set("on", PropertyList::boolean(i % 3 == 0));
    items.push_back(std::move(entry));
  }
  return PropertyList::array(std::move(items));
}

// Distinct reals: nothing is shared, everything is looked up.
PropertyList realList(std::size_t values) {
  PropertyList::Array items;
  for (std::size_t i = 0; i < values; ++i) {
    items.push_back(PropertyList::real(static_cast<double>(i) + 0.1));
  }
  return PropertyList::array(std::move(items));
}

NSObjectRef numbers(std::size_t count) {
  std::vector<NSObjectRef> objects;
  for (std::size_t i = 0; i < count; ++i) {
    objects.push_back(NSNumber::numberWithDouble(static_cast<double>(i) + 0.1));
  }
  return std::make_shared<NSArray>(std::move(objects));
}

// The time of one call alone: what it returns is let go outside of it.
template <typename Call>
void measureCall(benchmark::State& state, Call call) {
  for (auto _ : state) {
    auto result = call();
    state.PauseTiming();
    if (!result) {
      state.SkipWithError("nothing came of it");
    }
    result = decltype(result)();
    state.ResumeTiming();
  }
}

using Measure = std::function<void(benchmark::State&)>;

void add(const std::string& table, const std::string& row, const std::string& column, Measure measure) {
  benchmark::RegisterBenchmark(benchmarkName(table, row, column).c_str(), [measure = std::move(measure)](
                                                                              benchmark::State& state) {
    measure(state);
  })->Unit(benchmark::kMicrosecond);
}

void measureReading(benchmark::State& state, const Bytes& bytes) {
  measureCall(state, [&] { return PropertyListFromBytes(bytes, nullptr); });
}

#if VORTO_HAVE_PLIST
struct PeerFree {
  void operator()(void* list) const { plist_free(list); }
};
using Peer = std::unique_ptr<void, PeerFree>;

void measurePeer(benchmark::State& state, const Bytes& bytes, Format format) {
  auto* const read = format == Format::Xml ? &plist_from_xml : &plist_from_bin;
  measureCall(state, [&] {
    plist_t list = nullptr;
    read(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &list);
    return Peer(list);
  });
}
#endif

void addReading() {
  const struct {
    const char* name;
    PropertyList list;
  } lists[] = {{"mixed", mixedList(400'000)}, {"reals", realList(200'000)}};
  for (const auto& each : lists) {
    for (const Format format : {Format::Xml, Format::Binary}) {
      const Bytes bytes = PropertyListToBytes(each.list, format, nullptr).value();
      const std::string row = std::string(each.name) + (format == Format::Xml ? " XML" : " binary");
      add("reading lists", row, "vorto", [=](auto& state) { measureReading(state, bytes); });
#if VORTO_HAVE_PLIST
      add("reading lists", row, "libplist", [=](auto& state) { measurePeer(state, bytes, format); });
#endif
    }
  }
}

// The lists are made within the benchmarks: all of them together would take the memory of the machine.
void addGrowth(std::size_t values) {
  const std::string row = std::to_string(values / 1000) + " thousand values";
  for (const Format format : {Format::Xml, Format::Binary}) {
    const std::string kind = format == Format::Xml ? "XML" : "binary";
    add("writing " + kind, row, "vorto", [=](auto& state) {
      const PropertyList list = realList(values);
      measureCall(state, [&] { return PropertyListToBytes(list, format, nullptr); });
    });
  }
  // In an archive a number in an array is two values: itself and the reference.
  add("archiving", row, "vorto", [=](auto& state) {
    const NSObjectRef root = numbers(values / 2);
    measureCall(state, [&] { return NSKeyedArchiver::archivedData(root, Format::Binary, nullptr); });
  });
  add("unarchiving", row, "vorto", [=](auto& state) {
    const Bytes archive = NSKeyedArchiver::archivedData(numbers(values / 2), Format::Binary, nullptr).value_or(Bytes());
    measureCall(state, [&] { return NSKeyedUnarchiver::unarchiveObject(archive, nullptr); });
  });
}

const bool registered = [] {
  addReading();
  for (const std::size_t values : {100'000, 200'000, 400'000, 800'000, 1'600'000}) {
    addGrowth(values);
  }
  return true;
}();

}  // namespace
