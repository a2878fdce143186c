// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Inspect/ParameterDocument.h"

#include <QStringList>
#include <string>

class QCPatch;

namespace host {

// The arguments of "vorto render" for what an inspector shows: the effect, its inputs and how they are taken, its time
// and rate, and its parameters as they are now. What has a state is written into `folder`, from where the arguments
// name it. Throws Failure when it cannot be written.
QStringList renderArguments(const InspectOptions& options, const QCPatch& patch, const ParameterDocument& document,
                            const std::string& folder);

}  // namespace host
