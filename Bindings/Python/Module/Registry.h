// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace vorto::python {

// Loads the effects of this process, on the first call: those of the folders in which the host looks. Where the host
// itself runs this module it has them already, and says so first.
void loadEffectsOnce(bool areThere = false);

}  // namespace vorto::python
