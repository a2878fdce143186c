// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// For cases that compare texts: from here on the process reads them in English, whoever runs the tests.
inline void readEnglishTexts() {
  unsetenv("LANGUAGE");
  setenv("LC_ALL", "C", 1);
}
