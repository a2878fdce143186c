// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInBinary.h"

#include "Platform/Foundation/NSReason.h"

#include <elf.h>
#include <link.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>

// The header of the very object that this code is part of, placed by the linker: what a plug-in must match.
extern "C" __attribute__((visibility("hidden"))) const ElfW(Ehdr) __ehdr_start;

namespace {

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);

bool checkSegments(std::ifstream& file, std::uintmax_t size, const Header& header, std::string* reason) {
  if (header.e_phentsize != sizeof(Segment)) {
    return NSRefuse(reason, "the binary's program headers are malformed");
  }
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    Segment segment;
    file.seekg(static_cast<std::streamoff>(header.e_phoff + std::uint64_t{i} * sizeof segment));
    if (!file.read(reinterpret_cast<char*>(&segment), sizeof segment)) {
      return NSRefuse(reason, "the binary ends within its program headers");
    }
    if (segment.p_type == PT_LOAD && (segment.p_offset > size || segment.p_filesz > size - segment.p_offset)) {
      return NSRefuse(reason, "the binary is cut short");
    }
  }
  return true;
}

}  // namespace

bool QCCheckPlugInBinary(const std::string& path, std::string* reason) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  std::ifstream file(path, std::ios::binary);
  if (error || !file) {
    return NSRefuse(reason, "the binary cannot be read");
  }
  Header header;
  if (!file.read(reinterpret_cast<char*>(&header), sizeof header) ||
      std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) {
    return NSRefuse(reason, "the binary is not a shared object");
  }
  if (header.e_ident[EI_CLASS] != __ehdr_start.e_ident[EI_CLASS] ||
      header.e_ident[EI_DATA] != __ehdr_start.e_ident[EI_DATA] || header.e_machine != __ehdr_start.e_machine) {
    return NSRefuse(reason, "the binary was built for another kind of machine");
  }
  if (header.e_type != ET_DYN) {
    return NSRefuse(reason, "the binary is not a shared object");
  }
  return checkSegments(file, size, header, reason);
}
