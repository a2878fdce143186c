// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ValueEditors.h"

#include "Host/Inspect/ColorEditor.h"
#include "Host/Inspect/NumberEditor.h"
#include "Host/Inspect/WheelGuard.h"
#include "Host/Rendering/PortKinds.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace host {
namespace {

class BooleanEditor : public QCheckBox {
 public:
  BooleanEditor(QCBooleanPort& port, QWidget* parent)
      : QCheckBox(parent), watch_(port, [this, &port] { setChecked(port.booleanValue()); }) {
    setChecked(port.booleanValue());
    QObject::connect(this, &QCheckBox::clicked, this, [&port](bool on) { port.setBooleanValue(on); });
  }

 private:
  PortWatch watch_;
};

class MenuEditor : public QComboBox {
 public:
  MenuEditor(QCIndexPort& port, const std::vector<std::string>& entries, QWidget* parent)
      : QComboBox(parent), watch_(port, [this, &port] { show(port); }) {
    for (const std::string& entry : entries) addItem(QString::fromStdString(entry));
    guardWheel(*this);
    show(port);
    QObject::connect(this, &QComboBox::activated, this,
                     [&port](int index) { port.setIndexValue(static_cast<std::uint32_t>(index)); });
  }

 private:
  void show(const QCIndexPort& port) {
    const bool known = port.indexValue() < static_cast<std::uint32_t>(count());
    setCurrentIndex(known ? static_cast<int>(port.indexValue()) : -1);
  }
  PortWatch watch_;
};

class StringEditor : public QLineEdit {
 public:
  StringEditor(QCStringPort& port, QWidget* parent) : QLineEdit(parent), watch_(port, [this, &port] { show(port); }) {
    show(port);
    QObject::connect(this, &QLineEdit::editingFinished, this, [this, &port] {
      if (text().toStdString() != port.stringValue()) port.setStringValue(text().toStdString());
    });
  }

 private:
  void show(const QCStringPort& port) { setText(QString::fromStdString(port.stringValue())); }
  PortWatch watch_;
};

QWidget* newEditor(QCPort& port, QWidget* parent) {
  switch (portKindOf(port)) {
    case PortKind::Number:
      return new NumberEditor(port, parent);
    case PortKind::Boolean:
      return new BooleanEditor(dynamic_cast<QCBooleanPort&>(port), parent);
    case PortKind::Index:
      if (const auto menu = portMenu(port); !menu.empty()) {
        return new MenuEditor(dynamic_cast<QCIndexPort&>(port), menu, parent);
      }
      return new NumberEditor(port, parent);
    case PortKind::Color:
      return new ColorEditor(dynamic_cast<QCColorPort&>(port), parent);
    case PortKind::String:
      return new StringEditor(dynamic_cast<QCStringPort&>(port), parent);
    default:
      return nullptr;
  }
}

}  // namespace

QWidget* makeValueEditor(QCPort& port, QWidget* parent) {
  QWidget* editor = newEditor(port, parent);
  if (editor) editor->setAccessibleName(QString::fromStdString(port.name()));
  return editor;
}

}  // namespace host
