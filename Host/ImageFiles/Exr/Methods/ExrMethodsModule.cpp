// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrHeaderBytes.h"
#include "Host/ImageFiles/Exr/ExrMethods.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Visibility.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfIO.h>
#include <ImfTiledInputFile.h>
#include <ImfTiledOutputFile.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <stdexcept>

// The library reads and writes files, not blocks: each block is made a file of one tile.
namespace host::exr {
namespace {

class MemoryInput : public Imf::IStream {
 public:
  explicit MemoryInput(std::span<const std::uint8_t> bytes) : IStream("block"), bytes_(bytes) {}

  bool read(char to[], int count) override {
    const auto size = static_cast<std::size_t>(count);
    if (count < 0 || at_ > bytes_.size() || size > bytes_.size() - at_) throw std::runtime_error(kDamaged);
    std::memcpy(to, bytes_.data() + at_, size);
    at_ += size;
    return at_ < bytes_.size();
  }
  std::uint64_t tellg() override { return at_; }
  void seekg(std::uint64_t position) override { at_ = static_cast<std::size_t>(position); }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t at_ = 0;
};

class MemoryOutput : public Imf::OStream {
 public:
  MemoryOutput() : OStream("block") {}

  void write(const char from[], int count) override {
    const std::size_t end = at_ + static_cast<std::size_t>(count);
    if (end > bytes_.size()) bytes_.resize(end);
    std::memcpy(bytes_.data() + at_, from, static_cast<std::size_t>(count));
    at_ = end;
  }
  std::uint64_t tellp() override { return at_; }
  void seekp(std::uint64_t position) override { at_ = static_cast<std::size_t>(position); }

  const Bytes& bytes() const { return bytes_; }

 private:
  Bytes bytes_;
  std::size_t at_ = 0;
};

Imf::PixelType typeOf(SampleKind kind) {
  return kind == SampleKind::UInt ? Imf::UINT : kind == SampleKind::Half ? Imf::HALF : Imf::FLOAT;
}

Imath::Box2i windowOf(const Methods::Job& job) {
  return {{0, 0}, {static_cast<int>(job.width) - 1, static_cast<int>(job.height) - 1}};
}

// Samples as files hold them: row by row, in each channel by channel.
Imf::FrameBuffer layOut(const Methods::Job& job, const std::uint8_t* samples) {
  std::size_t rowSize = 0;
  for (const Channel& channel : *job.channels) rowSize += job.width * channel.size();
  Imf::FrameBuffer frame;
  for (const Channel& channel : *job.channels) {
    const auto base = const_cast<char*>(reinterpret_cast<const char*>(samples));
    frame.insert(channel.name, Imf::Slice::Make(typeOf(channel.kind), base, windowOf(job), channel.size(), rowSize));
    samples += job.width * channel.size();
  }
  return frame;
}

class LibraryMethods : public Methods {
 public:
  bool unpack(const Job& job, std::span<const std::uint8_t> stored, std::span<std::uint8_t> samples,
              std::string* reason) override {
    try {
      const Bytes file = fileOf(job, stored);
      MemoryInput stream(file);
      Imf::TiledInputFile input(stream, 0);
      input.setFrameBuffer(layOut(job, samples.data()));
      input.readTile(0, 0);
      return true;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception&) {
      return NSRefuse(reason, kDamaged);
    }
  }

  bool pack(const Job& job, std::span<const std::uint8_t> samples, std::vector<std::uint8_t>* stored,
            std::string* reason) override {
    try {
      MemoryOutput stream;
      std::size_t start = 0;
      {
        Imf::Header header = headerOf(job);
        Imf::TiledOutputFile output(stream, header, 0);
        output.setFrameBuffer(layOut(job, samples.data()));
        start = static_cast<std::size_t>(stream.tellp()) + kTileHead;
        output.writeTile(0, 0);
      }
      stored->assign(stream.bytes().begin() + static_cast<std::ptrdiff_t>(start), stream.bytes().end());
      return true;
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      return NSRefuse(reason, error.what());
    }
  }

 private:
  static constexpr std::size_t kTileHead = 20;  // coordinates, levels and size

  static Bytes fileOf(const Job& job, std::span<const std::uint8_t> stored) {
    const Box box{0, 0, static_cast<std::int64_t>(job.width) - 1, static_cast<std::int64_t>(job.height) - 1};
    const HeaderValues values{job.compression, job.channels, box, box, 1, true};
    ByteWriter file;
    file.bytes(headerBytes(values, {}));
    file.number(file.size() + 8, 8);  // the table of offsets
    file.number(0, 8);
    file.number(0, 8);
    file.number(stored.size(), 4);
    Bytes bytes = file.take();
    bytes.insert(bytes.end(), stored.begin(), stored.end());
    return bytes;
  }

  static Imf::Header headerOf(const Job& job) {
    Imf::Header header(windowOf(job), windowOf(job));
    header.compression() = static_cast<Imf::Compression>(job.compression);
    if (job.level >= 0) header.dwaCompressionLevel() = job.level;
    for (const Channel& channel : *job.channels) {
      header.channels().insert(channel.name, Imf::Channel(typeOf(channel.kind), 1, 1, channel.isPerceptuallyLinear));
    }
    header.setTileDescription(
        Imf::TileDescription(static_cast<unsigned>(job.width), static_cast<unsigned>(job.height), Imf::ONE_LEVEL));
    return header;
  }
};

}  // namespace
}  // namespace host::exr

extern "C" TARN_EXPORT host::exr::Methods* VortoExrMethods();
host::exr::Methods* VortoExrMethods() {
  static host::exr::LibraryMethods methods;
  return &methods;
}
