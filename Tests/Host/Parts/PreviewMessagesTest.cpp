// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Preview/PreviewMessages.h"

#include "Host/Messages/Failure.h"
#include "Host/Preview/BitmapHandover.h"
#include "Host/Preview/BitmapReleases.h"
#include "Host/Preview/QuickSize.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSharing.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/ChildProcess.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/socket.h>

namespace {

using namespace host;

// A connection for memory entries. Nothing waits at its end.
class Entries {
 public:
  Entries() {
    int both[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0, both) != 0) std::abort();
    ends_[0] = MessageSocket(both[0]);
    ends_[1] = MessageSocket(both[1]);
  }
  int mine() const { return ends_[0].descriptor(); }
  int other() const { return ends_[1].descriptor(); }

 private:
  MessageSocket ends_[2];
};

MutableBitmapRef patterned(std::uint32_t width, std::uint32_t height, std::uint32_t format) {
  const MutableBitmapRef bitmap = newBitmap(width, height, format, "a picture");
  const std::size_t size = bytesPerRow(*bitmap) * height;
  for (std::size_t i = 0; i < size; ++i) bitmap->data[i] = static_cast<std::uint8_t>(i * 31 / 7);
  return bitmap;
}

bool areSame(const VortoBitmap& a, const VortoBitmap& b) {
  return a.width == b.width && a.height == b.height && a.formatCode == b.formatCode &&
         std::memcmp(a.data, b.data, bytesPerRow(a) * a.height) == 0;
}

PreviewHello helloOfAll() {
  PreviewHello hello;
  PreviewSetup& setup = hello.setup;
  setup.effect = "Over";
  setup.inputs = {"a.%d.png", "b.mov"};
  setup.pictures = {"mask=c.png"};
  setup.framing.size = PictureSize{1920, 1080};
  setup.framing.scaling = {ScalingFilter::Cubic, ScalingFit::Fill};
  setup.framing.place = placeNamed("7,-3");
  setup.depth = Depth::Half;
  setup.colors.working = knownSpace(KnownSpace::AcesCg, ColorSpace::Origin::Told);
  setup.colors.inputs = {std::nullopt, profileSpace({1, 2, 3}, "mine", false)};
  setup.time = 0.25;
  setup.frames = FrameRange{3, 9};
  setup.rate = 29.97;
  hello.inputBytes = 12345;
  return hello;
}

PreviewRendered renderedOf(const BitmapRef& result) {
  PreviewRendered rendered;
  rendered.id = 7;
  rendered.picture.frame = 3;
  rendered.picture.result = result;
  rendered.picture.before = result;
  rendered.picture.fileInfo = std::make_shared<PictureInfo>();
  rendered.picture.size = {result->width, result->height};
  return rendered;
}

PreviewOpened openedOf() {
  PreviewOpened opened;
  opened.count = 3;
  opened.start = 2;
  opened.shown = {0, 5, 9};
  opened.timeCode = TimeCode{0x01020304, 5};
  opened.inputs.resize(2);
  opened.inputs[1].path = "b.mov";
  opened.inputs[1].kind = Inputs::Kind::Clip;
  ClipInfo clip;
  clip.picture.width = clip.picture.height = 4;
  clip.rate = {25, 1};
  clip.timeBase = {1, 25};
  clip.times = {0, 1};
  clip.end = 2;
  opened.inputs[1].clip = std::make_shared<const ClipInfo>(clip);
  opened.depth = Depth::Bits16;
  return opened;
}

}  // namespace

TEST(PreviewMessages, CarryWhatWasPutIn) {
  const Entries entries;
  const PreviewHello hello = helloOfAll();
  const Bytes message = messageOf(hello, -1);
  const auto taken = std::get<PreviewHello>(takePreviewOrder(message, -1));
  EXPECT_EQ(messageOf(taken, -1), message);
  EXPECT_EQ(taken.setup.inputs, hello.setup.inputs);
  EXPECT_EQ(taken.setup.framing.place->offset->y, -3);
  EXPECT_EQ(*taken.setup.colors.inputs.at(1)->profile, (Bytes{1, 2, 3}));
  EXPECT_EQ(taken.setup.frames->last, 9u);

  RenderOrder order;
  order.id = 4;
  order.isAhead = true;
  order.time = 0.5;
  order.changed = {{"inputLevels", {1, 2}}, {"inputNone", {}}};
  order.given = GivenInputs{{patterned(3, 2, 0), patterned(300, 200, 9)}, Depth::Float, {5, 6}};
  const Bytes render = messageOf(order, entries.mine());
  const auto back = std::get<RenderOrder>(takePreviewOrder(render, entries.other()));
  EXPECT_EQ(back.changed, order.changed);
  EXPECT_TRUE(areSame(*back.given->bitmaps.at(0), *order.given->bitmaps[0]));
  EXPECT_TRUE(areSame(*back.given->bitmaps.at(1), *order.given->bitmaps[1]));
  EXPECT_EQ(back.given->resultSize, order.given->resultSize);
  EXPECT_THROW(takePreviewOrder(render, entries.other()), Failure) << "its memory was taken already";

  using Part = PictureParts::Part;
  PictureParts parts;
  const PreviewRendered rendered = renderedOf(patterned(200, 100, 4));
  const Bytes picture = messageOf(rendered, entries.mine(), {Part::Same, Part::None, Part::New});
  const auto shown = std::get<PreviewRendered>(takePreviewReport(picture, entries.other(), &parts));
  EXPECT_EQ(parts.before, Part::Same);
  EXPECT_EQ(parts.fileInfo, Part::New);
  EXPECT_TRUE(areSame(*shown.picture.result, *rendered.picture.result));
  EXPECT_EQ(shown.picture.before, nullptr);
  EXPECT_NE(shown.picture.fileInfo, nullptr);

  const auto opened = std::get<PreviewOpened>(takePreviewReport(messageOf(openedOf(), -1), -1, &parts));
  EXPECT_EQ(opened.shown, openedOf().shown);
  EXPECT_EQ(opened.inputs.at(1).clip->times.size(), 2u);
}

