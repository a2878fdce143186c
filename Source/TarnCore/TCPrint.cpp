// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPrint.h"

#include "TarnCore/TCStack.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

std::atomic<const char*> programName = "UNKNOWN";

std::FILE* OpenLogFile() {
  char name[64];
  std::snprintf(name, sizeof name, "/tmp/output.%d.log", static_cast<int>(getpid()));
  // Neither a link that somebody else put there, symbolic or hard, nor a pipe: the file is emptied only once it is
  // sure.
  const int file = open(name, O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666);
  struct stat about {};
  const bool plain =
      file >= 0 && fstat(file, &about) == 0 && S_ISREG(about.st_mode) && about.st_nlink == 1 && ftruncate(file, 0) == 0;
  std::FILE* stream = plain ? fdopen(file, "w") : nullptr;
  if (stream == nullptr && file >= 0) close(file);
  return stream;
}

// Opened by the first print, whichever thread comes first; where that fails, by a later one.
std::FILE* LogFile() {
  static std::atomic<std::FILE*> opened = OpenLogFile();
  std::FILE* known = opened.load(std::memory_order_acquire);
  if (known != nullptr) return known;
  std::FILE* again = OpenLogFile();
  if (opened.compare_exchange_strong(known, again, std::memory_order_acq_rel)) return again;
  if (again != nullptr) std::fclose(again);
  return known;
}

}  // namespace

int VortoPrintVA(const char* format, std::va_list args) {
  static const bool useLogFile = std::getenv("tcPrintUseLogFile") != nullptr;
  if (!useLogFile) return std::vprintf(format, args);
  std::FILE* const logFile = LogFile();
  if (logFile == nullptr) return -1;
  const int written = std::vfprintf(logFile, format, args);
  std::fflush(logFile);
  return written;
}

int VortoPrint(const char* format, ...) {
  std::va_list args;
  va_start(args, format);
  const int written = VortoPrintVA(format, args);
  va_end(args);
  return written;
}

int VortoPrintIndent(unsigned level, const char* format, ...) {
  if (level != 0) {
    const int width = static_cast<int>(std::min<std::uint64_t>(std::uint64_t{2} * level, INT_MAX));
    VortoPrint("%*.*s", width, width, "");
  }
  std::va_list args;
  va_start(args, format);
  const int written = VortoPrintVA(format, args);
  va_end(args);
  return written;
}

void VortoUnreachable(const char* file, int line, const char* message) {
  // The format takes the path and the line only; kept in a variable so that compilers accept the argument behind them.
  const char* format = "File %s, line %d should not have been reached:\n\t";
  VortoPrint(format, file, line, message);
  std::fflush(stdout);
  std::abort();
}

void VortoPrintStackStart(const char* name) {
  programName = name;
}

void VortoPrintStackStop() {}

void VortoPrintStack(int firstFrame, int /*reserved*/, int detailed) {
  constexpr int kThisFrame = 1;
  std::vector<CrawlFrame> frames = VortoCollectFrames(kThisFrame);
  VortoPrintFrames(frames, programName, firstFrame, detailed);
}
