// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tiffio.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host::tiff {

// The library's handle on bytes in memory. What it has to say about errors is kept, warnings are not.
class TiffFile {
 public:
  // To read; the bytes must outlive it.
  explicit TiffFile(std::span<const std::uint8_t> bytes);
  // To write into memory of its own.
  TiffFile();
  ~TiffFile();
  TiffFile(const TiffFile&) = delete;
  TiffFile& operator=(const TiffFile&) = delete;

  TIFF* get() const { return tiff_; }  // null when it could not be opened
  bool hasFailed() const { return !error_.empty(); }
  const std::string& error() const { return error_; }  // the first one
  const std::vector<std::uint8_t>& written() const { return written_; }

  // A field of one value, or what the format says it is when it is not there.
  template <class Value>
  Value field(std::uint32_t tag, Value otherwise = {}) const {
    Value value{};
    return TIFFGetFieldDefaulted(tiff_, tag, &value) == 1 ? value : otherwise;
  }

 private:
  void open(const char* mode);
  static int keepError(TIFF*, void* file, const char* module, const char* format, va_list arguments);
  static int dropWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }
  static tmsize_t read(thandle_t file, void* to, tmsize_t size);
  static tmsize_t write(thandle_t file, void* from, tmsize_t size);
  static toff_t seek(thandle_t file, toff_t offset, int whence);
  static int map(thandle_t file, void** base, toff_t* size);
  static void unmap(thandle_t, void*, toff_t) {}
  static int close(thandle_t) { return 0; }
  static toff_t size(thandle_t file);
  std::uint64_t end() const { return isWritten_ ? written_.size() : bytes_.size(); }

  std::span<const std::uint8_t> bytes_;
  std::vector<std::uint8_t> written_;
  bool isWritten_ = false;
  std::uint64_t at_ = 0;
  std::string error_;
  TIFF* tiff_ = nullptr;
};

}  // namespace host::tiff
