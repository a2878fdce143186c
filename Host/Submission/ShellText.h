// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// One word of a command as sh reads it, whatever it holds but a zero byte: as it is where that is safe, else in quotes.
std::string shellWord(const std::string& text);

// One word of a #SBATCH line as sbatch reads it. Throws Failure for a text with a line break, which none can hold.
std::string batchWord(const std::string& text);

// A file's name in which sbatch replaces nothing: it takes %j and the like for numbers. Throws Failure for
// one with a backslash, which sbatch would take out.
std::string batchFileName(const std::string& path);

}  // namespace host
