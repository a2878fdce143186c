// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionBuilder.h"
#include "Tests/QuartzComposer/TestPatches.h"

namespace {

namespace fs = std::filesystem;

// Expects that the manager, which loaded something "Broken.qtz", has a good composition nevertheless, and told once of
// the broken one.
void expectRefusal(GFNodeManager& manager, const std::string& reason) {
  load(manager, composition("Good", {"Sum"}), "Good.qtz");
  EXPECT_EQ(manager.nodeNames(), (Names{"Sum", "Throw", "Good"}));
  ASSERT_EQ(manager.loadFailures().size(), 1u);
  EXPECT_NE(manager.loadFailures()[0].reason.find(reason), std::string::npos) << manager.loadFailures()[0].reason;
  EXPECT_EQ(fs::path(manager.loadFailures()[0].path).filename(), "Broken.qtz");
}

}  // namespace

// Each file of the folder says in a comment why it is refused.
TEST(BrokenCompositions, AreReportedOnceAndTheOthersLoad) {
  int count = 0;
  for (const auto& entry : fs::directory_iterator(TEST_DATA "/broken")) {
    SCOPED_TRACE(entry.path().filename());
    const std::string contents = contentsOf(entry.path());
    const std::string mark = "<!-- refused: ";
    ASSERT_NE(contents.find(mark), std::string::npos);
    const std::string cause = contents.substr(contents.find(mark) + mark.size());
    const TestFolder folder;
    folder.write("Broken.qtz", contents);
    const auto manager = managerWithTestPatches();
    Capture errors(STDERR_FILENO);
    manager->loadPlugInsInFolder(folder.path(), {"qtz"});
    expectRefusal(*manager, cause.substr(0, cause.find(" -->")));
    EXPECT_EQ(errors.text(), folder.path("Broken.qtz") + ": " + manager->loadFailures().at(0).reason + "\n");
    ++count;
  }
  EXPECT_GE(count, 39);
}

TEST(BrokenCompositions, AreRefusedWithoutAReasonTooAndBeforeTheyAreRead) {
  const auto manager = managerWithTestPatches(), other = newManager();
  EXPECT_EQ(QCCompositionFromFile("/nowhere.qtz", nullptr), nullptr);
  EXPECT_EQ(QCCompositionFromPropertyList(PropertyList::array(), "C.qtz", nullptr), nullptr);
  const auto unknown = QCCompositionFromPropertyList(composition("C", {"Sun"}), "C.qtz", nullptr);
  ASSERT_TRUE(unknown);
  EXPECT_EQ(QCPatchWithComposition(*unknown, *manager, nullptr), nullptr);
  load(*manager, composition("C", Names(1025, "Sum")), "Broken.qtz");
  expectRefusal(*manager, "1025 nodes, more than 1024");

  const TestFolder folder;
  folder.write("A.qtz", "no property list");
  folder.write("C.qtz/file", "");
  for (const char* name : {"B.qtz", "D.qtz"}) folder.write(name, "");
  fs::resize_file(folder.path("D.qtz"), std::uintmax_t{1} << 40);  // a hole
  other->loadPlugInsInFolder(folder.path(), {"qtz"});
  ASSERT_EQ(other->loadFailures().size(), 4u);
  EXPECT_EQ(other->loadFailures()[2].reason, "it is not a file");
  EXPECT_EQ(other->loadFailures()[3].reason, "it is larger than a composition can be");
}

TEST(BrokenCompositions, MutualRecursionIsToldFromThoseThatNameIt) {
  const auto manager = managerWithTestPatches();
  load(*manager, composition("A", {"B"}), "A.qtz");
  load(*manager, composition("B", {"Sum", "A"}), "B.qtz");
  load(*manager, composition("Outside", {"A"}), "Outside.qtz");
  Capture errors(STDERR_FILENO);
  Names reasons;
  for (const auto& failure : manager->loadFailures()) reasons.push_back(failure.reason);
  EXPECT_EQ(reasons, (Names{"the composition contains itself: \"A\" > \"B\" > \"A\"",
                            "the composition contains itself: \"B\" > \"A\" > \"B\"",
                            "node \"n0\": the composition \"A\" could not be loaded"}));
  load(*manager, composition("Name", {"No\xC2\x9BKm"}), "Out\x1B[2Jside.qtz");
  manager->loadFailures();
  const std::string printed = errors.text();
  EXPECT_NE(printed.find("Out\\u{1b}[2Jside.qtz: node \"n0\": there is no node \"No\\u{9b}Km\""), std::string::npos)
      << printed;
}