// Every message that is cut short, and those of which a byte is another, either say something or throw; what they say
// of pictures is true of the memory that there is.
TEST(PreviewMessages, NoMessageIsBelievedBeyondWhatItIs) {
  PreviewInputs inputs;
  inputs.bitmaps = {patterned(3, 2, 0)};
  PreviewCounts counts;
  const PreviewReport reports[] = {openedOf(),
                                   PreviewRefused{ExitCode::Input, "no"},
                                   PreviewProgress{1, PreviewPhase::Reading},
                                   inputs,
                                   counts,
                                   PreviewFailed{1, PreviewPhase::Reading, ExitCode::Input, "no"},
                                   PreviewDropped{4},
                                   Remark{"a", "b"},
                                   renderedOf(patterned(3, 2, 0))};
  using Part = PictureParts::Part;
  for (const PreviewReport& report : reports) {
    const Bytes whole = messageOf(report, -1, {Part::New, Part::None, Part::New});
    PictureParts parts;
    EXPECT_EQ(takePreviewReport(whole, -1, &parts).index(), report.index());
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_THROW(takePreviewReport(cut, -1, &parts), Failure) << report.index() << " at " << size;
    }
    for (std::size_t place = 0; place < whole.size(); ++place) {
      for (const std::uint8_t value : {0x00, 0x01, 0x7F, 0xFF}) {
        Bytes other = whole;
        other[place] = value;
        try {
          const PreviewReport said = takePreviewReport(other, -1, &parts);
          const auto* rendered = std::get_if<PreviewRendered>(&said);
          if (!rendered) continue;
          const VortoBitmap& bitmap = *rendered->picture.result;
          EXPECT_LE(bytesPerRow(bitmap) * bitmap.height, bitmap.accessibleBytes());
        } catch (const Failure&) {
        }
      }
    }
  }
}

TEST(PreviewMessages, BitmapsThatAreNoneAreNotTaken) {
  const Entries entries;
  const auto isTaken = [&](const VortoBitmap& bitmap) {
    MessageWriter message;
    message.value(std::uint8_t{1});
    EXPECT_EQ(TCSendBitmap(bitmap, entries.mine()), 0);
    MessageReader reader(message.message());
    try {
      return takeBitmap(reader, entries.other()) != nullptr;
    } catch (const Failure&) {
      return false;
    }
  };
  EXPECT_TRUE(isTaken(*patterned(100, 100, VortoPixelFormat::RGBA16)));
  EXPECT_FALSE(isTaken(*patterned(100, 100, VortoPixelFormat::YUV8))) << "it does not flow between patches";
  const MutableBitmapRef empty = patterned(100, 100, VortoPixelFormat::RGBA8);
  empty->height = 0;
  EXPECT_FALSE(isTaken(*empty));
}

// What one process gives back the other still has.
TEST(BitmapReleases, GiveBackWhatNobodyElseHere) {
  const Entries entries;
  const MutableBitmapRef kept = patterned(2600, 2000, VortoPixelFormat::RGBA8);
  ASSERT_EQ(TCSendBitmap(*kept, entries.mine()), 0);
  const auto releases = BitmapReleases::shared();
  BitmapRef taken = releases->adopted(BitmapRef(TCReceiveBitmap(entries.other(), nullptr)));
  EXPECT_TRUE(areSame(*taken, *kept));
  const auto isMapped = [place = reinterpret_cast<std::uintptr_t>(taken->data)] {
    std::uint8_t resident = 0;
    return ::mincore(reinterpret_cast<void*>(place), 1, &resident) == 0;
  };
  EXPECT_TRUE(isMapped());
  taken.reset();
  for (int tries = 0; isMapped() && tries < 6000; ++tries) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_FALSE(isMapped());
  EXPECT_TRUE(areSame(*kept, *patterned(2600, 2000, VortoPixelFormat::RGBA8)));
}

TEST(QuickSize, KeepsTheShapeAndIsNeverLarger) {
  EXPECT_EQ(quickSize({7680, 4320}, {1200, 800}), (PictureSize{1200, 675}));
  EXPECT_EQ(quickSize({100, 50}, {1200, 800}), (PictureSize{100, 50}));
  EXPECT_EQ(quickSize({100000, 1}, {1000, 800}), (PictureSize{1000, 1}));
  EXPECT_EQ(quickSize({400, 800}, {400, 400}), (PictureSize{200, 400}));
}
