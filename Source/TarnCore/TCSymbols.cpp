// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCSymbols.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <span>

// The symbol table of one file, mapped for as long as the trace lasts. The file is read with every bound checked: it
// may have been replaced since it was loaded.
class VortoSymbolTable::Module {
 public:
  explicit Module(const char* path) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return;
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0) {
      void* bytes = mmap(nullptr, static_cast<std::size_t>(status.st_size), PROT_READ, MAP_PRIVATE, file, 0);
      if (bytes != MAP_FAILED) file_ = {static_cast<const char*>(bytes), static_cast<std::size_t>(status.st_size)};
    }
    close(file);
    readHeader();
  }

  ~Module() {
    if (!file_.empty()) munmap(const_cast<char*>(file_.data()), file_.size());
  }

  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  // `address` counts from the module's load address.
  std::optional<Symbol> find(std::uintptr_t address) const {
    for (std::size_t i = 0; i < symbolCount_; ++i) {
      ElfW(Sym) symbol{};
      read(symbols_ + i * sizeof symbol, symbol);
      const bool isFunction = (symbol.st_info & 0xF) == STT_FUNC && symbol.st_shndx != SHN_UNDEF;
      if (isFunction && address >= symbol.st_value && address - symbol.st_value < symbol.st_size) {
        return Symbol{nameAt(symbol.st_name), symbol.st_value};
      }
    }
    return std::nullopt;
  }

 private:
  template <typename Record>
  bool read(std::size_t offset, Record& record) const {
    if (file_.size() < sizeof record || offset > file_.size() - sizeof record) return false;
    std::memcpy(&record, file_.data() + offset, sizeof record);
    return true;
  }

  bool holds(const ElfW(Shdr) & section) const {
    return section.sh_offset <= file_.size() && section.sh_size <= file_.size() - section.sh_offset;
  }

  void readHeader() {
    ElfW(Ehdr) header;
    if (!read(0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return;
    if (header.e_shentsize != sizeof(ElfW(Shdr)) || header.e_shoff > file_.size()) return;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
      ElfW(Shdr) table;
      ElfW(Shdr) names;
      if (!read(header.e_shoff + i * sizeof table, table)) return;
      if (table.sh_type != SHT_SYMTAB || table.sh_link >= header.e_shnum) continue;
      if (!read(header.e_shoff + table.sh_link * sizeof names, names) || !holds(table) || !holds(names)) return;
      symbols_ = table.sh_offset;
      symbolCount_ = table.sh_size / sizeof(ElfW(Sym));
      names_ = file_.subspan(names.sh_offset, names.sh_size);
      return;
    }
  }

  std::string nameAt(std::size_t offset) const {
    if (offset >= names_.size()) return {};
    return std::string(names_.data() + offset, strnlen(names_.data() + offset, names_.size() - offset));
  }

  std::span<const char> file_;
  std::size_t symbols_ = 0;
  std::size_t symbolCount_ = 0;
  std::span<const char> names_;
};

VortoSymbolTable::VortoSymbolTable() = default;
VortoSymbolTable::~VortoSymbolTable() = default;

std::optional<VortoSymbolTable::Symbol> VortoSymbolTable::find(std::uintptr_t address) {
  Dl_info info{};
  link_map* map = nullptr;
  if (dladdr1(reinterpret_cast<void*>(address), &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0) {
    return std::nullopt;
  }
  const bool isProgram = map == nullptr || map->l_name == nullptr || *map->l_name == '\0';
  const char* path = isProgram ? "/proc/self/exe" : map->l_name;
  auto& module = modules_[path];
  if (!module) module = std::make_unique<Module>(path);
  const std::uintptr_t base = map == nullptr ? 0 : map->l_addr;
  if (auto symbol = module->find(address - base)) {
    symbol->start += base;
    if (!symbol->name.empty()) return symbol;
  }
  if (info.dli_sname == nullptr) return std::nullopt;
  return Symbol{info.dli_sname, reinterpret_cast<std::uintptr_t>(info.dli_saddr)};
}
