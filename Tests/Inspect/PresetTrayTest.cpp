// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PresetTray.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/MessageBar.h"
#include "Host/Inspect/PresetDelegate.h"
#include "Host/Inspect/PresetModel.h"
#include "Host/Inspect/PresetView.h"
#include "Host/Presets/PresetLibrary.h"
#include "Host/Texts/GradientText.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMimeData>

namespace {

namespace fs = std::filesystem;
using host::StateKind;

PropertyList gradient(const std::string& text) {
  host::Notes notes;
  return host::stateOfStops(host::gradientOfText(text, notes));
}

class PresetTrayTest : public testing::Test {
 protected:
  PresetTrayTest() {
    readEnglishTexts();
    for (const char* const name : {"Night", "Noon", "Dusk"}) {
      host::savePreset(folders, StateKind::Gradient, name, "Hours", gradient("navy, orange"), host::SameName::Refused);
    }
    host::savePreset(folders, StateKind::Gradient, "Loose", "", gradient("red, blue"), host::SameName::Refused);
  }

  // Shown, with all that is waiting done.
  host::PresetTray& tray() {
    if (!tray_) {
      tray_ = std::make_unique<host::PresetTray>(
          StateKind::Gradient,
          host::PresetTray::Callbacks{[this] { return present; },
                                      [this](const PropertyList& state) { applied.push_back(state); }},
          nullptr, folders);
      tray_->resize(236, 400);
      tray_->show();
      tray_->activateWindow();
      inspect_test::handleEvents();
    }
    return *tray_;
  }
  template <class Part>
  Part& part() {
    for (QObject* each : tray().findChildren<QObject*>()) {
      if (auto* found = dynamic_cast<Part*>(each)) return *found;
    }
    throw std::runtime_error("there is no such part");
  }
  host::PresetView& view() { return part<host::PresetView>(); }
  host::PresetModel& model() { return part<host::PresetModel>(); }
  std::string shown() {
    std::string text;
    for (int row = 0; row < model().rowCount(); ++row) {
      const QModelIndex index = model().index(row);
      const bool isHeading = index.data(host::PresetModel::kHeadingRole).toBool();
      text += (row > 0 ? " " : "") + index.data().toString().toStdString() + (isHeading ? ":" : "");
    }
    return text;
  }
  QModelIndex named(const QString& name) {
    for (int row = 0; row < model().rowCount(); ++row) {
      if (model().index(row).data() == name) return model().index(row);
    }
    return {};
  }
  void click(const QString& name) {
    view().scrollTo(named(name));
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, view().visualRect(named(name)).center() - QPoint(0, 8));
  }
  void clickStar(const QString& name) {
    const QPoint place = host::PresetDelegate::starRect(view().visualRect(named(name))).center();
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, place);
  }
  QAction& action(const char* text) {
    for (QAction* each : tray().findChildren<QAction*>()) {
      if (each->text() == text) return *each;
    }
    throw std::runtime_error(text);
  }
  bool drop(const QStringList& paths) {
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& path : paths) urls.append(QUrl::fromLocalFile(path));
    data.setUrls(urls);
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&tray(), &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&tray(), &event);
    while (tray().isImporting()) inspect_test::handleEvents();
    return true;
  }

  const TemporaryFolder scratch;
  const host::PresetFolders folders{"", scratch.path("user")};
  std::optional<PropertyList> present;
  std::vector<PropertyList> applied;

 private:
  std::unique_ptr<host::PresetTray> tray_;
};

}  // namespace

