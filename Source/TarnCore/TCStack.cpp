// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCStack.h"

#include "TarnCore/TCPrint.h"
#include "TarnCore/TCSymbols.h"

#include <cxxabi.h>
#include <unistd.h>
#include <unwind.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using Name = std::unique_ptr<char, CrawlFree>;

struct Walk {
  std::vector<CrawlFrame> frames;
  VortoSymbolTable symbols;
  int skip;
};

Name WithUnderscore(const std::string& symbol) {
  auto* name = static_cast<char*>(std::malloc(symbol.size() + 2));
  if (name != nullptr) {
    name[0] = '_';
    std::memcpy(name + 1, symbol.c_str(), symbol.size() + 1);
  }
  return Name(name);
}

_Unwind_Reason_Code VisitFrame(_Unwind_Context* context, void* argument) {
  auto& walk = *static_cast<Walk*>(argument);
  if (walk.skip > 0) {
    --walk.skip;
    return _URC_NO_REASON;
  }
  int interrupted = 0;
  CrawlFrame frame;
  frame.programCounter = _Unwind_GetIPInfo(context, &interrupted);
  if (frame.programCounter == 0) return _URC_END_OF_STACK;
  frame.frameAddress = _Unwind_GetCFA(context);
  // A return address may lie behind the last instruction of its function: the call itself is one byte before.
  const std::uintptr_t call = frame.programCounter - (interrupted != 0 ? 0 : 1);
  if (const auto symbol = walk.symbols.find(call)) {
    frame.symbolName = WithUnderscore(symbol->name);
    frame.offset = frame.programCounter - symbol->start;
  }
  walk.frames.push_back(std::move(frame));
  return walk.frames.size() < kVortoMaximumFrames ? _URC_NO_REASON : _URC_END_OF_STACK;
}

// Turns a symbol into what people read. The buffer is allocated once for a trace and grows with the names.
class Demangler {
 public:
  const char* readable(const char* symbol) {
    if (*symbol == '-' || *symbol == '+' || *symbol == '\0' || !buffer_) return symbol;
    int status = 0;
    char* text = abi::__cxa_demangle(symbol + 1, buffer_.get(), &size_, &status);
    if (status != 0 || text == nullptr) return symbol;
    (void)buffer_.release();  // the demangler may have moved it
    buffer_.reset(text);
    return text;
  }

 private:
  std::size_t size_ = 1024;
  Name buffer_{static_cast<char*>(std::malloc(size_))};
};

void PrintFrame(const CrawlFrame& frame, Demangler& demangler, bool detailed) {
  if (detailed) VortoPrint("\t0x%08lX", frame.frameAddress);
  VortoPrint("\t0x%08lX", frame.programCounter);
  if (!frame.symbolName) {
    VortoPrint("\t<UNKNOWN>\n");
    return;
  }
  const char* name = demangler.readable(frame.symbolName.get());
  if (detailed) {
    VortoPrint("\t%s +0x%lX\n", name, frame.offset);
  } else {
    VortoPrint("\t%s\n", name);
  }
}

}  // namespace

__attribute__((noinline)) std::vector<CrawlFrame> VortoCollectFrames(int skip) {
  constexpr int kThisFrame = 1;
  Walk walk{{}, {}, skip + kThisFrame};
  _Unwind_Backtrace(VisitFrame, &walk);
  return std::move(walk.frames);
}

void VortoPrintFrames(std::vector<CrawlFrame>& frames, const char* programName, int firstFrame, int detailed) {
  const int process = static_cast<int>(getpid());
  if (programName != nullptr) {
    VortoPrint("Printing stack for process %d (%s):\n", process, programName);
  } else {
    VortoPrint("Printing stack for process %d:\n", process);
  }
  if (detailed != 0) VortoPrint("\tFrame\t\tPC\t\t\tCaller +offset\n");
  Demangler demangler;
  for (std::size_t i = static_cast<std::size_t>(std::max(firstFrame, 0)); i < frames.size(); ++i) {
    PrintFrame(frames[i], demangler, detailed != 0);
    frames[i].symbolName.reset();
  }
}
