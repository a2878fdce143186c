// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// Why a file is refused where nothing better is known.
inline constexpr const char* kDamaged = "it is damaged or cut short";

}  // namespace host
