// SPDX-License-Identifier: BSD-3-Clause
// A clip is read or refused with a reason, in this process. What is said of it can be taken by the host.
#include "Host/Clips/Program/AvErrors.h"
#include "Host/Clips/Program/ReadClip.h"
#include "Host/Messages/Failure.h"
#include "Tests/Fuzz/Support/Check.h"

extern "C" {
#include <libavutil/mem.h>
}

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <new>

namespace {

constexpr std::size_t kLargestBlock = std::size_t{1} << 24;
constexpr std::uint64_t kMostPixels = 1 << 18;
constexpr std::size_t kMostFrames = 8;

// The file's name, good until the next one.
std::string fileWith(const std::uint8_t* data, std::size_t size) {
  static const int file = ::memfd_create("clip", 0);
  check(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size), "there is a file");
  return "/proc/self/fd/" + std::to_string(file);
}

void readFrames(host::Clip& clip, host::FrameSlots& slots) {
  const std::size_t count = clip.info().times.size();
  for (std::size_t i = 0; i < kMostFrames; ++i) {
    const std::size_t place = (i * 5 + i / 4) % count;
    try {
      clip.read(place, slots, 0);
      const host::PictureInfo& picture = clip.info().picture;
      check(slots.kind(0) ==
                host::FrameKind{picture.width, picture.height, picture.sample, host::Channels::RGBA, picture.alpha},
            "frames are of the kind that was said");
    } catch (const host::Failure& failure) {
      check(*failure.what() != 0, "a frame that is not read has a reason");
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  host::silenceLibraries();
  av_max_alloc(kLargestBlock);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = fileWith(data, size);
  try {
    host::Clip clip(path, [] {});
    host::MessageWriter written;
    host::put(written, clip.info());
    host::MessageReader read(written.message());
    host::takeClipInfo(read);
    check(read.isAtEnd(), "what is said is taken whole");
    const host::PictureInfo& picture = clip.info().picture;
    host::FrameSlots slots(1);
    if (std::uint64_t{picture.width} * picture.height <= kMostPixels) readFrames(clip, slots);
  } catch (const host::Failure& failure) {
    check(*failure.what() != 0, "what is not read has a reason");
    check(failure.code == host::ExitCode::Input, "the reason is the file");
  } catch (const std::bad_alloc&) {
  }
  return 0;
}
