// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/MuxFile.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

namespace host {
namespace {

constexpr int kBufferBytes = 1 << 20;

}  // namespace

MuxFile::MuxFile(const std::string& path, std::function<void()> goesOn) : file_(path), goesOn_(std::move(goesOn)) {
  writing_.file = this;
  reading_.file = this;
  if (!open(writing_, true)) throw std::bad_alloc();
}

MuxFile::~MuxFile() {
  close(reading_);
  close(writing_);
}

bool MuxFile::open(Cursor& cursor, bool isWritten) {
  cursor.position = 0;
  auto* buffer = static_cast<unsigned char*>(av_malloc(kBufferBytes));
  cursor.context =
      buffer ? avio_alloc_context(buffer, kBufferBytes, isWritten ? 1 : 0, &cursor, read, write, seek) : nullptr;
  if (!cursor.context) av_free(buffer);
  return cursor.context;
}

void MuxFile::close(Cursor& cursor) {
  if (!cursor.context) return;
  av_freep(static_cast<void*>(&cursor.context->buffer));
  avio_context_free(&cursor.context);
}

void MuxFile::connect(AVFormatContext& muxer) {
  muxer.pb = writing_.context;
  muxer.flags |= AVFMT_FLAG_CUSTOM_IO;
  muxer.opaque = this;
  muxer.io_open = openAgain;
  muxer.io_close2 = closeAgain;
}

int MuxFile::openAgain(AVFormatContext* muxer, AVIOContext** context, const char* /*url*/, int flags,
                       AVDictionary** /*options*/) {
  auto* file = static_cast<MuxFile*>(muxer->opaque);
  if ((flags & AVIO_FLAG_WRITE) != 0 || file->reading_.context) return AVERROR(ENOSYS);
  if (!open(file->reading_, false)) return AVERROR(ENOMEM);
  *context = file->reading_.context;
  return 0;
}

int MuxFile::closeAgain(AVFormatContext* muxer, AVIOContext* /*context*/) {
  close(static_cast<MuxFile*>(muxer->opaque)->reading_);
  return 0;
}

int MuxFile::read(void* opaque, std::uint8_t* bytes, int size) {
  auto* cursor = static_cast<Cursor*>(opaque);
  cursor->file->goesOn_();
  const std::size_t count =
      cursor->file->file_.read(static_cast<std::uint64_t>(cursor->position), {bytes, static_cast<std::size_t>(size)});
  if (count == 0) return AVERROR_EOF;
  cursor->position += static_cast<std::int64_t>(count);
  return static_cast<int>(count);
}

int MuxFile::write(void* opaque, std::uint8_t* bytes, int size) {
  auto* cursor = static_cast<Cursor*>(opaque);
  MuxFile& file = *cursor->file;
  file.goesOn_();
  if (!file.file_.write(static_cast<std::uint64_t>(cursor->position), {bytes, static_cast<std::size_t>(size)})) {
    return AVERROR(EIO);
  }
  cursor->position += size;
  file.size_ = std::max(file.size_, cursor->position);
  return size;
}

std::int64_t MuxFile::seek(void* opaque, std::int64_t offset, int whence) {
  auto* cursor = static_cast<Cursor*>(opaque);
  if (whence == AVSEEK_SIZE) return cursor->file->size_;
  const int from = whence & ~AVSEEK_FORCE;
  const std::int64_t start = from == SEEK_CUR ? cursor->position : from == SEEK_END ? cursor->file->size_ : 0;
  if (start + offset < 0) return AVERROR(EINVAL);
  return cursor->position = start + offset;
}

void MuxFile::commit() {
  file_.commit();
}

}  // namespace host
