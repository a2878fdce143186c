// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/Files/OutputFile.h"

#include <functional>

namespace host {

// The file that a muxer writes: beside the target, and in its place only once it is complete.
class MuxFile {
 public:
  // `goesOn` is called for each part that is written or read. Throws Failure when there can be no such file.
  MuxFile(const std::string& path, std::function<void()> goesOn);
  ~MuxFile();
  MuxFile(const MuxFile&) = delete;
  MuxFile& operator=(const MuxFile&) = delete;

  // Makes it the file of a muxer, which may open it a second time to read what it wrote. Outlives the muxer.
  void connect(AVFormatContext& muxer);

  const std::string& fault() const { return file_.fault(); }  // why writing failed; empty when it did not
  void commit();                                              // throws Failure

 private:
  // One position in the file.
  struct Cursor {
    MuxFile* file = nullptr;
    std::int64_t position = 0;
    AVIOContext* context = nullptr;
  };
  static int read(void* cursor, std::uint8_t* bytes, int size);
  static int write(void* cursor, std::uint8_t* bytes, int size);
  static std::int64_t seek(void* cursor, std::int64_t offset, int whence);
  static int openAgain(AVFormatContext* muxer, AVIOContext** context, const char* url, int flags,
                       AVDictionary** options);
  static int closeAgain(AVFormatContext* muxer, AVIOContext* context);
  static bool open(Cursor& cursor, bool isWritten);
  static void close(Cursor& cursor);

  OutputFile file_;
  std::function<void()> goesOn_;
  std::int64_t size_ = 0;
  Cursor writing_;
  Cursor reading_;
};

}  // namespace host
