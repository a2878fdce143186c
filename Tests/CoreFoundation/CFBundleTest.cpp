// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundle.h"

#include "Platform/CoreFoundation/CFBundleSearch.h"
#include "Platform/Foundation/PropertyList.h"
#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

namespace {

namespace fs = std::filesystem;

constexpr const char* kSwedishRed =
    "R\xC3\xB6"
    "d";

void Write(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::string Info(const std::string& entries) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + entries + "</dict></plist>";
}

std::string Entry(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key><string>" + value + "</string>";
}

// A bundle with the tables of four languages.
std::string MakeBundle(const fs::path& path, const std::string& identifier) {
  Write(path / "Contents/Info.plist",
        Info(Entry("CFBundleIdentifier", identifier) + Entry("CFBundleExecutable", "code") +
             Entry("CFBundleDevelopmentRegion", "sv")));
  const fs::path resources = path / "Contents/Resources";
  Write(resources / "en.lproj/Localizable.strings", "\"red\" = \"Red\";\n\"only\" = \"English only\";\n");
  Write(resources / "sv.lproj/Localizable.strings", std::string("\"red\" = \"") + kSwedishRed + "\";\n");
  Write(resources / "pt-BR.lproj/Localizable.strings", "\"red\" = \"Vermelho (BR)\";\n");
  Write(resources / "pt.lproj/Localizable.strings", "\"red\" = \"Vermelho\";\n\"hue\" = \"Matiz\";\n");
  Write(resources / "de.lproj/Localizable.strings", "\"red\" = \"Rot\"\n");
  Write(resources / "de.lproj/Other.strings", "\"red\" = \"Andersrot\";\n");
  Write(resources / "plain.txt", "plain");
  Write(resources / "en.lproj/local.txt", "local");
  return path.string();
}

void SetLanguage(const char* locale) {
  for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"}) unsetenv(name);
  setenv("LANG", locale, 1);
}

std::string Localized(CFBundleRef bundle, const char* key, CFStringRef value = nullptr, CFStringRef table = nullptr) {
  const CFOwned<CFStringRef> text(CFBundleCopyLocalizedString(bundle, CFSTR(key), value, table));
  return CFStringCopyUTF8(text.get());
}

TEST(CFBundleTest, IsFoundByIdentifierWhileItIsOpen) {
  const TemporaryFolder folder;
  CFRelease(CFBundleCreate(nullptr, MakeBundle(folder.path() + "/Gone.bundle", "test.gone")));
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.gone")), nullptr) << "forgotten with its last release";
  const std::string path = MakeBundle(folder.path() + "/A.plugin", "test.a");
  std::string reason;
  CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, path, &reason));
  ASSERT_NE(bundle, nullptr) << reason;
  const CFOwned<CFBundleRef> again(CFBundleCreate(nullptr, folder.path() + "/./A.plugin/"));
  EXPECT_EQ(again, bundle);
  EXPECT_EQ(CFBundleGetPath(bundle.get()), path);
  EXPECT_EQ(TextOf(CFBundleGetIdentifier(bundle.get())), u"test.a");
  EXPECT_EQ(CFBundleGetInfoDictionary(bundle.get()).find("CFBundleExecutable")->stringValue(), "code");
  EXPECT_EQ(CFBundleCopyExecutablePath(bundle.get()), path + "/Contents/Linux/code");
  bundle.reset();
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.a")), again.get());
  CFRelease(CFRetain(again.get()));
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.b")), nullptr);
}

