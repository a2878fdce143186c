// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/InputRoles.h"

#include "Host/Inspect/WindowText.h"

#include <optional>

namespace host {
namespace {

QStringList namesOf(EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return {windowText("Input")};
    case EffectKind::Transition:
      return {windowText("From"), windowText("To")};
    case EffectKind::BlendMode:
      return {windowText("Background"), windowText("Foreground")};
    case EffectKind::Generator:
      break;
  }
  return {};
}

// Whether `a` fits better than `b`.
bool fitsBetter(qsizetype a, qsizetype b, qsizetype available) {
  const bool isEnough = a <= available;
  if (isEnough != (b <= available)) return isEnough;
  return isEnough ? a > b : a < b;
}

}  // namespace

InputRoles inputRolesFor(const QCPatch& patch, std::size_t available) {
  std::optional<InputRoles> best;
  for (const EffectKind kind : effectKindsOf(patch)) {
    InputRoles roles{kind, namesOf(kind)};
    if (!best || fitsBetter(roles.names.size(), best->names.size(), static_cast<qsizetype>(available))) {
      best = std::move(roles);
    }
  }
  return best.value_or(InputRoles());
}

}  // namespace host
