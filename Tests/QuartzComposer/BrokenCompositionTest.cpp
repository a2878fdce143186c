// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCCompositionBuilder.h"
#include "Tests/QuartzComposer/TestFolder.h"
#include "Tests/QuartzComposer/TestPatches.h"

#include <filesystem>

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
    EXPECT_EQ(errors.text(), folder.path() + "/Broken.qtz: " + manager->loadFailures().at(0).reason + "\n");
    ++count;
  }
  EXPECT_GE(count, 38);
}

TEST(BrokenCompositions, AreRefusedWithoutAReasonToo) {
  const auto manager = managerWithTestPatches();
  EXPECT_EQ(QCCompositionFromFile("/nowhere.qtz", nullptr), nullptr);
  EXPECT_EQ(QCCompositionFromPropertyList(PropertyList::array(), "C.qtz", nullptr), nullptr);
  const auto unknown = QCCompositionFromPropertyList(composition("C", {"Sun"}), "C.qtz", nullptr);
  ASSERT_TRUE(unknown);
  EXPECT_EQ(QCPatchWithComposition(*unknown, *manager, nullptr), nullptr);
  load(*manager, composition("C", std::vector<std::string>(1025, "Sum")), "Broken.qtz");
  expectRefusal(*manager, "1025 nodes, more than 1024");
}

TEST(BrokenCompositions, AreRefusedBeforeTheyAreRead) {
  const TestFolder folder;
  folder.write("A.qtz", "no property list");
  folder.write("B.qtz", "");
  folder.write("C.qtz/file", "");
  folder.write("D.qtz", "x");
  fs::resize_file(folder.path() + "/D.qtz", std::uintmax_t{1} << 40);  // a hole
  const auto manager = newManager();
  manager->loadPlugInsInFolder(folder.path(), {"qtz"});
  ASSERT_EQ(manager->loadFailures().size(), 4u);
  EXPECT_EQ(manager->loadFailures()[2].reason, "it is not a file");
  EXPECT_EQ(manager->loadFailures()[3].reason, "it is larger than a composition can be");
}

TEST(BrokenCompositions, MutualRecursionIsToldFromThoseThatNameIt) {
  const auto manager = managerWithTestPatches();
  load(*manager, composition("A", {"B"}), "A.qtz");
  load(*manager, composition("B", {"Sum", "A"}), "B.qtz");
  load(*manager, composition("Outside", {"A"}), "Outside.qtz");
  Names reasons;
  for (const auto& failure : manager->loadFailures()) reasons.push_back(failure.reason);
  EXPECT_EQ(reasons, (Names{"the composition contains itself: \"A\" > \"B\" > \"A\"",
                            "the composition contains itself: \"B\" > \"A\" > \"B\"",
                            "node \"n0\": the composition \"A\" could not be loaded"}));
}

TEST(BrokenCompositions, DepthAndSizeOfWhatIsInsideAreBounded) {
  const auto manager = managerWithTestPatches();
  std::string inner = "Sum";
  for (int depth = 1; depth <= 17; ++depth) {
    const std::string name = "Deep " + std::to_string(depth);
    load(*manager, composition(name.c_str(), {inner}));
    inner = name;
  }
  inner = "Sum";
  for (int level = 1; level <= 5; ++level) {  // eight times as many nodes at every level
    const std::vector<std::string> nodes(8, inner);
    inner = "Wide " + std::to_string(level);
    load(*manager, composition(inner.c_str(), nodes));
  }
  const auto& failures = manager->loadFailures();
  ASSERT_EQ(failures.size(), 3u);
  EXPECT_EQ(failures[0].reason, "compositions are nested more than 16 deep in it");
  EXPECT_NE(failures[1].reason.find("more than 4096 nodes"), std::string::npos) << "8^4 and the compositions above";
  EXPECT_NE(manager->nodeInstanceWithName("Deep 16"), nullptr);
  EXPECT_NE(manager->nodeInstanceWithName("Wide 3"), nullptr);
}
