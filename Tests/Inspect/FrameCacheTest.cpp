// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/FrameCache.h"

#include "Tests/Inspect/PlaybackFixture.h"

using host::FrameSpan;
using host::Looping;
using host::PlayOrder;
using host::PlayPlace;
using playback_test::fingerprintOf;
using playback_test::newBitmap;
using playback_test::newPicture;

namespace {

using Frames = std::vector<std::uint64_t>;

Frames played(const PlayOrder& order, PlayPlace place, int count) {
  Frames frames;
  for (int i = 0; i < count; ++i) {
    const auto next = order.next(place);
    if (!next) break;
    place = *next;
    frames.push_back(place.frame);
  }
  return frames;
}

std::uint64_t bytesOf(const host::PreviewPictureRef& picture) {
  return picture->result->allocSize;
}

}  // namespace

TEST(PlayOrder, GoesToTheEndAroundOrBack) {
  EXPECT_EQ(played({2, 5, 1, Looping::Around}, {3, false}, 5), (Frames{4, 5, 2, 3, 4}));
  EXPECT_EQ(played({2, 5, 1, Looping::Around}, {3, true}, 4), (Frames{2, 5, 4, 3}));
  EXPECT_EQ(played({2, 5, 1, Looping::Off}, {3, false}, 5), (Frames{4, 5}));
  EXPECT_EQ(played({2, 5, 1, Looping::BackAndForth}, {3, false}, 7), (Frames{4, 5, 4, 3, 2, 3, 4}));
  EXPECT_EQ(played({0, 50, 20, Looping::Around}, {0, false}, 5), (Frames{20, 40, 50, 0, 20}));
  EXPECT_EQ(played({0, 50, 20, Looping::BackAndForth}, {40, false}, 4), (Frames{50, 30, 10, 0}));
  EXPECT_EQ(played({4, 4, 1, Looping::BackAndForth}, {4, false}, 2), (Frames{4, 4}));
  EXPECT_EQ(played({2, 5, 1, Looping::Around}, {9, false}, 2), (Frames{2, 3})) << "from outside";
}

// The distance is how many steps it takes, counted by going them.
TEST(PlayOrder, KnowsHowFarFramesAre) {
  for (const Looping looping : {Looping::Around, Looping::BackAndForth}) {
    for (const bool backward : {false, true}) {
      const PlayOrder order{3, 9, 1, looping};
      for (std::uint64_t from = 3; from <= 9; ++from) {
        const Frames way = played(order, {from, backward}, 20);
        for (std::uint64_t frame = 3; frame <= 9; ++frame) {
          const auto steps = frame == from ? 0 : std::find(way.begin(), way.end(), frame) - way.begin() + 1;
          EXPECT_EQ(order.distance({from, backward}, frame), static_cast<std::uint64_t>(steps)) << from << ' ' << frame;
          EXPECT_LT(order.distance({from, backward}, frame), order.distance({from, backward}, 2));
        }
        EXPECT_LT(order.distance({from, backward}, 10), order.distance({from, backward}, 1));
      }
    }
  }
}

TEST(FrameSpans, AreTheSetThatTheyWereMadeOf) {
  host::FrameSpans spans;
  std::set<std::uint64_t> frames;
  std::mt19937 random(7);
  for (int i = 0; i < 4000; ++i) {
    const std::uint64_t frame = random() % 40;
    if (random() % 2) {
      spans.add(frame);
      frames.insert(frame);
    } else {
      spans.remove(frame);
      frames.erase(frame);
    }
    std::set<std::uint64_t> covered;
    std::uint64_t free = 0;
    for (const FrameSpan& span : spans.all()) {
      ASSERT_GE(span.first, free) << "ascending and apart";
      for (std::uint64_t at = span.first; at <= span.last; ++at) covered.insert(at);
      free = span.last + 2;
    }
    ASSERT_EQ(covered, frames);
    ASSERT_EQ(spans.contains(frame), frames.contains(frame));
  }
}

