// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/QuartzComposer/TestFolder.h"
#include "Tests/QuartzComposer/TestPatches.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using P = PropertyList;

struct BrokenComposition {
  const char* name;
  PropertyList contents;
  const char* reason;  // a part of it
};

void PrintTo(const BrokenComposition& broken, std::ostream* out) {
  *out << broken.name;
}

PropertyList with(PropertyList list, const char* key, PropertyList value) {
  list.set(key, std::move(value));
  return list;
}

// Two nodes "a" and "b", and what else is given.
PropertyList pair(PropertyList connections, PropertyList inputs = P::array(), PropertyList outputs = P::array()) {
  return composition("C", list({node("a", "Sum"), node("b", "Sum")}), std::move(connections), std::move(inputs),
                     std::move(outputs));
}

PropertyList withProtocols(PropertyList protocols) {
  return with(pair(P::array(), list({published("x", "a", "a")}), list({published("y", "a", "sum")})), "attributes",
              dict({{"name", text("C")}, {"protocols", std::move(protocols)}}));
}

PropertyList withValue(const char* key, PropertyList value) {
  return composition("C", list({node("a", "Sum", dict({{key, std::move(value)}}))}));
}

PropertyList manyNodes(int count) {
  PropertyList nodes = P::array();
  for (int i = 0; i < count; ++i) {
    nodes.append(node(("n" + std::to_string(i)).c_str(), "Sum"));
  }
  return composition("C", nodes);
}

const BrokenComposition brokenCompositions[] = {
    {"Array", P::array(), "is a dictionary, not a value of type array"},
    {"NoVersion", P(), "no \"formatVersion\""},
    {"LaterVersion", dict({{"formatVersion", P::integer(2)}}), "format version is 2"},
    {"VersionIsText", dict({{"formatVersion", text("1")}}), "must be a value of type integer, not string"},
    {"UnknownEntry", with(pair(P::array()), "conections", P::array()), "did you mean \"connections\"?"},
    {"NodesAreADictionary", with(pair(P::array()), "nodes", P()), "must be a value of type array, not dictionary"},
    {"NodeIsText", composition("C", list({text("Sum")})), "nodes entry 0 must be a dictionary"},
    {"NodeWithoutName", composition("C", list({dict({{"identifier", text("a")}})})), "has no \"name\""},
    {"NameIsANumber", composition("C", list({with(node("a", ""), "name", P::integer(1))})), "type string, not integer"},
    {"StopInIdentifier", composition("C", list({node("a.b", "Sum")})), "full stop"},
    {"SameIdentifier", composition("C", list({node("a", "Sum"), node("a", "Sum")})), "two nodes have the identifier"},
    {"TooManyNodes", manyNodes(1025), "1025 nodes, more than 1024"},
    {"UnknownNode", composition("C", list({node("a", "Sun")})), "there is no node \"Sun\"; did you mean \"Sum\"?"},
    {"UnknownIdentifier", pair(list({connection("c.sum", "b.a")})), "no node has the identifier \"c\""},
    {"NoStop", pair(list({connection("a", "b.a")})), "\"a\" must be a node's identifier"},
    {"UnknownOutput", pair(list({connection("a.total", "b.a")})), "has no output \"total\"; its outputs: \"sum\""},
    {"UnknownInput", pair(list({connection("a.sum", "b.sum")})), "has no input \"sum\""},
    {"Mismatch", pair(list({connection("a.sum", "b.image")})), "of kind image takes no values of kind number"},
    {"ObjectMismatch", pair(list({connection("a.outputImage", "b.object")})), "kind object TestObject takes no"},
    {"TwoSources", pair(list({connection("a.sum", "b.a"), connection("a.sum", "b.a")})), "leads to \"b.a\""},
    {"PublishedAndConnected", pair(list({connection("a.sum", "b.a")}), list({published("x", "b", "a")})), "leads to"},
    {"CycleOfTwo", pair(list({connection("a.sum", "b.a"), connection("b.sum", "a.a")})),
     "circle: \"a\" > \"b\" > \"a\""},
    {"CycleOfOne", pair(list({connection("a.sum", "a.a")})), "circle: \"a\" > \"a\""},
    {"PublishedMismatch", pair(P::array(), list({published("x", "a", "a"), published("x", "b", "image")})),
     "kind image"},
    {"SameOutput", pair(P::array(), P::array(), list({published("y", "a", "sum"), published("y", "b", "sum")})),
     "two outputs"},
    {"InputAndOutput", pair(P::array(), list({published("x", "a", "a")}), list({published("x", "a", "sum")})),
     "an input and an output"},
    {"OutputOfAnInput", pair(P::array(), P::array(), list({published("y", "a", "a")})), "has no output \"a\""},
    {"DefaultDoesNotFit", pair(P::array(), list({with(published("x", "a", "a"), "default", text("1"))})),
     "default of the input \"x\" is refused"},
    {"MinimumIsText", pair(P::array(), list({with(published("x", "a", "a"), "minimum", text("0"))})),
     "\"minimum\" must be a number"},
    {"ValueOfUnknownPort", withValue("z", P::real(1)), "has no input \"z\""},
    {"ValueDoesNotFit", withValue("a", text("1")), "the value of \"a\" is refused: this string"},
    {"ValueThrows", withValue("object", P::array()), "index 5 beyond 3"},
    {"ValueOfAnImage", withValue("image", P::data({1})), "an image is not stored"},
    {"ProtocolIsText", withProtocols(dict({{"filter", text("yes")}})), "must be a dictionary of roles"},
    {"RoleOfNoPort", withProtocols(dict({{"filter", dict({{"outputImagePort", text("z")}})}})),
     "which is no published output"},
    {"RoleOnTheWrongSide", withProtocols(dict({{"filter", dict({{"inputImagePort", text("y")}})}})),
     "which is no published input"},
    {"ContainsItself", composition("C", list({node("a", "C")})), "contains itself: \"C\" > \"C\""},
    {"NameIsTaken", composition("Sum", P::array()), "the node \"Sum\" is there already"},
};