TEST_F(PresetTrayTest, AppliesByClickAndByKeyboard) {
  EXPECT_EQ(tray().isVisible(), true);
  EXPECT_EQ(shown(), "My Presets: Loose Hours: Dusk Night Noon");
  click("Loose");
  ASSERT_EQ(applied.size(), 1u);
  EXPECT_EQ(applied[0], gradient("red, blue"));
  const QPoint place = view().visualRect(named("Loose")).center();
  QTest::mouseDClick(view().viewport(), Qt::LeftButton, {}, place);
  QTest::mouseRelease(view().viewport(), Qt::LeftButton, {}, place);
  QTest::keyClick(&view(), Qt::Key_Down);  // past a heading
  EXPECT_EQ(applied.size(), 2u) << "the keyboard goes about without applying anything";
  EXPECT_EQ(view().currentIndex(), named("Dusk"));
  QTest::keyClick(&view(), Qt::Key_Right);
  EXPECT_EQ(view().currentIndex(), named("Night"));
  QTest::keyClick(&view(), Qt::Key_Return);
  ASSERT_EQ(applied.size(), 3u);
  EXPECT_EQ(applied[2], gradient("navy, orange"));
  QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, view().visualRect(model().index(0)).center());
  EXPECT_EQ(applied.size(), 3u) << "a heading is none";
}

TEST_F(PresetTrayTest, SearchesAndFilters) {
  part<QLineEdit>().setText("n\xC3\xB6 hours");
  EXPECT_EQ(shown(), "Hours: Noon");
  part<QLineEdit>().setText("\xC3\x97");
  EXPECT_EQ(shown(), "");
  QTest::keyClick(&part<QLineEdit>(), Qt::Key_Escape);
  EXPECT_EQ(shown(), "My Presets: Loose Hours: Dusk Night Noon");
  QTest::keyClick(&part<QLineEdit>(), Qt::Key_Down);
  EXPECT_EQ(view().currentIndex(), named("Loose")) << "down to what was found";
  clickStar("Noon");
  EXPECT_TRUE(applied.empty());
  view().setCurrentIndex(named("Loose"));
  action("Add to Favorites").trigger();
  part<QComboBox>().setCurrentIndex(1);
  EXPECT_EQ(shown(), "My Presets: Loose Hours: Noon");
  clickStar("Noon");
  EXPECT_EQ(shown(), "My Presets: Loose");
  part<QComboBox>().setCurrentText("Hours");
  EXPECT_EQ(shown(), "Hours: Dusk Night Noon");
  EXPECT_EQ(host::readPresets(folders, StateKind::Gradient).entries[0].isFavorite, true) << "kept in a file";
}

TEST_F(PresetTrayTest, SavesRenamesAndDeletes) {
  tray().savePresentAs("Mine", "");
  EXPECT_TRUE(part<host::MessageBar>().isVisible()) << "there is nothing to save";
  present = gradient("#123456, lime");
  tray().savePresentAs("Mine", "");
  EXPECT_FALSE(part<host::MessageBar>().isVisible()) << qPrintable(part<host::MessageBar>().text());
  EXPECT_EQ(view().currentIndex(), named("Mine"));
  QTest::keyClick(&view(), Qt::Key_F2);
  auto* field = view().viewport()->findChild<QLineEdit*>();
  ASSERT_NE(field, nullptr);
  field->setText("Yours/../..");
  QTest::keyClick(field, Qt::Key_Return);
  inspect_test::handleEvents();
  EXPECT_EQ(shown(), "My Presets: Loose Yours/../.. Hours: Dusk Night Noon");
  EXPECT_EQ(view().currentIndex(), named("Yours/../.."));
  EXPECT_TRUE(applied.empty()) << "Enter ended the typing";

  action("Delete\u2026").trigger();
  auto* question = tray().findChild<QMessageBox*>();
  ASSERT_NE(question, nullptr);
  EXPECT_EQ(question->defaultButton(), nullptr);
  for (QAbstractButton* button : question->buttons()) {
    if (button->text() == "Delete") button->click();
  }
  EXPECT_EQ(shown(), "My Presets: Loose Hours: Dusk Night Noon");
}