// Against a model that looks at everything.
TEST(FrameCache, ThrowsAwayWhatIsWantedLast) {
  const std::uint64_t each = bytesOf(newPicture(0));
  std::mt19937 random(11);
  for (const Looping looping : {Looping::Around, Looping::BackAndForth, Looping::Off}) {
    host::FrameCache cache;
    cache.setBudget(12 * each);
    std::vector<std::string> used{"0"};  // fingerprints, the present one first
    std::map<std::string, std::set<std::uint64_t>> model;
    PlayOrder order{5, 30, 1, looping};
    PlayPlace place{5, false};
    std::uint64_t shown = 5;
    cache.setFingerprint(fingerprintOf("0"));
    for (int i = 0; i < 3000; ++i) {
      if (random() % 10 == 0) {
        const std::string next(1, static_cast<char>('0' + random() % 4));
        cache.setFingerprint(fingerprintOf(next));
        used.erase(std::remove(used.begin(), used.end(), next), used.end());
        used.insert(used.begin(), next);
      }
      if (random() % 3 == 0) {
        place = {5 + random() % 26, random() % 2 == 0};
        shown = random() % 2 ? place.frame : random() % 40;
        cache.setPlayhead(order, place, shown);
      }
      const std::uint64_t frame = random() % 40;
      const bool isKept = cache.put(frame, fingerprintOf(used.front()), newPicture(frame));

      model[used.front()].insert(frame);
      const auto next = order.next(place);
      const auto total = [&] {
        std::size_t sum = 0;
        for (const auto& [name, frames] : model) sum += frames.size();
        return sum;
      };
      while (total() > 12) {
        std::string victim;
        for (const std::string& name : used) {
          if (!model[name].empty()) victim = name;
        }
        std::optional<std::uint64_t> worst;
        for (const std::uint64_t at : model[victim]) {
          const bool isNeeded = at == shown || at == place.frame || (next && at == next->frame);
          if (victim == used.front() && isNeeded) continue;
          if (!worst || order.distance(place, at) > order.distance(place, *worst)) worst = at;
        }
        model[victim].erase(*worst);
      }
      ASSERT_EQ(isKept, model[used.front()].contains(frame)) << i;
      ASSERT_EQ(cache.count(), model[used.front()].size()) << i;
      for (const std::uint64_t at : model[used.front()]) ASSERT_TRUE(cache.find(at)) << i;
      ASSERT_EQ(cache.bytes(), total() * each) << i;
    }
  }
}

TEST(FrameCache, CountsWhatIsSharedOnce) {
  host::FrameCache cache;
  const auto before = newBitmap();
  const std::uint64_t each = bytesOf(newPicture(0));
  ASSERT_GT(each, 0u);
  cache.setBudget(1000 * each);
  cache.put(1, cache.fingerprint(), newPicture(1, before));
  cache.put(2, cache.fingerprint(), newPicture(2, before));
  EXPECT_EQ(cache.bytes(), 3 * each);
  EXPECT_EQ(cache.framesThatFit(), 666u);
  cache.put(2, cache.fingerprint(), newPicture(2));
  EXPECT_EQ(cache.bytes(), 3 * each) << "in the place of the first";
  cache.put(1, cache.fingerprint(), newPicture(1));
  EXPECT_EQ(cache.bytes(), 2 * each);
  const auto same = std::make_shared<host::PreviewPicture>();
  same->result = same->before = same->fileBefore = before;
  cache.put(3, cache.fingerprint(), same);
  EXPECT_EQ(cache.bytes(), 3 * each);
  cache.clear();
  EXPECT_EQ(cache.bytes(), 0u);
  EXPECT_FALSE(cache.find(1));
}

TEST(FrameCache, HoldsNoMoreThanAProcessHasDescriptorsFor) {
  host::FrameCache cache;
  const auto picture = newPicture(0);  // takes no memory that counts
  const std::size_t most = host::FrameCache::mostPictures();
  cache.setPlayhead({0, 100000, 1, Looping::Around}, {0, false}, 0);
  for (std::uint64_t frame = 0; frame < most + 100; ++frame) cache.put(frame, cache.fingerprint(), picture);
  EXPECT_EQ(cache.count(), most);
  EXPECT_EQ(cache.spans(), (std::vector<FrameSpan>{{0, most - 1}}));
  EXPECT_EQ(cache.framesThatFit(), most);
}

TEST(FrameCache, FramesComeBackWithTheirParameters) {
  host::FrameCache cache;
  cache.setFingerprint(fingerprintOf("a"));
  const auto picture = newPicture(3);
  cache.put(3, fingerprintOf("a"), picture);
  cache.setFingerprint(fingerprintOf("b"));
  EXPECT_FALSE(cache.find(3));
  EXPECT_TRUE(cache.spans().empty());
  cache.put(4, fingerprintOf("a"), newPicture(4));  // late
  EXPECT_TRUE(cache.spans().empty());
  cache.setFingerprint(fingerprintOf("a"));
  EXPECT_EQ(cache.find(3), picture);
  EXPECT_EQ(cache.spans(), (std::vector<FrameSpan>{{3, 4}}));
}
