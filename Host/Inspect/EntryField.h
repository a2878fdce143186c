// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>
#include <functional>
#include <optional>

class QLineEdit;
class QMimeData;
class QPainter;

namespace host {

// A framed line to type into, with a label or a small picture before it. Enter keeps what was typed, and so does going
// elsewhere; Escape brings back what was there. What cannot be kept stays red with the reason in its tooltip until it
// is mended; whoever goes elsewhere leaves the old text behind. Undo goes to the window, unless something is being
// typed.
class EntryField : public QWidget {
 public:
  // What a paste is offered to first; true when it was used up.
  using Paste = std::function<bool(const QMimeData& mime)>;
  using Picture = std::function<void(QPainter& painter, const QRectF& place)>;

  explicit EntryField(QWidget* parent);

  void setLabel(const QString& label);
  void setPicture(int width, Picture picture);  // in place of a label
  void setName(const QString& name);            // for tooltip and screen readers
  void setHint(const QString& hint);            // what else the tooltip says
  void setPaste(Paste paste) { paste_ = std::move(paste); }
  QString text() const;
  const QString& fault() const { return fault_; }  // why what was typed cannot be kept; empty when nothing is wrong
  QLineEdit& line() { return *line_; }
  void forgetTyping();  // what is being typed is for something else

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;

 protected:
  // Takes what was typed; why it cannot, or nothing. Whoever is told of it may destroy the field.
  virtual QString take(const QString& typed) = 0;
  virtual QString shownText() const = 0;  // what is there
  virtual QString help() const;           // for the tooltip, beside the name

  void showValue();      // shown text and tooltip, unless something is being typed
  void showValueAnew();  // in any case
  bool isTyping() const;
  // Takes what was typed, if anything. True when nothing is left to be mended, or the field has been destroyed.
  bool keep(bool goesElsewhere = false);

  virtual bool isOwnKey(int key) const;

  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void setFault(const QString& fault);
  void updateToolTip();
  int labelWidth() const;
  bool filterKey(QEvent& event);

  QLineEdit* line_;
  QString label_, name_, hint_, fault_;
  int pictureWidth_ = 0;
  Picture picture_;
  Paste paste_;
};

}  // namespace host
