// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPrint.h"

#include "TarnCore/TCStack.h"
#include "Tests/Support/ChildProcess.h"

#include <csignal>

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

namespace fs = std::filesystem;

std::string LogPath(pid_t process) {
  return "/tmp/output." + std::to_string(process) + ".log";
}

std::string FileText(const std::string& path) {
  return (std::ostringstream() << std::ifstream(path).rdbuf()).str();
}

// Runs the work in a child that prints or, with a value, logs, and removes the log.
struct Child : ChildResult {
  explicit Child(const char* value, const std::function<int()>& work)
      : ChildResult(RunInChild([&] {
          value ? setenv("tcPrintUseLogFile", value, 1) : unsetenv("tcPrintUseLogFile");
          return work();
        })),
        logExists(fs::is_regular_file(LogPath(process))),
        log(FileText(LogPath(process))) {
    std::error_code error;
    fs::remove_all(LogPath(process), error);
  }
  bool logExists;
  std::string log;
};

TEST(TCPrintTest, PrintsOnStandardOutput) {
  const Child child(nullptr, [] {
    const bool counted = VortoPrint("%s %d\n", "seven", 7) == 8;
    setenv("tcPrintUseLogFile", "", 1);  // too late: the first message has settled it
    VortoPrintIndent(0, "none\n");
    VortoPrintIndent(3, "%s\n", "six");
    return counted ? 0 : 1;
  });
  EXPECT_TRUE(child.exitedWith(0));
  EXPECT_EQ(child.output, "seven 7\nnone\n      six\n");
  EXPECT_FALSE(child.logExists);
}

TEST(TCPrintTest, PrintsIntoTheLogFileWhateverTheValueAndTriesAgainWhenItCannotBeOpened) {
  for (const char* value : {"", "0", "yes"}) {
    const Child child(value, [] {
      fs::create_directory(LogPath(getpid()));
      const bool failed = VortoPrint("lost\n") == -1;
      fs::remove(LogPath(getpid()));
      std::ofstream(LogPath(getpid())) << "something old, which is longer than all of the messages together";
      const bool counted = VortoPrint("one\n") == 4;
      const bool flushed = FileText(LogPath(getpid())) == "one\n";
      VortoPrintIndent(2, "two\n");
      return failed && counted && flushed ? 0 : 1;
    });
    EXPECT_TRUE(child.exitedWith(0)) << "\"" << value << "\"";
    EXPECT_EQ(child.log, "one\n    two\n");
    EXPECT_EQ(child.output, "");
  }
}

TEST(TCPrintTest, FollowsNoLinkToTheLogFile) {
  const Child child("1", [] {
    const std::string log = LogPath(getpid()), precious = log + ".precious";
    std::ofstream(precious) << "precious";
    bool refused = true;
    for (const auto link : {&symlink, &::link}) {
      refused = refused && link(precious.c_str(), log.c_str()) == 0 && VortoPrint("lost\n") == -1;
      unlink(log.c_str());
    }
    refused = refused && mkfifo(log.c_str(), 0600) == 0 && VortoPrint("lost\n") == -1;
    unlink(log.c_str());
    const bool kept = FileText(precious) == "precious";
    unlink(precious.c_str());
    return refused && kept && VortoPrint("one\n") == 4 ? 0 : 1;
  });
  EXPECT_TRUE(child.exitedWith(0));
  EXPECT_EQ(child.log, "one\n");
}

TEST(TCPrintTest, UnreachableCodeReportsItselfAndAborts) {
  const std::string report = "File some/source, line 12 should not have been reached:\n\t";
  for (const char* value : {static_cast<const char*>(nullptr), "1"}) {
    const Child child(value, []() -> int { VortoUnreachable("some/source", 12, "the message is not printed"); });
    EXPECT_TRUE(child.killedBy(SIGABRT));
    EXPECT_EQ(child.output + child.log, report);
    EXPECT_EQ(child.logExists, value != nullptr);
  }
}

TEST(TCStackTest, Headers) {
  constexpr int kBeyond = 1 << 20;  // no frame is that far out
  const Child child(nullptr, [] {
    VortoPrintStack(kBeyond, 0, 0);
    VortoPrintStackStart("program");
    VortoPrintStackStop();
    VortoPrintStack(kBeyond, 0, 1);
    VortoPrintStackStart(nullptr);
    VortoPrintStack(kBeyond, 0, 0);
    return 0;
  });
  const std::string start = "Printing stack for process " + std::to_string(child.process);
  EXPECT_EQ(child.output,
            start + " (UNKNOWN):\n" + start + " (program):\n\tFrame\t\tPC\t\t\tCaller +offset\n" + start + ":\n");
}

