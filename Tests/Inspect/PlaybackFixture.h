// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/FrameSource.h"
#include "Host/Playback/Player.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

// What the tests of playback share: pictures of a pixel or so, and a source whose frames come when a test says so.

namespace playback_test {

inline host::BitmapRef newBitmap(std::uint32_t width = 4) {
  return host::newBitmap(width, 4, VortoPixelFormat::RGBA8, "a picture");
}

inline host::PreviewPictureRef newPicture(std::uint64_t frame, const host::BitmapRef& before = nullptr) {
  auto picture = std::make_shared<host::PreviewPicture>();
  picture->frame = frame;
  picture->result = newBitmap();
  picture->before = before;
  return picture;
}

inline VortoHash128 fingerprintOf(const std::string& text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), static_cast<std::uint32_t>(text.size())};
}

class FakeSource : public host::FrameSource {
 public:
  std::size_t mostOrders() const override { return most; }
  VortoHash128 fingerprint() const override { return fingerprintOf(parameters); }
  void order(std::uint64_t frame) override { orders.push_back(frame); }
  void dropOrders() override { orders.clear(); }

  std::size_t most = 2;
  std::string parameters = "first";
  std::vector<std::uint64_t> orders;  // that were not delivered or dropped
};

// A player of a fake source by a clock that tests set, and what it has told.
struct Playing : QObject {
  explicit Playing(const host::PlaybackTimes& times) {
    player.listen(*this, {.showFrame =
                              [this](std::uint64_t frame, const host::PreviewPictureRef& picture) {
                                shown.push_back(frame);
                                lastPicture = picture;
                              },
                          .remark = [this](const QString& text) { remarks.push_back(text.toStdString()); }});
    player.setTimes(times);
  }

  // The first order is fulfilled. Returns its frame.
  std::uint64_t deliverFirst() {
    const std::uint64_t frame = source.orders.front();
    source.orders.erase(source.orders.begin());
    player.deliver(frame, source.fingerprint(), newPicture(frame));
    return frame;
  }
  void deliverAll() {
    while (!source.orders.empty()) deliverFirst();
  }
  void failFirst() {
    const std::uint64_t frame = source.orders.front();
    source.orders.erase(source.orders.begin());
    player.deliverFailure(frame, source.fingerprint(), "broken");
  }
  // Lets time go by in thousandths of a second.
  void wait(double seconds) {
    const double end = now + seconds;
    while (now < end - 1e-9) {
      now += 0.001;
      player.advance();
    }
  }
  std::vector<std::uint64_t> takeShown() { return std::exchange(shown, {}); }

  double now = 100;
  FakeSource source;
  host::Player player{source, [this] { return now; }};
  std::vector<std::uint64_t> shown;
  host::PreviewPictureRef lastPicture;
  std::vector<std::string> remarks;
};

}  // namespace playback_test
