// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCStack.h"

#include "TarnCore/TCPrint.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace stacktest {

// Functions whose names the tests look for; none of them is exported.
__attribute__((noinline)) std::vector<CrawlFrame> Inner() {
  std::vector<CrawlFrame> frames = VortoCollectFrames(0);
  asm volatile("" ::: "memory");
  return frames;
}

__attribute__((noinline)) std::vector<CrawlFrame> Outer() {
  std::vector<CrawlFrame> frames = Inner();
  asm volatile("" ::: "memory");
  return frames;
}

__attribute__((noinline)) void PrintFrom(int firstFrame, int detailed) {
  VortoPrintStack(firstFrame, 0, detailed);
  asm volatile("" ::: "memory");
}

__attribute__((noinline)) std::size_t Recurse(int depth) {
  const std::size_t count = depth == 0 ? VortoCollectFrames(0).size() : Recurse(depth - 1);
  asm volatile("" ::: "memory");
  return count;
}

}  // namespace stacktest

namespace {

CrawlFrame Frame(std::uintptr_t counter, std::uintptr_t address, const char* name, std::uintptr_t offset) {
  CrawlFrame frame;
  frame.programCounter = counter;
  frame.frameAddress = address;
  frame.symbolName.reset(name == nullptr ? nullptr : strdup(name));
  frame.offset = offset;
  return frame;
}

std::string Printed(int firstFrame, int detailed) {
  const ChildResult child = RunInChild([&] {
    unsetenv("tcPrintUseLogFile");
    std::vector<CrawlFrame> frames;
    frames.push_back(Frame(0x1234, 0xABCDEF, nullptr, 0));
    frames.push_back(Frame(0x7FFF12345678, 0x7FFE00000010, "-[Port setValue:]", 0x1F));
    frames.push_back(Frame(0x10, 0x20, "+[Port port]", 1));
    frames.push_back(Frame(0x10, 0x20, "__ZN5Vorto4drawEi", 0xAB));
    frames.push_back(Frame(0x10, 0x20, "_main", 2));
    frames.push_back(Frame(0x10, 0x20, "_", 3));
    frames.push_back(Frame(0x10, 0x20, "", 4));
    VortoPrintFrames(frames, "test", firstFrame, detailed);
    for (std::size_t i = static_cast<std::size_t>(std::max(firstFrame, 0)); i < frames.size(); ++i) {
      if (frames[i].symbolName) return 1;  // freed once printed
    }
    return 0;
  });
  EXPECT_TRUE(child.exitedWith(0));
  return child.output.substr(child.output.find('\n') + 1);
}

TEST(TCStackTest, PrintsFramesByTheRule) {
  EXPECT_EQ(Printed(0, 0),
            "\t0x00001234\t<UNKNOWN>\n"
            "\t0x7FFF12345678\t-[Port setValue:]\n"
            "\t0x00000010\t+[Port port]\n"
            "\t0x00000010\tVorto::draw(int)\n"
            "\t0x00000010\t_main\n"
            "\t0x00000010\t_\n"
            "\t0x00000010\t\n");
  EXPECT_EQ(Printed(0, 1),
            "\tFrame\t\tPC\t\t\tCaller +offset\n"
            "\t0x00ABCDEF\t0x00001234\t<UNKNOWN>\n"
            "\t0x7FFE00000010\t0x7FFF12345678\t-[Port setValue:] +0x1F\n"
            "\t0x00000020\t0x00000010\t+[Port port] +0x1\n"
            "\t0x00000020\t0x00000010\tVorto::draw(int) +0xAB\n"
            "\t0x00000020\t0x00000010\t_main +0x2\n"
            "\t0x00000020\t0x00000010\t_ +0x3\n"
            "\t0x00000020\t0x00000010\t +0x4\n");
}

TEST(TCStackTest, StartsAtTheFirstFrameAsked) {
  EXPECT_EQ(Printed(5, 0), "\t0x00000010\t_\n\t0x00000010\t\n");
  EXPECT_EQ(Printed(7, 0), "");
  EXPECT_EQ(Printed(-3, 0), Printed(0, 0));
}

TEST(TCStackTest, PrintsNamesLongerThanItsBuffer) {
  const std::string part(600, 'n');
  const std::string symbol = "__Z1f600" + part + "S_S_";  // three arguments of one type
  const ChildResult child = RunInChild([&] {
    unsetenv("tcPrintUseLogFile");
    std::vector<CrawlFrame> frames;
    for (int i = 0; i < 2; ++i) frames.push_back(Frame(1, 2, symbol.c_str(), 3));
    VortoPrintFrames(frames, nullptr, 1, 0);
    return 0;
  });
  EXPECT_NE(child.output.find("\tf(" + part + ", " + part + ", " + part + ")\n"), std::string::npos) << child.output;
}

TEST(TCStackTest, CollectsTheRealFrames) {
  const std::vector<CrawlFrame> frames = stacktest::Outer();
  ASSERT_GE(frames.size(), 4u);
  ASSERT_TRUE(frames[0].symbolName && frames[1].symbolName);
  EXPECT_STREQ(frames[0].symbolName.get(), "__ZN9stacktest5InnerEv");
  EXPECT_STREQ(frames[1].symbolName.get(), "__ZN9stacktest5OuterEv");
  EXPECT_EQ(frames[1].programCounter - frames[1].offset, reinterpret_cast<std::uintptr_t>(&stacktest::Outer));
  EXPECT_GT(frames[1].offset, 0u);
  EXPECT_LT(frames[0].frameAddress, frames[1].frameAddress) << "the stack grows downwards";
  const auto isMain = [](const CrawlFrame& frame) {
    return frame.symbolName && std::strcmp(frame.symbolName.get(), "_main") == 0;
  };
  EXPECT_TRUE(std::any_of(frames.begin(), frames.end(), isMain));
}

TEST(TCStackTest, PrintsTheCallersStack) {
  const ChildResult child = RunInChild([] {
    unsetenv("tcPrintUseLogFile");
    stacktest::PrintFrom(0, 1);
    std::printf("---\n");
    stacktest::PrintFrom(1, 0);
    return 0;
  });
  const std::size_t middle = child.output.find("---\n");
  const std::string all = child.output.substr(0, middle);
  const std::string rest = child.output.substr(middle);
  const std::size_t column = all.find("offset\n");
  ASSERT_NE(column, std::string::npos) << all;
  unsigned long address = 0;
  unsigned long counter = 0;
  unsigned long offset = 0;
  const int fields = std::sscanf(all.c_str() + column, "offset\n\t0x%lX\t0x%lX\tstacktest::PrintFrom(int, int) +0x%lX",
                                 &address, &counter, &offset);
  EXPECT_EQ(fields, 3) << all;
  EXPECT_EQ(counter - offset, reinterpret_cast<std::uintptr_t>(&stacktest::PrintFrom));
  EXPECT_NE(all.find("\t_main +0x"), std::string::npos) << all;
  EXPECT_EQ(rest.find("PrintFrom"), std::string::npos) << rest;
}

TEST(TCStackTest, DeepRecursionGivesABoundedTrace) {
  EXPECT_EQ(stacktest::Recurse(5000), kVortoMaximumFrames);
}

}  // namespace
