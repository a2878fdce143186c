// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// Gives a script to sbatch, with the jobs ("17") that must have succeeded before, or none: the number of the job. When
// one of those fails, it is taken out of the queue.
// Throws Failure when there is no sbatch, or it refuses, which it says itself.
std::string submitScript(const std::string& path, const std::string& after);

}  // namespace host