TEST(CFBundleTest, RefusesWhatIsNoBundle) {
  const TemporaryFolder folder;
  const fs::path root = folder.path();
  Write(root / "File.bundle", "no folder");
  fs::create_directories(root / "Empty.bundle");
  MakeBundle(root / "Extension.app", "test.extension");
  Write(root / "Broken.bundle/Contents/Info.plist", "<plist><dict>");
  Write(root / "Nameless.bundle/Contents/Info.plist", Info(Entry("CFBundleExecutable", "code")));
  Write(root / "Number.bundle/Contents/Info.plist", Info("<key>CFBundleIdentifier</key><integer>7</integer>"));
  Write(root / "List.bundle/Contents/Info.plist", R"(<plist version="1.0"><array/></plist>)");
  const std::pair<const char*, const char*> rows[] = {
      {"None.bundle", "No such file"},         {"File.bundle", "folder"},
      {"Empty.bundle", "Info.plist"},          {"Extension.app", "NAME.bundle"},
      {"Broken.bundle", "Info.plist"},         {"Nameless.bundle", "CFBundleIdentifier"},
      {"Number.bundle", "CFBundleIdentifier"}, {"List.bundle", "CFBundleIdentifier"},
  };
  for (const auto& [name, cause] : rows) {
    std::string reason;
    EXPECT_EQ(CFBundleCreate(nullptr, (root / name).string(), &reason), nullptr) << name;
    EXPECT_NE(reason.find(cause), std::string::npos) << name << ": " << reason;
  }
}

TEST(CFBundleTest, ExecutableIsAPlainFileName) {
  const TemporaryFolder folder;
  int number = 0;
  for (const std::string name : {"../evil", "/bin/sh", "a/b", "..", ".", "a..b", ""}) {
    const fs::path path = folder.path() + "/" + std::to_string(number++) + ".plugin";
    Write(path / "Contents/Info.plist",
          Info(Entry("CFBundleIdentifier", "test.executable") + Entry("CFBundleExecutable", name)));
    const CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, path.string()));
    ASSERT_NE(bundle, nullptr);
    std::string reason;
    EXPECT_EQ(CFBundleCopyExecutablePath(bundle.get(), &reason), "") << name;
    EXPECT_NE(reason.find("CFBundleExecutable"), std::string::npos) << reason;
  }
}

TEST(CFBundleTest, LocalizesInTheUsersLanguage) {
  const TemporaryFolder folder;
  const CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, MakeBundle(folder.path() + "/L.bundle", "test.l")));
  ASSERT_NE(bundle, nullptr);
  const struct {
    const char *locale, *key, *expected;
  } rows[] = {
      {"pt_BR.UTF-8", "red", "Vermelho (BR)"},
      {"pt_PT.UTF-8", "red", "Vermelho"},
      {"pt_BR", "hue", "Matiz"},
      {"en_GB", "red", "Red"},
      {"C", "red", kSwedishRed},  // the development region
      {"fr_FR", "red", kSwedishRed},
      {"pt_PT", "only", "English only"},
      {"en_GB", "missing", "missing"},
      {"../../x", "red", kSwedishRed},
  };
  for (const auto& row : rows) {
    SetLanguage(row.locale);
    EXPECT_EQ(Localized(bundle.get(), row.key), row.expected) << row.locale;
  }
  EXPECT_EQ(Localized(bundle.get(), "missing", CFSTR("value")), "value");
  EXPECT_EQ(Localized(bundle.get(), "missing", CFSTR("")), "");
  EXPECT_EQ(Localized(nullptr, "red"), "red");
}

TEST(CFBundleTest, ReportsAMalformedTableOnceAndGoesOn) {
  const TemporaryFolder folder;
  const CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, MakeBundle(folder.path() + "/M.bundle", "test.m")));
  SetLanguage("de_DE");
  Capture errors(STDERR_FILENO);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Localized(bundle.get(), "red"), kSwedishRed);
  const std::string report = errors.text();
  EXPECT_NE(report.find("de.lproj/Localizable.strings: line 2: ';' is missing"), std::string::npos) << report;
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 1) << report;
  EXPECT_EQ(Localized(bundle.get(), "red", nullptr, CFSTR("Other")), "Andersrot");
  EXPECT_EQ(Localized(bundle.get(), "red", nullptr, CFSTR("../de.lproj/Other")), "red");
}