class BrokenCompositions : public testing::TestWithParam<BrokenComposition> {};

}  // namespace

TEST_P(BrokenCompositions, IsReportedOnceAndTheOthersLoad) {
  const auto manager = managerWithTestPatches();
  testing::internal::CaptureStderr();
  load(*manager, GetParam().contents, "Broken.qtz");
  load(*manager, composition("Good", list({node("a", "Sum")})), "Good.qtz");
  EXPECT_EQ(manager->nodeNames(), (std::vector<std::string>{"Sum", "Throw", "Good"}));
  const std::string printed = testing::internal::GetCapturedStderr();
  ASSERT_EQ(manager->loadFailures().size(), 1u);
  const GFNodeManager::LoadFailure& failure = manager->loadFailures()[0];
  EXPECT_NE(failure.reason.find(GetParam().reason), std::string::npos) << failure.reason;
  EXPECT_EQ(std::filesystem::path(failure.path).filename(), "Broken.qtz");
  EXPECT_EQ(printed, failure.path + ": " + failure.reason + "\n");
}

INSTANTIATE_TEST_SUITE_P(Composition, BrokenCompositions, testing::ValuesIn(brokenCompositions),
                         [](const auto& test) { return test.param.name; });

TEST(BrokenCompositionFiles, AreRefusedBeforeTheyAreRead) {
  const TestFolder folder;
  folder.write("A.qtz", "no property list");
  folder.write("B.qtz", "");
  folder.write("C.qtz/file", "");
  folder.write("D.qtz", "x");
  std::filesystem::resize_file(folder.path() + "/D.qtz", std::uintmax_t{1} << 40);  // a hole
  const auto manager = newManager();
  manager->loadPlugInsInFolder(folder.path(), {"qtz"});
  ASSERT_EQ(manager->loadFailures().size(), 4u);
  EXPECT_EQ(manager->loadFailures()[2].reason, "it is not a file");
  EXPECT_EQ(manager->loadFailures()[3].reason, "it is larger than a composition can be");
}

TEST(BrokenCompositionFiles, MutualRecursionIsToldFromThoseThatNameIt) {
  const auto manager = managerWithTestPatches();
  load(*manager, composition("A", list({node("n", "B")})), "A.qtz");
  load(*manager, composition("B", list({node("s", "Sum"), node("n", "A")})), "B.qtz");
  load(*manager, composition("Outside", list({node("n", "A")})), "Outside.qtz");
  const auto& failures = manager->loadFailures();
  ASSERT_EQ(failures.size(), 3u);
  EXPECT_EQ(failures[0].reason, "the composition contains itself: \"A\" > \"B\" > \"A\"");
  EXPECT_EQ(failures[1].reason, "the composition contains itself: \"B\" > \"A\" > \"B\"");
  EXPECT_EQ(failures[2].reason, "node \"n\": the composition \"A\" could not be loaded");
}

TEST(BrokenCompositionFiles, DepthAndSizeOfWhatIsInsideAreBounded) {
  const auto manager = managerWithTestPatches();
  std::string inner = "Sum";
  for (int depth = 1; depth <= 17; ++depth) {
    const std::string name = "Deep " + std::to_string(depth);
    load(*manager, composition(name.c_str(), list({node("n", inner.c_str())})));
    inner = name;
  }
  inner = "Sum";
  for (int level = 1; level <= 5; ++level) {  // eight times as many nodes at every level
    PropertyList nodes = P::array();
    for (int i = 0; i < 8; ++i) {
      nodes.append(node(std::to_string(i).c_str(), inner.c_str()));
    }
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
