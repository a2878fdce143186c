// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/PropertyList.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>
#include <atomic>
#include <clocale>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <thread>

namespace {

namespace fs = std::filesystem;

mode_t modeOf(const std::string& file) {
  struct stat status {};
  ::stat(file.c_str(), &status);
  return status.st_mode & 07777;
}

class Files : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (fs::temp_directory_path() / "foundation-XXXXXX").string();
    ASSERT_NE(::mkdtemp(name.data()), nullptr);
    folder = name;
  }
  void TearDown() override {
    fs::permissions(folder, fs::perms::owner_all);
    fs::remove_all(folder);
  }
  std::string path(const char* name) const { return folder / name; }
  std::string contents(const char* name) const {
    const auto bytes = NSReadFile(path(name), nullptr);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(unreadable)";
  }
  bool write(const char* name, std::string_view text, std::string* reason = nullptr) const {
    return NSWriteFile(path(name), {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, reason);
  }
  std::size_t count() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
  }
  fs::path folder;
};

TEST_F(Files, ReplacesWholeAndKeepsPermissions) {
  const std::string longest(255, 'n');  // of names
  const mode_t former = ::umask(027);
  EXPECT_TRUE(write(longest.c_str(), "one"));
  ::umask(former);
  EXPECT_EQ(modeOf(folder / longest), mode_t{0640});
  EXPECT_EQ(::chmod((folder / longest).c_str(), 0604), 0);
  EXPECT_TRUE(write(longest.c_str(), "two, longer"));
  EXPECT_TRUE(write(longest.c_str(), "3"));
  EXPECT_EQ(contents(longest.c_str()), "3");
  EXPECT_EQ(modeOf(folder / longest), mode_t{0604});
  EXPECT_EQ(count(), 1u);
}

// Somebody else in the process makes files meanwhile.
TEST_F(Files, TheMaskOfPermissionsStays) {
  const mode_t former = ::umask(027);
  std::atomic<bool> done{false};
  std::set<std::string> masks;
  std::thread watcher([&] {
    while (!done) {
      std::ifstream status("/proc/self/status");
      for (std::string line; std::getline(status, line);) {
        if (line.starts_with("Umask:")) masks.insert(line);
      }
    }
  });
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(write(std::to_string(i).c_str(), "text"));
  done = true;
  watcher.join();
  ::umask(former);
  EXPECT_EQ(masks, std::set<std::string>{"Umask:\t0027"});
}

// Where files without a name are not known, the handler of a signal removes the named one.
TEST_F(Files, AnInterruptedWriteLeavesTheOldFile) {
  ASSERT_TRUE(write("kept", "old"));
  const ChildResult child = RunInChild([&] {
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 4),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[2])),
        BPF_STMT(BPF_ALU | BPF_AND | BPF_K, O_TMPFILE),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, O_TMPFILE, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(steps), steps};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
      return 2;
    }
    if (!write("small", "written")) return 3;
    std::signal(SIGALRM, [](int) {
      NSRemoveUnfinishedFiles();
      ::_exit(0);
    });
    const itimerval soon{{0, 0}, {0, 20000}};
    ::setitimer(ITIMER_REAL, &soon, nullptr);
    const std::string large(std::size_t{1} << 26, 'x');
    while (write("kept", large)) std::ofstream(path("kept")) << "old";
    return 1;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.status;
  EXPECT_EQ(contents("small"), "written");
  EXPECT_EQ(count(), 2u);
}

// Beside what a write into the file itself leaves of its permissions; also as somebody without privileges.
TEST_F(Files, SetIdBitsGoAsWithAnyWrite) {
  fs::permissions(folder, fs::perms::all);
  const bool superuser = ::geteuid() == 0;
  for (const uid_t user : {::geteuid(), superuser ? uid_t{65534} : ::geteuid()}) {
    ASSERT_TRUE(!superuser || ::seteuid(user) == 0);
    for (const mode_t bits : {04755, 02755, 02745, 01644, 07777, 0600}) {
      for (const char* text : {"text", ""}) {
        for (const char* name : {"replaced", "written"}) {
          std::ofstream(path(name)) << "old";
          EXPECT_EQ(::chmod(path(name).c_str(), bits), 0);
        }
        EXPECT_TRUE(write("replaced", text));
        std::ofstream(path("written")) << text;
        EXPECT_EQ(modeOf(path("replaced")), modeOf(path("written"))) << std::oct << bits << " as " << user;
        EXPECT_TRUE(fs::remove(path("replaced")) && fs::remove(path("written")));
      }
    }
    ASSERT_TRUE(!superuser || ::seteuid(0) == 0);
  }
}

