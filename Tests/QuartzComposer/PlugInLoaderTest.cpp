// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Tests/QuartzComposer/TestPatches.h"

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using Make = std::function<void(const TestFolder&)>;

Make bundleOf(const char* plugIn) {
  return [plugIn](const TestFolder& folder) { folder.writeBundle("M.plugin", plugIn); };
}

Make bundleWithInfo(const std::string& info) {
  return [info](const TestFolder& folder) {
    folder.writeBundle("M.plugin", "Good");
    folder.write("M.plugin/Contents/Info.plist", info);
  };
}

Make bundleWithBinary(std::function<std::string(std::string)> edit) {
  return [edit](const TestFolder& folder) {
    folder.write("M.plugin/Contents/Info.plist", infoPlist("Program"));
    folder.write("M.plugin/Contents/Linux/Program", edit(contentsOf(testPlugIn("Good"))));
  };
}

Make file(const char* name) {
  return [name](const TestFolder& folder) { folder.write(name, ""); };
}

// A bundle "M.plugin" that lies between two whole ones, and what is wrong with it.
struct BrokenBundle {
  const char* name;
  Make make;
  const char* reason;  // a part of it
};

const BrokenBundle brokenBundles[] = {
    {"NoInfo", file("M.plugin/Contents/Linux/Program"), "no Contents/Info.plist"},
    {"NotAFolder", file("M.plugin"), "not a folder"},
    {"DanglingLink", [](auto& folder) { fs::create_symlink("/nowhere", folder.path("M.plugin")); }, "leads nowhere"},
    {"InfoIsAFolder", file("M.plugin/Contents/Info.plist/file"), "Info.plist cannot be read"},
    {"InfoIsAPipe",
     [](auto& folder) {
       folder.write("M.plugin/Contents/file", "");
       ASSERT_EQ(mkfifo(folder.path("M.plugin/Contents/Info.plist").c_str(), 0600), 0);
     },
     "Info.plist cannot be read"},
    {"MalformedInfo", bundleWithInfo("<plist><dict><key>CFBundleExecutable"), "Info.plist cannot be read: "},
    {"InfoIsAnArray", bundleWithInfo("<plist version=\"1.0\"><array/></plist>"), "no dictionary"},
    {"NoExecutableName", bundleWithInfo("<plist version=\"1.0\"><dict/></plist>"), "no CFBundleExecutable"},
    {"EmptyExecutableName", bundleWithInfo(infoPlist("")), "no CFBundleExecutable"},
    {"ExecutableElsewhere", bundleWithInfo(infoPlist("../Linux/Program")), "not the plain name"},
    {"ExecutableAbove", bundleWithInfo(infoPlist("..")), "not the plain name"},
    {"NoBinary", bundleWithInfo(infoPlist("Other")), "no binary Contents/Linux/Other"},
    {"EmptyBinary", bundleWithBinary([](const std::string&) { return std::string(); }), "not a shared object"},
    {"TextBinary", bundleWithBinary([](const std::string&) { return std::string(1000, 'x'); }), "not a shared object"},
    {"BinaryCutInHeader", bundleWithBinary([](const std::string& b) { return b.substr(0, 80); }), "ends within"},
    {"BinaryCutInHalf", bundleWithBinary([](const std::string& b) { return b.substr(0, 6000); }), "cut short"},
    {"OtherMachine", bundleWithBinary([](std::string b) { return b.replace(18, 2, "\x15\x16"); }),  // e_machine
     "another kind of machine"},
    {"OtherWordSize", bundleWithBinary([](std::string b) { return b.replace(4, 1, sizeof(void*) == 8 ? "\1" : "\2"); }),
     "another kind of machine"},
    {"NoEntry", bundleOf("NoEntry"), "does not export QCPlugInDescribe"},
    {"Unresolved", bundleOf("Unresolved"), "definedNowhere"},
    {"WrongVersion", bundleOf("WrongVersion"), "interface version 2, not 1"},
    {"NoDescription", bundleOf("NoDescription"), "no description"},
    {"NoFunction", bundleOf("NoFunction"), "no function"},
    {"Throwing", bundleOf("Throwing"), "no licence"},
    {"ThrowingDescription", bundleOf("ThrowingDescription"), "no words"},
};

}  // namespace

