// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

struct NewEffectOptions {
  std::string name;             // what people read
  std::string kind = "filter";  // one of newEffectKinds()
  std::string identifier;       // of the project; made of the name when empty
  std::string output;           // the folder to make; named by the identifier when empty
};

std::vector<std::string> newEffectKinds();

// Writes a project of an effect of that kind, from the templates in share/vorto/new-effect, into a folder that is not
// there yet, and prints what to do with it. Throws Failure, with nothing written, for a name or identifier that cannot
// be used, and when there is something of the folder's name already.
void runNewEffect(const NewEffectOptions& options);

}  // namespace host
