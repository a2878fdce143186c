// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/ColorText.h"
#include "Host/Texts/StateKind.h"
#include "Platform/Foundation/PropertyList.h"

#include <QColor>
#include <memory>
#include <optional>

class QMimeData;

namespace host {

// Parameters and colors as they travel over the clipboard and in drags, between windows and to other programs.

inline constexpr const char* kStateMimeType = "application/x-vorto-state";  // a property list, XML
inline constexpr const char* kColorMimeType = "application/x-vorto-color";  // a color as text, to the last bit

// A state as it is, and, where there is such a text, as people and other programs read it: levels and gradients in our
// own notation, or a gradient in CSS, which throws Failure when it cannot be said there.
enum class StateNotation { Own, Css };
std::unique_ptr<QMimeData> mimeOfState(StateKind kind, const PropertyList& state,
                                       StateNotation notation = StateNotation::Own);
// As color data, and as the text #rrggbb, both limited to 0 to 1.
std::unique_ptr<QMimeData> mimeOfColor(const Rgb& color);

// The one color that there is: color data, or a text that is nothing but a color (ColorText.h).
std::optional<Rgb> colorOfMime(const QMimeData& data);
std::optional<Rgb> colorOfText(const QString& text);

// The state that there is, ours or any text that is read as one; throws Failure with the reason, also when it is of
// another kind than the wanted one.
PropertyList stateOfMime(const QMimeData& data, StateKind wanted);
// Whether there is one, so that a field for numbers leaves the text to it.
bool holdsState(const QMimeData& data, StateKind wanted);

QColor shownColor(const Rgb& color);    // limited to 0 to 1
QString codeOfColor(const Rgb& color);  // "#rrggbb", of the limited color

}  // namespace host