TEST_F(Files, FollowsSymbolicLinks) {
  fs::create_directory(folder / "below");
  fs::create_symlink("target", folder / "below/second");
  fs::create_symlink("below/second", folder / "link");
  fs::create_symlink(folder / "link", folder / "absolute");
  fs::create_symlink("loop", folder / "loop");
  std::string reason;
  EXPECT_EQ(NSResolvedPath(path("absolute"), &reason), path("below/target"));  // which is not there
  EXPECT_TRUE(write("absolute", "through"));
  EXPECT_TRUE(fs::is_symlink(folder / "absolute") && fs::is_symlink(folder / "below/second"));
  EXPECT_EQ(contents("below/target"), "through");
  EXPECT_EQ(NSResolvedPath("plain", &reason), "plain");
  EXPECT_EQ(reason, "");
  EXPECT_EQ(NSResolvedPath(path("loop"), &reason), "");
  EXPECT_NE(reason, "");
  EXPECT_FALSE(write("loop", "x", &reason));
}

TEST_F(Files, RefusesWhatIsNoFile) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  fs::create_directory(folder / "folder");
  for (const std::string& each :
       {path("pipe"), path("folder"), path("missing"), std::string("/dev/zero"), std::string()}) {
    std::string reason;
    EXPECT_FALSE(NSReadFile(each, &reason)) << each;
    EXPECT_NE(reason, "") << each;
  }
  for (const std::string& each :
       {path("pipe"), path("folder"), path("missing/file"), std::string("/dev/full"), std::string()}) {
    std::string reason;
    EXPECT_FALSE(NSWriteFile(each, {}, &reason)) << each;
    EXPECT_NE(reason, "") << each;
  }
}

TEST_F(Files, ReadsNeitherTooMuchNorTooLittle) {
  std::ofstream(path("huge")) << "x";
  fs::resize_file(folder / "huge", PropertyListMaximumBytes + 1);  // a hole: no space is taken
  std::string reason;
  EXPECT_FALSE(NSReadFile(path("huge"), &reason));
  EXPECT_NE(reason.find("larger"), std::string::npos) << reason;
  const auto bytes = NSReadFile("/proc/self/status", nullptr);  // files of the kernel say that they are empty
  ASSERT_TRUE(bytes);
  EXPECT_GT(bytes->size(), 100u);
}

TEST_F(Files, AFailedWriteLeavesTheOldFile) {
  ASSERT_TRUE(write("kept", "old"));
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit former{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
  const rlimit small{1000, former.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);  // as a full disk: the first part is written, the rest is not
  std::string reason;
  EXPECT_FALSE(write("kept", std::string(100000, 'x'), &reason));
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
  EXPECT_NE(reason, "");
  EXPECT_EQ(contents("kept"), "old");
  EXPECT_EQ(count(), 1u);
}

TEST_F(Files, AReadOnlyFolderRefuses) {
  ASSERT_TRUE(write("kept", "old"));
  fs::permissions(folder, fs::perms::owner_read | fs::perms::owner_exec);
  std::string reason;
  const bool written = write("kept", "new", &reason);
  if (::geteuid() == 0) {
    EXPECT_TRUE(written);  // permissions do not hold the superuser
    return;
  }
  EXPECT_FALSE(written);
  EXPECT_NE(reason, "");
  EXPECT_EQ(contents("kept"), "old");
}

TEST_F(Files, ListsAreReadFromFiles) {
  ASSERT_TRUE(write("list.plist", "<plist><true/></plist>"));
  ASSERT_TRUE(write("empty.plist", ""));
  PropertyListFormat format{};
  const auto list = PropertyListFromFile(path("list.plist"), nullptr, &format);
  ASSERT_TRUE(list);
  EXPECT_TRUE(*list == PropertyList::boolean(true));
  EXPECT_EQ(format, PropertyListFormat::Xml);
  std::string reason;
  EXPECT_FALSE(PropertyListFromFile(path("empty.plist"), &reason));
  EXPECT_EQ(reason, "is empty");
}

// Reals are written with a point and read as such where people write a comma.
TEST_F(Files, RealsDoNotDependOnTheLocale) {
  const std::string make = "localedef -i de_DE -f UTF-8 " + path("de_DE.UTF-8") + " >/dev/null 2>&1";
  const bool made = std::system(make.c_str()) == 0 || fs::exists(folder / "de_DE.UTF-8");
  if (!made || ::setenv("LOCPATH", folder.c_str(), 1) != 0 || std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) {
    GTEST_SKIP() << "no locale with a decimal comma";
  }
  const PropertyList real = PropertyList::real(-1234.0625);
  const auto bytes = PropertyListToBytes(real, PropertyListFormat::Xml, nullptr);
  EXPECT_TRUE(PropertyListFromBytes(bytes.value(), nullptr) == real);
  EXPECT_NE(std::string(bytes->begin(), bytes->end()).find("-1234.0625"), std::string::npos);
  std::setlocale(LC_ALL, "C");
}

}  // namespace
