// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The user's wishes, read from the environment at every call.

// ICU's name for the collation locale: from the first of LC_ALL, LC_COLLATE and LANG that is not empty. Empty, the root
// locale, when none is, and for "C" and "POSIX" with any suffix.
std::string CFCollationLocale();

// Names of the folders to look for, without ".lproj", best first: from LANGUAGE (a list with colons), else from the
// first of LC_ALL, LC_MESSAGES and LANG that is not empty. Each language gives its exact name, the same with hyphens,
// and then its less exact forms. None under "C" and "POSIX", which switch LANGUAGE off too.
std::vector<std::string> CFPreferredLanguages();

// The folder names for one language, as above; none for text that is no language name.
std::vector<std::string> CFLanguageForms(std::string_view language);
