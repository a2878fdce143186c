// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/EncodeColors.h"

namespace host {

AVRational avRational(const Rational& rational);

// The encoder of a target's frames, open. It counts frames: its unit of time is one frame of the target's rate.
// `hasHeader`: what decoders need first goes to the file's header. Throws Failure naming the file.
AvCodec openEncoder(const ClipTarget& target, const ClipContainer& container, const ClipStorage& storage,
                    const EncodeColors& colors, bool hasHeader);

}  // namespace host
