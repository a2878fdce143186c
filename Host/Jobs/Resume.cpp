// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/Resume.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Files/PictureReading.h"
#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string_view>

namespace host {
namespace {

// A file's bytes, of which only those are read that are looked at; empty where there is no regular file.
class MappedFile {
 public:
  explicit MappedFile(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) return;
    struct stat status;
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
      size_ = static_cast<std::size_t>(status.st_size);
      memory_ = ::mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, descriptor, 0);
    }
    ::close(descriptor);
  }
  ~MappedFile() {
    if (memory_ != MAP_FAILED) ::munmap(memory_, size_);
  }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::span<const std::uint8_t> bytes() const {
    if (memory_ == MAP_FAILED) return {};
    return {static_cast<const std::uint8_t*>(memory_), size_};
  }

 private:
  void* memory_ = MAP_FAILED;
  std::size_t size_ = 0;
};

// Their headers say where all of the pixels lie.
bool isKnownByHeaders(FileFormat format) {
  return format == FileFormat::Png || format == FileFormat::Tiff || format == FileFormat::Exr;
}

// What of such a file is missing its decoder takes for black; but its last bytes are a mark.
bool endsAsTarga(std::span<const std::uint8_t> file) {
  constexpr std::string_view mark("TRUEVISION-XFILE.\0", 18);
  return file.size() >= mark.size() && std::equal(mark.rbegin(), mark.rend(), file.rbegin(),
                                                  [](char a, std::uint8_t b) { return a == static_cast<char>(b); });
}

bool isDecodable(const ReadRequest& request) {
  try {
    decodedPicture(request, "");
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

bool isPictureThere(const std::string& path, FileFormat format, std::optional<PictureSize> size) {
  const MappedFile file(path);
  if (file.bytes().empty()) return false;
  const auto found = formatOfBytes(file.bytes());
  const bool isUsual = isKnownByHeaders(format) || format == FileFormat::Jpeg;
  if (isUsual ? found != format : found.has_value()) return false;
  bool isOtherKind = false;
  const ReadRequest request{file.bytes(), "", std::filesystem::path(path).extension().string()};
  const auto reader = imageFileModule(format).open(request, &isOtherKind, nullptr);
  if (!reader) return false;
  if (size && (reader->info().width != size->width || reader->info().height != size->height)) return false;
  if (format == FileFormat::Targa && !endsAsTarga(file.bytes())) return false;
  return isKnownByHeaders(format) || isDecodable(request);
}

FrameList missingFrames(const RenderPlan& plan, const FrameList& frames, const FramePattern& output, FileFormat format,
                        std::optional<PictureSize> size) {
  FrameList missing;
  for (std::uint64_t i = 0; i < frames.count(); ++i) {
    if (!isPictureThere(output.path(plan.frame(frames[i]).number), format, size)) missing.append(frames[i]);
  }
  return missing;
}

}  // namespace host