// A thousand files that wait for nothing, for a long name or for one another: each with its reason, and none of them
// compared with all others.
TEST(BrokenCompositions, ManyThatCannotBeCompletedAreExplained) {
  const auto manager = managerWithTestPatches();
  const TestFolder folder;
  constexpr int count = 1000;
  const auto write = [&](const std::string& file, const std::string& name, const std::string& node) {
    folder.write(file + ".qtz", bytesOf(composition(name, {node})));
  };
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(1000 + i), longName = std::string(250, 'x') + number;
    write("C" + number, "C" + number, "C" + std::to_string(1000 + (i + 1) % count));
    write("L" + number, longName, "Sum");
    write("M" + number, "M" + number, longName + "z");
  }
  Capture errors(STDERR_FILENO);
  manager->loadPlugInsInFolder(folder.path(), {"qtz"});
  EXPECT_EQ(manager->nodeNames().size(), 2u + count);
  const auto& failures = manager->loadFailures();
  ASSERT_EQ(failures.size(), 2u * count);
  EXPECT_TRUE(failures[0].reason.starts_with("the composition contains itself: \"C1000\" > \"C1001\" > "));
  EXPECT_TRUE(failures[0].reason.ends_with("... > \"C1000\"")) << failures[0].reason;
  EXPECT_TRUE(failures[count].reason.starts_with("node \"n0\": there is no node \"xxx"));
  EXPECT_NE(failures[count].reason.find("; did you mean \"xxx"), std::string::npos);
}

// Compositions are checked against the ports of those inside them, not against copies of all that is inside those.
TEST(BrokenCompositions, CheckingManyMakesNoMoreNodesThanTheyName) {
  const auto manager = newManager();
  int made = 0;
  ASSERT_TRUE(manager->registerNodeWithName("Counted", {}, [&made] {
    ++made;
    return std::make_shared<QCPatch>();
  }));
  load(*manager, composition("Inner", std::vector<std::string>(1023, "Counted")));
  for (int i = 0; i < 300; ++i) load(*manager, composition(("Outer " + std::to_string(i)), {3, "Inner"}));
  EXPECT_EQ(manager->nodeNames().size(), 302u);
  EXPECT_EQ(manager->nodeDescriptionWithName("Outer 299")->attributes().find("name")->stringValue(), "Outer 299");
  EXPECT_EQ(made, 1023);
  EXPECT_TRUE(manager->nodeInstanceWithName("Outer 299"));
  EXPECT_EQ(made, 1023 + 3 * 1023);
}

TEST(BrokenCompositions, ManyPortsAndRolesAreFoundByTheirKeys) {
  const auto manager = newManager();
  auto wide = std::make_shared<QCPatch>();
  PropertyList inputs = PropertyList::array(), roles, list = composition("Many", {"Wide"});
  for (int i = 0; i < 100000; ++i) {
    const std::string key = std::to_string(i);
    wide->addInputPort<QCNumberPort>(key);
    inputs.append(dict({{"key", text(key)}, {"node", text("n0")}, {"port", text(key)}}));
    roles.set("input" + key, text(key));
  }
  ASSERT_TRUE(manager->registerNodeWithName("Wide", {}, [wide] { return wide; }));
  list.set("inputs", inputs);
  list.set("attributes", dict({{"name", text("Many")}, {"protocols", dict({{"filter", roles}})}}));
  std::string reason;
  const auto read = QCCompositionFromPropertyList(list, "Many.qtz", &reason);
  ASSERT_TRUE(read && QCPatchWithComposition(*read, *manager, &reason)) << reason;
}

TEST(BrokenCompositions, DepthAndSizeOfWhatIsInsideAreBounded) {
  const auto manager = managerWithTestPatches();
  const auto nest = [&](const std::string& name, int levels, std::size_t nodes) {
    std::string inner = "Sum";
    for (int level = 1; level <= levels; ++level) {
      const std::string outer = name + std::to_string(level);
      load(*manager, composition(outer, std::vector(nodes, inner)));
      inner = outer;
    }
  };
  nest("Deep ", 17, 1);
  nest("Wide ", 5, 8);
  const auto& failures = manager->loadFailures();
  ASSERT_EQ(failures.size(), 3u);
  EXPECT_EQ(failures[0].reason, "compositions are nested more than 16 deep in it");
  EXPECT_NE(failures[1].reason.find("more than 4096 nodes"), std::string::npos) << "8^4 and the compositions above";
  for (const char* whole : {"Deep 16", "Wide 3"}) EXPECT_NE(manager->nodeInstanceWithName(whole), nullptr);
}