TEST(PlugInLoader, ABrokenBundleIsReportedAndTheOthersLoad) {
  for (const BrokenBundle& bundle : brokenBundles) {
    SCOPED_TRACE(bundle.name);
    const TestFolder folder;
    folder.writeBundle("A.plugin", "Good");
    bundle.make(folder);
    folder.writeBundle("Z.plugin", "Searching");
    const auto manager = newManager();
    Capture errors(STDERR_FILENO);
    manager->loadPlugInsInFolder(folder.path(), {"plugin", "qtz"});
    const std::string printed = errors.text();

    ASSERT_EQ(manager->nodeNames(), (Names{"Good A", "Good B", "Searching"}));
    const PropertyList* attributes = manager->nodeAttributesWithName("Searching");
    EXPECT_TRUE(attributes->find("managerIsFound")->boolValue()) << "by a plug-in while it is loaded";
    EXPECT_EQ(attributes->find("seen")->items().size(), 2u);
    const auto& failures = manager->loadFailures();
    // The bundle "Searching" loads the folder once more: what failed fails again, what registered is a duplicate.
    ASSERT_FALSE(failures.empty());
    EXPECT_EQ(failures[0].path, folder.path("M.plugin"));
    EXPECT_NE(failures[0].reason.find(bundle.reason), std::string::npos) << failures[0].reason;
    EXPECT_EQ(printed.find(failures[0].path + ": " + failures[0].reason + "\n"), 0u) << printed;
  }
}

TEST(PlugInLoader, LoadsAFolderOnceForEachManagerInOrderAndSkipsTheRest) {
  const TestFolder folder;
  folder.writeBundle("B.plugin", "Duplicate");
  const std::string good = folder.writeBundle("A.plugin", "Good");
  for (const char* other : {".hidden.plugin", "readme.txt", "C.plugin.old"}) folder.write(other, "");
  const auto first = newManager(), second = std::make_shared<GFNodeManager>();
  ASSERT_TRUE(second->initWithNamespace(first->nodeNamespace()));
  for (const auto& manager : {first, second}) {
    manager->loadPlugInsInFolder(folder.path("missing"), {"plugin"});
    manager->loadPlugInsInFolder(folder.path(), {"plugin", "txt"});
    EXPECT_EQ(manager->nodeNames(), (Names{"Good A", "Good B", "Duplicate B"}));
    EXPECT_EQ(manager->pathOfNodeWithName("Good A"), good) << "the first of a name stays";
    EXPECT_EQ(manager->nodeInstanceWithName("Good A")->attributes().find("description")->stringValue(),
              "from the good plug-in");
    ASSERT_EQ(manager->loadFailures().size(), 1u);
    EXPECT_EQ(manager->loadFailures()[0].path, folder.path("B.plugin"));
    EXPECT_EQ(manager->loadFailures()[0].reason, "the node \"Good A\" is there already, from " + good);
  }
  EXPECT_EQ(GFNodeManager::managerForNodeNamespace(first->nodeNamespace()), first);
}

TEST(PlugInLoader, ReportsAFolderThatCannotBeRead) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads every folder";
  const TestFolder folder;
  fs::permissions(folder.path(), fs::perms::none);
  const auto manager = newManager();
  manager->loadPlugInsInFolder(folder.path(), {"plugin", "qtz"});
  fs::permissions(folder.path(), fs::perms::owner_all);
  ASSERT_EQ(manager->loadFailures().size(), 1u);
  EXPECT_EQ(manager->loadFailures()[0].path, folder.path());
}
