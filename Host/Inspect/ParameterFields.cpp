// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterFields.h"

#include "GradientEditor/VRTGradientEditor.h"
#include "HistogramEditor/VRTHistogramEditor.h"
#include "Host/Inspect/GradientFields.h"
#include "Host/Inspect/LevelsFields.h"

namespace host {

ParameterFields* makeParameterFields(QCPort& port, NSTarnView* editor, const EntryField::Paste& paste,
                                     QWidget* parent) {
  auto* gradientPort = dynamic_cast<VRTGradientPort*>(&port);
  auto* gradient = dynamic_cast<VRTGradientEditor*>(editor);
  if (gradientPort && gradient) return new GradientFields(*gradientPort, *gradient, paste, parent);
  auto* levelsPort = dynamic_cast<VRTHistogramPort*>(&port);
  auto* levels = dynamic_cast<VRTHistogramEditor*>(editor);
  if (levelsPort && levels) return new LevelsFields(*levelsPort, *levels, paste, parent);
  return nullptr;
}

}  // namespace host
