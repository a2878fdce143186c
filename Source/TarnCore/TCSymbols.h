// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

// Names code addresses of this process. Functions of a module that still has its symbol table are found by it, hidden
// and static ones too; of a stripped module only the exported ones are known.
class VortoSymbolTable {
 public:
  struct Symbol {
    std::string name;
    std::uintptr_t start;
  };

  VortoSymbolTable();
  ~VortoSymbolTable();
  std::optional<Symbol> find(std::uintptr_t address);

 private:
  class Module;
  std::map<std::string, std::unique_ptr<Module>> modules_;  // by path, each opened once
};
