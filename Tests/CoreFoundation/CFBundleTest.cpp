// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundle.h"

#include "Platform/CoreFoundation/CFBundleSearch.h"
#include "Platform/Foundation/PropertyList.h"
#include "Tests/CoreFoundation/CFTestText.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Tables.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kSwedishRed = "R\xC3\xB6tt";

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

// A bundle with the tables of five languages; that of one is malformed.
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

// Each case has a fresh folder, and the bundle "L.bundle" in it.
class CFBundleTest : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const fs::path root_ = folder_.path();
  const std::string path_ = MakeBundle(root_ / "L.bundle", "test.l");
  const CFOwned<CFBundleRef> bundle_{CFBundleCreate(nullptr, path_)};
};

TEST_F(CFBundleTest, IsFoundByIdentifierWhileItIsOpen) {
  CFRelease(CFBundleCreate(nullptr, MakeBundle(root_ / "Gone.bundle", "test.gone")));
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.gone")), nullptr) << "forgotten with its last release";
  std::string reason;
  CFOwned<CFBundleRef> again(CFBundleCreate(nullptr, folder_.path() + "/./L.bundle/", &reason));
  EXPECT_EQ(again, bundle_) << reason;
  again.reset();
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.l")), bundle_.get());
  CFRelease(CFRetain(bundle_.get()));
  EXPECT_EQ(CFBundleGetPath(bundle_.get()), path_);
  EXPECT_EQ(TextOf(CFBundleGetIdentifier(bundle_.get())), u"test.l");
  EXPECT_EQ(CFBundleGetInfoDictionary(bundle_.get()).find("CFBundleExecutable")->stringValue(), "code");
  EXPECT_EQ(CFBundleCopyExecutablePath(bundle_.get()), path_ + "/Contents/Linux/code");
}

TEST_F(CFBundleTest, RefusesWhatIsNoBundle) {
  Write(root_ / "File.bundle", "no folder");
  fs::create_directories(root_ / "Empty.bundle");
  MakeBundle(root_ / "Extension.app", "test.extension");
  const struct {
    std::string name, info, cause;
  } rows[] = {
      {"None.bundle", "", "No such file"},
      {"File.bundle", "", "folder"},
      {"Empty.bundle", "", "Info.plist"},
      {"Extension.app", "", "NAME.bundle"},
      {"Broken.bundle", "<plist><dict>", "Info.plist"},
      {"Nameless.bundle", Info(Entry("CFBundleExecutable", "code")), "CFBundleIdentifier"},
      {"Number.bundle", Info("<key>CFBundleIdentifier</key><integer>7</integer>"), "CFBundleIdentifier"},
      {"List.bundle", R"(<plist version="1.0"><array/></plist>)", "CFBundleIdentifier"},
  };
  for (const auto& [name, info, cause] : rows) {
    if (!info.empty()) Write(root_ / name / "Contents/Info.plist", info);
    std::string reason;
    EXPECT_EQ(CFBundleCreate(nullptr, (root_ / name).string(), &reason), nullptr) << name;
    EXPECT_NE(reason.find(cause), std::string::npos) << name << ": " << reason;
  }
}

TEST_F(CFBundleTest, ExecutableIsAPlainFileName) {
  int number = 0;
  for (const std::string name : {"../evil", "/bin/sh", "a/b", "..", ".", "a..b", ""}) {
    const fs::path path = root_ / (std::to_string(number++) + ".plugin");
    Write(path / "Contents/Info.plist",
          Info(Entry("CFBundleIdentifier", "test.x") + Entry("CFBundleExecutable", name)));
    const CFOwned<CFBundleRef> bundle(CFBundleCreate(nullptr, path.string()));
    ASSERT_NE(bundle, nullptr);
    std::string reason;
    EXPECT_EQ(CFBundleCopyExecutablePath(bundle.get(), &reason), "") << name;
    EXPECT_NE(reason.find("CFBundleExecutable"), std::string::npos) << reason;
  }
}

TEST_F(CFBundleTest, LocalizesInTheUsersLanguage) {
  for (const Row& row : rowsOf("Languages.txt")) {
    SetLanguage(row[0].c_str());
    EXPECT_EQ(Localized(bundle_.get(), row[1].c_str()), row[2]) << row[0];
  }
  EXPECT_EQ(Localized(bundle_.get(), "missing", CFSTR("value")), "value");
  EXPECT_EQ(Localized(bundle_.get(), "missing", CFSTR("")), "");
  EXPECT_EQ(Localized(nullptr, "red"), "red");
}

TEST_F(CFBundleTest, ReportsAMalformedTableOnceAndGoesOn) {
  SetLanguage("de_DE");
  Capture errors(STDERR_FILENO);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(Localized(bundle_.get(), "red"), kSwedishRed);
  const std::string report = errors.text();
  EXPECT_NE(report.find("de.lproj/Localizable.strings: line 2: ';' is missing"), std::string::npos) << report;
  EXPECT_EQ(std::count(report.begin(), report.end(), '\n'), 1) << report;
  EXPECT_EQ(Localized(bundle_.get(), "red", nullptr, CFSTR("Other")), "Andersrot");
  EXPECT_EQ(Localized(bundle_.get(), "red", nullptr, CFSTR("../de.lproj/Other")), "red");
}

TEST_F(CFBundleTest, FindsResources) {
  SetLanguage("C");
  const std::string resources = path_ + "/Contents/Resources/";
  EXPECT_EQ(CFBundleCopyResourcePath(bundle_.get(), "plain", "txt"), resources + "plain.txt");
  EXPECT_EQ(CFBundleCopyResourcePath(bundle_.get(), "plain.txt", ""), resources + "plain.txt");
  EXPECT_EQ(CFBundleCopyResourcePath(bundle_.get(), "local", "txt"), resources + "en.lproj/local.txt");
  for (const char* name : {"none", "", "en.lproj/local"}) {
    EXPECT_EQ(CFBundleCopyResourcePath(bundle_.get(), name, "txt"), "") << name;
  }
  EXPECT_EQ(CFBundleCopyResourcePath(bundle_.get(), "../Info", "plist"), "");
}

TEST_F(CFBundleTest, SearchesAddedFolders) {
  const std::string path = MakeBundle(root_ / "S.bundle", "test.s");
  MakeBundle(root_ / "P.plugin", "test.p");
  fs::create_directories(root_ / "Broken.bundle");
  CFBundleAddSearchFolder(root_ / "nowhere");
  CFBundleAddSearchFolder(root_);
  Capture errors(STDERR_FILENO);
  EXPECT_EQ(CFBundleGetPath(CFBundleGetBundleWithIdentifier(CFSTR("test.s"))), path);
  EXPECT_EQ(CFBundleGetBundleWithIdentifier(CFSTR("test.p")), nullptr) << "plug-ins are not searched for";
  const std::string report = errors.text();
  EXPECT_TRUE(report.starts_with(folder_.path() + "/Broken.bundle: ")) << report;
}

TEST_F(CFBundleTest, FoldersBesideALibrary) {
  using Folders = std::vector<std::string>;
  EXPECT_EQ(CFBundleFoldersBeside("/usr/lib/x86_64"),
            (Folders{"/usr/lib/x86_64", "/usr/lib/lib", "/usr/lib/share/vorto", "/usr/share/vorto"}));
  EXPECT_EQ(CFBundleFoldersBeside("/t/lib"), (Folders{"/t/lib", "/t/share/vorto", "/share/vorto"}));
  EXPECT_EQ(CFBundleFoldersBeside(""), Folders{});
}

}  // namespace
