// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPrint.h"

#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string LogPath(pid_t process) {
  return "/tmp/output." + std::to_string(process) + ".log";
}

std::string FileText(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

// Runs the work in a child that logs, and removes its log.
struct LoggedChild {
  explicit LoggedChild(const char* value, const std::function<int()>& work)
      : result(RunInChild([&] {
          setenv("tcPrintUseLogFile", value, 1);
          return work();
        })),
        log(FileText(LogPath(result.process))),
        logExists(fs::is_regular_file(LogPath(result.process))) {
    std::error_code error;
    fs::remove_all(LogPath(result.process), error);
  }
  ChildResult result;
  std::string log;
  bool logExists;
};

ChildResult RunPlain(const std::function<int()>& work) {
  return RunInChild([&] {
    unsetenv("tcPrintUseLogFile");
    return work();
  });
}

TEST(TCPrintTest, PrintsOnStandardOutput) {
  const ChildResult child = RunPlain([] {
    const bool counted = VortoPrint("%s %d\n", "seven", 7) == 8;
    setenv("tcPrintUseLogFile", "", 1);  // too late: the first message has settled it
    VortoPrintIndent(0, "none\n");
    VortoPrintIndent(3, "%s\n", "six");
    return counted ? 0 : 1;
  });
  EXPECT_TRUE(child.exitedWith(0));
  EXPECT_EQ(child.output, "seven 7\nnone\n      six\n");
  EXPECT_FALSE(fs::exists(LogPath(child.process)));
}

TEST(TCPrintTest, PrintsIntoTheLogFileWhateverTheValue) {
  for (const char* value : {"", "0", "yes"}) {
    const LoggedChild child(value, [] {
      std::ofstream(LogPath(getpid())) << "something old, which is longer than all of the messages together";
      const bool counted = VortoPrint("one\n") == 4;
      const bool flushed = FileText(LogPath(getpid())) == "one\n";
      VortoPrintIndent(2, "two\n");
      return counted && flushed ? 0 : 1;
    });
    EXPECT_TRUE(child.result.exitedWith(0)) << "\"" << value << "\"";
    EXPECT_EQ(child.log, "one\n    two\n");
    EXPECT_EQ(child.result.output, "");
  }
}

TEST(TCPrintTest, TriesAgainWhenTheLogFileCannotBeOpened) {
  const LoggedChild child("1", [] {
    fs::create_directory(LogPath(getpid()));
    const bool failed = VortoPrint("lost\n") == -1;
    fs::remove(LogPath(getpid()));
    VortoPrint("kept\n");
    return failed ? 0 : 1;
  });
  EXPECT_TRUE(child.result.exitedWith(0));
  EXPECT_EQ(child.log, "kept\n");
  EXPECT_EQ(child.result.output, "");
}

TEST(TCPrintTest, UnreachableCodeReportsItselfAndAborts) {
  constexpr const char* kReport = "File some/source, line 12 should not have been reached:\n\t";
  const auto unreachable = []() -> int { VortoUnreachable("some/source", 12, "the message is not printed"); };
  const ChildResult plain = RunPlain(unreachable);
  EXPECT_TRUE(plain.killedBy(SIGABRT));
  EXPECT_EQ(plain.output, kReport);
  const LoggedChild logged("1", unreachable);
  EXPECT_TRUE(logged.result.killedBy(SIGABRT));
  EXPECT_EQ(logged.log, kReport);
  EXPECT_EQ(logged.result.output, "");
}

TEST(TCPrintTest, StackHeaders) {
  constexpr int kBeyond = 1 << 20;  // no frame is that far out
  const ChildResult child = RunPlain([] {
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

}  // namespace
