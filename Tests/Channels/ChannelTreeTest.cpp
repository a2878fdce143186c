// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelFolder.h"
#include "Channels/VRTChannelHistogram.h"

#include <optional>

namespace {

// Writes its number into a list when it is destroyed.
class Witness : public VRTChannelBase {
 public:
  Witness(std::vector<int>& log, int number) : _log(log), _number(number) {}
  ~Witness() override { _log.push_back(_number); }

 private:
  std::vector<int>& _log;
  int _number;
};

void checkFirstIDs() {
  const VRTChannelBase first;
  const VRTChannelBase second;
  const VRTChannelBase copy(first);
  std::exit(first.getID() == 1 && second.getID() == 2 && copy.getID() == 3 ? 0 : 1);
}

TEST(ChannelTree, TheFirstChannelsOfAProcessHaveTheFirstIDs) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";  // a process of its own
  EXPECT_EXIT(checkFirstIDs(), testing::ExitedWithCode(0), "");
}

TEST(ChannelTree, CopiesTakeTheNameAndAFreshID) {
  VRTChannelBase source;
  EXPECT_EQ(source.getName().compare(VortoString("VRTChannelBase")), 0);
  source.setName(VortoString("Gain"));
  source.setID(-5);
  VRTChannelBase next;
  const std::unique_ptr<VRTChannelBase> copy = source.clone();
  EXPECT_EQ(copy->getID(), next.getID() + 1);
  EXPECT_EQ(copy->getName().compare(VortoString("Gain")), 0);
}

TEST(ChannelTree, RefsAnswerNullOnceTheirChannelIsGone) {
  std::optional<VRTChannelBase> channel(std::in_place);
  VRTChannelBase other;
  other.setID(channel->getID());
  const std::unique_ptr<VRTChannelRef> first = channel->getRef();
  std::unique_ptr<VRTChannelRef> second = channel->getRef();
  std::unique_ptr<VRTChannelRef> third = channel->getRef();
  VRTChannelRef copy(*second);
  VRTChannelRef assigned(&other);
  EXPECT_FALSE(assigned == *first);
  assigned = copy;
  EXPECT_TRUE(assigned == *first);
  assigned = *&assigned;
  second.reset();  // from the middle of the channel's handles
  const VRTChannelBase copiedChannel(*channel);
  EXPECT_EQ(first->getChannel(), &*channel);

  channel.reset();
  for (VRTChannelRef* ref : {first.get(), third.get(), &copy}) EXPECT_EQ(ref->getChannel(), nullptr);
  EXPECT_TRUE(assigned == VRTChannelRef(nullptr));
}

TEST(ChannelTree, AFolderDeletesItsChildrenFirstToLast) {
  std::vector<int> log;
  {
    VRTChannelFolder folder;
    for (int i = 1; i <= 3; ++i) folder.push_back(new Witness(log, i));
    folder.push_back(nullptr);
    auto inner = std::make_unique<VRTChannelFolder>();
    inner->push_back(new Witness(log, 4));
    folder.push_back(inner.release());

    VRTChannelBase* const removed = folder.getDescendants()[1];
    VRTChannelBase stranger;
    folder.removeDescendant(&stranger);
    EXPECT_EQ(folder.getNumberOfDescendants(), 5U);
    folder.removeDescendant(removed);
    EXPECT_EQ(folder.getNumberOfDescendants(), 4U);
    EXPECT_TRUE(log.empty());
    delete removed;
  }
  EXPECT_EQ(log, (std::vector<int>{2, 1, 3, 4}));
}

TEST(ChannelTree, ChildrenAreFoundByIDAndACopyHoldsTheSame) {
  VRTChannelFolder folder;
  for (int i = 0; i < 3; ++i) folder.push_back(new VRTChannelBase);
  const auto& children = folder.getDescendants();
  for (VRTChannelBase* child : children) child->setID(child->getID() + 1000);
  EXPECT_EQ(folder.getDescendant(0), nullptr);
  for (const std::size_t i : {1, 2}) children[i]->setID(7);
  EXPECT_EQ(folder.getDescendant(7), children[1]);

  const std::unique_ptr<VRTChannelBase> copy = folder.clone();
  auto& copied = dynamic_cast<VRTChannelFolder&>(*copy);
  EXPECT_EQ(copied.getDescendants(), children);
  EXPECT_NE(copied.getID(), folder.getID());
  copied.getDescendants().clear();
}

TEST(ChannelTree, CopiesOfLevelsAreComplete) {
  VRTChannelHistogram levels;
  levels.selectedChannel = 3;
  levels.setBlackInValue(0.25, 2, 0, 0);
  levels.setBlackOutValue(1.25, 2, 0, 0);
  levels.setWhiteInValue(2.25, 2, 0, 0);
  levels.setWhiteOutValue(3.25, 2, 0, 0);
  levels.setGammaValue(4.25, 2, 0, 0);
  const std::unique_ptr<VRTChannelBase> clone = levels.clone();
  const auto& copy = dynamic_cast<const VRTChannelHistogram&>(*clone);
  EXPECT_EQ(copy.selectedChannel, 3);
  EXPECT_EQ((std::array{copy.getBlackInValue(2, 1, 2), copy.getBlackOutValue(2, 1, 2), copy.getWhiteInValue(2, 1, 2),
                        copy.getWhiteOutValue(2, 1, 2), copy.getGammaValue(2, 1, 2)}),
            (std::array{0.25, 1.25, 2.25, 3.25, 4.25}));
  EXPECT_NE(copy.getID(), levels.getID());
  EXPECT_NE(copy.samples[2].getID(), levels.samples[2].getID());
}

}  // namespace
