// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Clips/ClipFiles.h"

#include "Host/Messages/Failure.h"

namespace {

// Packed samples of red, green and blue get full ones of alpha.
std::string withAlpha(const std::string& packed, std::size_t sampleBytes) {
  std::string result;
  for (std::size_t i = 0; i < packed.size(); i += 3 * sampleBytes) {
    result.append(packed, i, 3 * sampleBytes);
    result.append(sampleBytes, '\xFF');
  }
  return result;
}

}  // namespace

void runFfmpeg(const std::string& words) {
  const TemporaryFolder folder;
  const std::string said = folder.path("said");
  const std::string command = "ffmpeg -nostdin -y -v error " + words + " >" + said + " 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << command << '\n' << contentsOf(said);
}

std::string decodedByFfmpeg(const std::string& clip, const std::string& options, const std::string& format) {
  const TemporaryFolder folder;
  runFfmpeg("-i " + clip + " " + options + " -fps_mode passthrough -f rawvideo -pix_fmt " + format + " " +
            folder.path("raw"));
  return contentsOf(folder.path("raw"));
}

// Through planes, as the exact conversion goes only to these; the packing that follows changes nothing.
std::string convertedByFfmpeg(const std::string& clip, const std::string& options, bool isDeep) {
  const std::string filter = "-vf scale=flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp:" + options +
                             ",format=" + (isDeep ? "gbrp16le" : "gbrp");
  return withAlpha(decodedByFfmpeg(clip, filter, isDeep ? "rgb48le" : "rgb24"), isDeep ? 2 : 1);
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

ReadClip::ReadClip(const std::string& path, int patience) : reader_(path, slots_, std::chrono::seconds(patience)) {}

std::string ReadClip::frame(std::uint32_t place) {
  reader_.want(place, 1);
  const host::ClipReader::Frame frame = reader_.frame();
  if (frame.isDamaged) damaged.push_back(place);
  const auto* pixels = reinterpret_cast<const char*>(slots_.pixels(frame.slot));
  return {pixels, slots_.kind(frame.slot).bytes()};
}

std::string ReadClip::all() {
  std::string pixels;
  for (std::uint32_t i = 0; i < count(); ++i) pixels += frame(i);
  return pixels;
}

std::string failureOf(const std::string& path) {
  try {
    ReadClip(path).all();
    return "";
  } catch (const host::Failure& failure) {
    return failure.what();
  }
}