TEST_F(PresetTrayTest, ImportsWhatIsDroppedAndTellsWhatFailed) {
  const std::string good = scratch.write("in/Wave.ggr", "GIMP Gradient\nName: x\n1\n0 0.5 1 0 0 0 1 1 1 1 1 0 0\n");
  const std::string bad = scratch.write("in/Bad.ggr", "GIMP Gradient\n");
  ASSERT_TRUE(drop({QString::fromStdString(bad), QString::fromStdString(good)}));
  EXPECT_EQ(shown(), "My Presets: Loose Wave Hours: Dusk Night Noon");
  EXPECT_EQ(view().currentIndex(), named("Wave"));
  EXPECT_TRUE(part<host::MessageBar>().text().startsWith("Bad.ggr: line "))
      << qPrintable(part<host::MessageBar>().text());
  const std::unique_ptr<QMimeData> dragged(model().mimeData({named("Loose")}));
  EXPECT_EQ(dragged->text(), "#ff0000 0%,\n#0000ff 100%\n");
  EXPECT_EQ(dragged->urls(),
            QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(scratch.path("user/gradients/Loose.gradient")))});
  ASSERT_TRUE(drop({QString::fromStdString(scratch.path("in"))}));
  EXPECT_EQ(shown(), "My Presets: Loose Wave Hours: Dusk Night Noon in: Wave");
}

TEST_F(PresetTrayTest, FollowsTheFilesOfOthers) {
  tray();
  scratch.write("user/gradients/Hours/Morning.txt", "pink, white");
  scratch.write("user/gradients/Hours/Broken.txt", "?");
  EXPECT_TRUE(QTest::qWaitFor([&] { return shown() == "My Presets: Loose Hours: Dusk Morning Night Noon"; }, 5000));
  QAbstractButton* faults = nullptr;
  for (auto* button : tray().findChildren<QAbstractButton*>()) {
    if (button->text() == "1 unreadable") faults = button;
  }
  ASSERT_NE(faults, nullptr);
  faults->click();
  EXPECT_TRUE(part<host::MessageBar>().text().startsWith("Broken.txt: line 1"));
}

// Of many presets only those in sight are drawn, and once.
TEST_F(PresetTrayTest, DrawsWhatIsSeenOnce) {
  for (int i = 0; i < 300; ++i) {
    scratch.write("user/gradients/Many/" + std::to_string(i) + ".gradient",
                  "red, blue " + std::to_string(i % 100) + "%");
  }
  const auto& delegate = dynamic_cast<const host::PresetDelegate&>(*view().itemDelegate());
  tray().grab();
  const int seen = delegate.drawnPictures();
  EXPECT_GE(seen, 4);
  EXPECT_LT(seen, 60);
  tray().refresh();
  tray().grab();
  EXPECT_EQ(delegate.drawnPictures(), seen);
  view().verticalScrollBar()->setValue(1000);
  clickStar(view().indexAt(view().viewport()->rect().center()).data().toString());
  scratch.write("user/gradients/Many/More.gradient", "red, blue");
  tray().refresh();
  EXPECT_EQ(view().verticalScrollBar()->value(), 1000) << "what one looks at stays in sight";
}

TEST_F(PresetTrayTest, IsNamedForScreenReaders) {
  for (const QWidget* widget : tray().findChildren<QWidget*>()) {
    if (!(widget->focusPolicy() & Qt::TabFocus) || !widget->isVisible() || widget->objectName().startsWith("qt_"))
      continue;
    QAccessibleInterface* reader = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
    ASSERT_NE(reader, nullptr);
    EXPECT_FALSE(reader->text(QAccessible::Name).isEmpty()) << widget->metaObject()->className();
  }
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&view());
  ASSERT_EQ(list->childCount(), model().rowCount());
  QAccessibleInterface* cell = list->child(named("Dusk").row());
  EXPECT_EQ(cell->text(QAccessible::Name), "Dusk");
  EXPECT_EQ(cell->text(QAccessible::Description), "Hours");
}
