// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterClipboard.h"

#include "Host/Inspect/WindowText.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/States/StateFile.h"
#include "Host/Texts/ParameterText.h"

#include <QMimeData>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr qsizetype kLargestState = qsizetype{64} << 20;
constexpr qsizetype kLongestColor = 256;

QByteArray bytesOf(const PropertyList::Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size())};
}

Failure clipboardFailure(const QString& reason) {
  return {ExitCode::Input, windowText("The clipboard: %1").arg(reason).toStdString()};
}

QString kindText(StateKind kind) {
  switch (kind) {
    case StateKind::Gradient:
      return windowText("a gradient");
    case StateKind::Levels:
      return windowText("levels");
    case StateKind::Opaque:
      break;
  }
  return windowText("opaque data");
}

// One that was made of a byte is that byte's again, to the last digit.
double component(double value) {
  const double level = std::round(value * 255);
  return std::abs(value * 255 - level) < 1e-3 ? level / 255 : value;
}

QByteArray stateBytes(const QMimeData& data) {
  return data.hasFormat(kStateMimeType) ? data.data(kStateMimeType) : data.text().toUtf8();
}

std::optional<StateFile> stateFileOfMime(const QMimeData& data, StateKind wanted, std::string* reason) {
  const QByteArray bytes = stateBytes(data);
  if (bytes.isEmpty() || bytes.size() > kLargestState) {
    if (reason) {
      *reason =
          windowText(bytes.isEmpty() ? "it holds nothing that fits here" : "what it holds is too large").toStdString();
    }
    return std::nullopt;
  }
  return stateFileFromBytes({bytes.begin(), bytes.end()}, reason, wanted);
}

}  // namespace

std::unique_ptr<QMimeData> mimeOfState(StateKind kind, const PropertyList& state, StateNotation notation) {
  std::string reason;
  const auto list = PropertyListToBytes(state, PropertyListFormat::Xml, &reason);
  if (!list) throw Failure(ExitCode::Output, windowText("Copy: %1").arg(QString::fromStdString(reason)).toStdString());
  Notes notes;
  const bool isCss = notation == StateNotation::Css;
  const auto text = textOfParameter(kind, state, isCss ? TextFormat::Css : TextFormat::Text, notes, &reason);
  if (!text && isCss) {
    throw Failure(ExitCode::Output, windowText("Copy: %1").arg(QString::fromStdString(reason)).toStdString());
  }
  auto data = std::make_unique<QMimeData>();
  data->setData(kStateMimeType, bytesOf(*list));
  if (text) data->setText(QString::fromStdString(*text).trimmed());
  return data;
}

QColor shownColor(const Rgb& color) {
  const auto component = [](double value) { return value > 0 ? static_cast<float>(std::min(value, 1.0)) : 0.0f; };
  return QColor::fromRgbF(component(color[0]), component(color[1]), component(color[2]));
}

QString codeOfColor(const Rgb& color) {
  return shownColor(color).name();
}

std::unique_ptr<QMimeData> mimeOfColor(const Rgb& color) {
  auto data = std::make_unique<QMimeData>();
  data->setData(kColorMimeType, QByteArray::fromStdString(colorText(color)));
  data->setColorData(shownColor(color));
  data->setText(codeOfColor(color));
  return data;
}

std::optional<Rgb> colorOfText(const QString& text) {
  if (text.size() > kLongestColor) return std::nullopt;
  const std::string bytes = text.toStdString();
  try {
    TextReader reader(bytes);
    const TextColor color = readColor(reader);
    return reader.atEnd() ? std::optional(color.rgb) : std::nullopt;
  } catch (const TextFault&) {
    return std::nullopt;
  }
}

std::optional<Rgb> colorOfMime(const QMimeData& data) {
  if (data.hasFormat(kStateMimeType)) return std::nullopt;
  if (data.hasFormat(kColorMimeType)) {
    if (const auto color = colorOfText(QString::fromUtf8(data.data(kColorMimeType)))) return color;
  }
  if (data.hasColor()) {
    const auto color = qvariant_cast<QColor>(data.colorData());
    if (color.isValid()) return Rgb{component(color.redF()), component(color.greenF()), component(color.blueF())};
  }
  return data.hasText() && !data.hasUrls() ? colorOfText(data.text()) : std::nullopt;
}

PropertyList stateOfMime(const QMimeData& data, StateKind wanted) {
  std::string reason;
  auto file = stateFileOfMime(data, wanted, &reason);
  if (!file) throw clipboardFailure(QString::fromStdString(reason));
  if (file->kind != wanted) {
    throw clipboardFailure(
        windowText("it holds %1, this parameter takes %2").arg(kindText(file->kind), kindText(wanted)));
  }
  for (const std::string& note : file->notes) remark(note);
  return std::move(file->state);
}

bool holdsState(const QMimeData& data, StateKind wanted) {
  if (data.hasFormat(kStateMimeType)) return true;
  const auto file = stateFileOfMime(data, wanted, nullptr);
  return file && file->kind == wanted;
}

}  // namespace host