// The last name is longer than the printer's buffer: a function of three arguments of one type.
TEST(TCStackTest, PrintsFramesByTheRule) {
  const std::string part(600, 'n');
  const std::string longSymbol = "__Z1f600" + part + "S_S_", longName = "f(" + part + ", " + part + ", " + part + ")";
  const struct {
    std::uintptr_t counter, address, offset;
    const char* symbol;
    std::string frame, name, behind;  // as printed
  } rows[] = {
      {0x1234, 0xABCDEF, 0, nullptr, "00ABCDEF", "00001234\t<UNKNOWN>", ""},
      {0x7FFF12345678, 0x7FFE00000010, 31, "-[P a:]", "7FFE00000010", "7FFF12345678\t-[P a:]", " +0x1F"},
      {0x10, 0x20, 1, "+[Port port]", "00000020", "00000010\t+[Port port]", " +0x1"},
      {0x10, 0x20, 0xAB, "__ZN5Vorto4drawEi", "00000020", "00000010\tVorto::draw(int)", " +0xAB"},
      {0x10, 0x20, 2, "_main", "00000020", "00000010\t_main", " +0x2"},
      {0x10, 0x20, 3, "_", "00000020", "00000010\t_", " +0x3"},
      {0x10, 0x20, 4, "", "00000020", "00000010\t", " +0x4"},
      {0x10, 0x20, 5, longSymbol.c_str(), "00000020", "00000010\t" + longName, " +0x5"},
  };
  for (const auto& [first, detailed] : {std::pair{0, 0}, {0, 1}, {5, 0}, {8, 0}, {-3, 0}}) {
    const Child child(nullptr, [&, first = first, detailed = detailed] {
      std::vector<CrawlFrame> frames(std::size(rows));
      for (std::size_t i = 0; i < frames.size(); ++i) {
        frames[i].programCounter = rows[i].counter;
        frames[i].frameAddress = rows[i].address;
        frames[i].symbolName.reset(rows[i].symbol ? strdup(rows[i].symbol) : nullptr);
        frames[i].offset = rows[i].offset;
      }
      VortoPrintFrames(frames, "test", first, detailed);
      const auto isFreed = [](const CrawlFrame& frame) { return !frame.symbolName; };
      return std::all_of(frames.begin() + std::max(first, 0), frames.end(), isFreed) ? 0 : 1;
    });
    std::string expected = detailed ? "\tFrame\t\tPC\t\t\tCaller +offset\n" : "";
    for (std::size_t i = first < 0 ? 0 : static_cast<std::size_t>(first); i < std::size(rows); ++i) {
      const std::string name = "\t0x" + rows[i].name;
      expected += detailed ? "\t0x" + rows[i].frame + name + rows[i].behind + "\n" : name + "\n";
    }
    EXPECT_TRUE(child.exitedWith(0));
    EXPECT_EQ(child.output.substr(child.output.find('\n') + 1), expected);
  }
}

TEST(TCStackTest, CollectsTheRealFrames) {
  const std::vector<CrawlFrame> frames = stacktest::Outer();
  ASSERT_TRUE(frames.size() >= 4 && frames[0].symbolName && frames[1].symbolName);
  EXPECT_STREQ(frames[0].symbolName.get(), "__ZN9stacktest5InnerEv");
  EXPECT_STREQ(frames[1].symbolName.get(), "__ZN9stacktest5OuterEv");
  EXPECT_EQ(frames[1].programCounter - frames[1].offset, reinterpret_cast<std::uintptr_t>(&stacktest::Outer));
  EXPECT_GT(frames[1].offset, 0u);
  EXPECT_LT(frames[0].frameAddress, frames[1].frameAddress) << "the stack grows downwards";
  EXPECT_EQ(stacktest::Recurse(5000), kVortoMaximumFrames);
}

TEST(TCStackTest, PrintsTheCallersStack) {
  const Child child(nullptr, [] {
    stacktest::PrintFrom(0, 1);
    std::printf("---\n");
    stacktest::PrintFrom(1, 0);
    return 0;
  });
  const std::size_t middle = child.output.find("---\n"), column = child.output.find("offset\n");
  const std::string all = child.output.substr(0, middle);
  ASSERT_LT(column, middle) << all;
  unsigned long address = 0, counter = 0, offset = 0;
  const int fields = std::sscanf(all.c_str() + column, "offset\n\t0x%lX\t0x%lX\tstacktest::PrintFrom(int, int) +0x%lX",
                                 &address, &counter, &offset);
  EXPECT_EQ(fields, 3) << all;
  EXPECT_EQ(counter - offset, reinterpret_cast<std::uintptr_t>(&stacktest::PrintFrom));
  EXPECT_NE(all.find("\t_main +0x"), std::string::npos) << all;
  EXPECT_EQ(child.output.find("PrintFrom", middle), std::string::npos) << child.output;
}

}  // namespace