TEST(CFBundleTest, FindsResources) {
  const TemporaryFolder folder;
  const std::string path = MakeBundle(folder.path() + "/R.bundle", "test.r");
  const CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, path));
  EXPECT_EQ(CFBundleCopyResourcePath(bundle.get(), "plain", "txt"), path + "/Contents/Resources/plain.txt");
  EXPECT_EQ(CFBundleCopyResourcePath(bundle.get(), "plain.txt", ""), path + "/Contents/Resources/plain.txt");
  EXPECT_EQ(CFBundleCopyResourcePath(bundle.get(), "local", "txt"), path + "/Contents/Resources/en.lproj/local.txt");
  for (const char* name : {"none", "", "../Info", "en.lproj/local"}) {
    EXPECT_EQ(CFBundleCopyResourcePath(bundle.get(), name, "txt"), "") << name;
  }
  EXPECT_EQ(CFBundleCopyResourcePath(bundle.get(), "../Info", "plist"), "");
}

TEST(CFBundleTest, SearchesAddedFolders) {
  const TemporaryFolder folder;
  const std::string path = MakeBundle(folder.path() + "/S.bundle", "test.s");
  MakeBundle(folder.path() + "/P.plugin", "test.p");
  fs::create_directories(folder.path() + "/Broken.bundle");
  CFBundleAddSearchFolder(folder.path() + "/nowhere");
  CFBundleAddSearchFolder(folder.path());
  Capture errors(STDERR_FILENO);
  EXPECT_EQ(CFBundleGetPath(CFBundleGetBundleWithIdentifier(CFSTR("test.s"))), path);
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.p")), nullptr) << "plug-ins are not searched for";
  const std::string report = errors.text();
  EXPECT_TRUE(report.starts_with(folder.path() + "/Broken.bundle: ")) << report;
}

TEST(CFBundleTest, FoldersBesideALibrary) {
  using Folders = std::vector<std::string>;
  EXPECT_EQ(CFBundleFoldersBeside("/opt/v/lib"), (Folders{"/opt/v/lib", "/opt/v/share/vorto", "/opt/share/vorto"}));
  EXPECT_EQ(CFBundleFoldersBeside("/usr/lib/x86_64"),
            (Folders{"/usr/lib/x86_64", "/usr/lib/lib", "/usr/lib/share/vorto", "/usr/share/vorto"}));
  EXPECT_EQ(CFBundleFoldersBeside("/t/bin"), (Folders{"/t/bin", "/t/lib", "/t/share/vorto", "/share/vorto"}));
  EXPECT_EQ(CFBundleFoldersBeside(""), Folders{});
}

// What FindsTheFrameworksOwnBundles runs in a copy of this program that lies in an installed tree.
TEST(CFBundleTest, DISABLED_PrintOwnBundles) {
  for (const char* identifier : {"test.shared", "test.beside"}) {
    std::printf("found %s\n", CFBundleGetPath(CFBundleGetBundleWithIdentifier(CFSTR(identifier))).c_str());
  }
}

TEST(CFBundleTest, FindsTheFrameworksOwnBundles) {
  const TemporaryFolder folder;
  const std::string program = folder.path() + "/bin/program";
  fs::create_directories(folder.path() + "/bin");
  fs::copy_file("/proc/self/exe", program);
  const std::string shared = MakeBundle(folder.path() + "/share/vorto/Shared.bundle", "test.shared");
  const std::string beside = MakeBundle(folder.path() + "/bin/Beside.bundle", "test.beside");
  const ChildResult child = RunInChild([&] {
    // Under a name that leads nowhere: where the program lies is not told by its arguments.
    execl(program.c_str(), "vorto", "--gtest_also_run_disabled_tests", "--gtest_filter=*DISABLED_PrintOwnBundles",
          nullptr);
    return 127;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.output << child.errors;
  EXPECT_NE(child.output.find("found " + shared + "\n"), std::string::npos) << child.output;
  EXPECT_NE(child.output.find("found " + beside + "\n"), std::string::npos) << child.output;
}

}  // namespace
