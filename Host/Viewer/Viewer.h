// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewPicture.h"
#include "Host/Viewer/DisplayThread.h"
#include "Host/Viewer/PixelReadout.h"
#include "Host/Viewer/ViewGeometry.h"
#include "Host/Viewer/ViewSettings.h"

#include <QPointer>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

namespace host {

class NoticeCard;
class ViewerActions;

// Functions that are called when something happened, as long as the objects live that they belong to.
class Listeners {
 public:
  void add(QObject* owner, std::function<void()> call) { calls_.push_back({owner, std::move(call)}); }
  void tell() const {
    for (const auto& [owner, call] : calls_) {
      if (owner) call();
    }
  }

 private:
  struct Listener {
    QPointer<QObject> owner;
    std::function<void()> call;
  };
  std::vector<Listener> calls_;
};

// A picture to be looked at: zoom, comparison with what it was made of, channels, exposure, display transform, and the
// pixel under the pointer. Pictures and settings may be set at any rate: a thread makes the screen's pixels; until they
// are there the last ones are shown where they belong.
class Viewer : public QWidget {
 public:
  explicit Viewer(QWidget* parent = nullptr);
  ~Viewer() override;

  // Null shows none. A picture that is not full is shown in the full one's place.
  void setPicture(PreviewPictureRef picture);
  const PreviewPictureRef& picture() const { return picture_; }

  const ViewSettings& settings() const { return settings_; }
  void setSettings(const ViewSettings& settings);

  // Keys and menus; QWidget::actions() has all of them.
  ViewerActions& viewerActions() { return *actions_; }

  // Device pixels per pixel of the picture, at the present size; 0 without a picture.
  double zoom() const;
  void zoomTo(double factor);  // the middle stays
  void stepZoom(bool isIn);
  // In parts of the view, 1 its whole width or height; the picture moves the other way.
  void pan(double right, double down);
  // Before alone, until it is ended; the settings stay.
  void setPeeking(bool peeks);
  bool isPeeking() const { return isPeeking_; }

  // How the picture's colors are shown: "Linear Rec.709", an arrow, "sRGB"; "as it is". With why, where another way was
  // chosen that there is not.
  QString shownAs() const;
  QString shownAsReason() const;
  std::vector<DisplayView> views() { return thread_.views(); }

  // The pixel under the pointer.
  const std::optional<PixelReadout>& readout() const { return readout_; }

  // What is going on, on the picture: a render that takes its time, or why there is none. `seconds` have passed of it.
  enum class NoticeKind { None, Hint, Busy, Failed };
  void setNotice(const QString& text, NoticeKind kind, std::function<void()> cancel = {}, double seconds = 0);
  NoticeKind notice() const;

  // The settings, the picture, its zoom or what is said of it are others now; the pixel under the pointer is.
  void whenChanged(QObject* owner, std::function<void()> call) { changed_.add(owner, std::move(call)); }
  void whenPointed(QObject* owner, std::function<void()> call) { pointed_.add(owner, std::move(call)); }
  // What the window does.
  void setFullScreenCall(std::function<void()> call) { fullScreen_ = std::move(call); }
  void toggleFullScreen() const;
  // Space was pressed and let go without a drag. Without a call the key goes to the window.
  void setSpaceCall(std::function<void()> call) { space_ = std::move(call); }

  // Waits for the screen's pixels of the present state and shows them: for pictures of the window.
  void showNow();

  QSize sizeHint() const override { return {820, 600}; }
  QSize minimumSizeHint() const override { return {160, 120}; }

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  enum class Drag { None, Pan, Split };

  // Where the viewer begins among the window's device pixels, and a point among its own.
  QPoint deviceOrigin() const;
  QPointF deviceOf(QPointF point) const;
  ViewArea area() const;
  QRect place() const;
  CompareMode shownCompare() const;
  DisplayGround ground() const;
  bool isOnSplit(QPointF point) const;

  void order();
  void takeFrame();
  void zoomAt(double factor, QPointF point);
  void pointAt(std::optional<QPointF> point);
  void updateCursor();
  void paintImages(QPainter& painter, const QRect& place) const;
  void paintGrid(QPainter& painter, const QRect& place) const;
  void paintSplit(QPainter& painter, const QRect& place) const;

  PreviewPictureRef picture_;
  ViewSettings settings_;
  ViewerActions* actions_ = nullptr;
  NoticeCard* notice_ = nullptr;
  DisplayOrder ordered_;
  std::unique_ptr<DisplayFrame> frame_;
  std::shared_ptr<const DisplayFrame> whole_;  // the last frame that shows all of the present picture
  std::optional<PixelReadout> readout_;
  std::optional<QPointF> pointer_;
  QPointF dragged_;
  Drag drag_ = Drag::None;
  bool isPeeking_ = false;
  bool saysFailure_ = false;  // the notice is about the viewer's own work
  bool isSpaceDown_ = false;
  bool isSpaceTap_ = false;
  Listeners changed_, pointed_;
  std::function<void()> fullScreen_, space_;
  DisplayThread thread_;  // the last: it ends before what it calls
};

}  // namespace host
