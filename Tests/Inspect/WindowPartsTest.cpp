// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/OutputFile.h"
#include "Host/Inspect/ActivityPanel.h"
#include "Host/Inspect/EffectChooser.h"
#include "Host/Inspect/ExportDialog.h"
#include "Host/Inspect/FileRole.h"
#include "Host/Inspect/InputRoles.h"
#include "Host/Inspect/Preferences.h"
#include "Host/Inspect/RenderJob.h"
#include "Host/Inspect/ShortcutPage.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Tests/Inspect/InspectFixture.h"
#include "Tests/Support/EnglishTexts.h"

#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>

// What a window is put together from.

namespace {

using inspect_test::handleEvents;
using inspect_test::writeFlatPicture;

class WindowPartsTest : public testing::Test {
 protected:
  WindowPartsTest() {
    readEnglishTexts();
    inspect_test::useEffects();
  }
  std::string at(const std::string& name) const { return folder.path() + "/" + name; }
  void write(const std::string& name, const std::string& text) { std::ofstream(at(name), std::ios::binary) << text; }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  TemporaryFolder folder;
};

}  // namespace

TEST_F(WindowPartsTest, FilesAreStatesOrInputs) {
  writeFlatPicture(at("picture.png"), 9);
  std::filesystem::copy(at("picture.png"), at("picture-without-extension"));
  write("state-without-extension", "linear-gradient(red, blue)");
  write("nothing.bin", "neither");
  struct Row {
    const char* name;
    host::FileRole role;
  };
  for (const auto& [name, role] : {Row{"picture.png", host::FileRole::Input},
                                   {"picture-without-extension", host::FileRole::Input},
                                   {"state-without-extension", host::FileRole::State},
                                   {"missing.PLIST", host::FileRole::State},
                                   {"missing.%04d.exr", host::FileRole::Input},
                                   {"nothing.bin", host::FileRole::Input}}) {
    EXPECT_EQ(host::fileRoleOf(at(name)), role) << name;
  }
}

TEST_F(WindowPartsTest, SequencesAreFoundAroundAPicture) {
  for (const char* name : {"a.0007.png", "a.0008.png", "v2-9.png", "v2-10.png", "alone3.png", "none.png"})
    write(name, "");
  EXPECT_EQ(host::sequenceAround(at("a.0007.png")), at("a.%04d.png"));
  EXPECT_EQ(host::sequenceAround(at("v2-9.png")), at("v2-%d.png"));
  EXPECT_EQ(host::sequenceAround(at("alone3.png")), std::nullopt);
  EXPECT_EQ(host::sequenceAround(at("none.png")), std::nullopt);
  EXPECT_EQ(host::sequenceAround(at("a.%04d.png")), std::nullopt);
}

TEST_F(WindowPartsTest, EffectsSayWhatPicturesTheyTake) {
  const auto names = [](const char* effect, std::size_t available) {
    return host::inputRolesFor(*host::makeEffect(effect), available).names;
  };
  EXPECT_EQ(names("Levels", 0), QStringList{"Input"});
  EXPECT_EQ(names("Levels", 3), QStringList{"Input"});
  EXPECT_EQ(names("Dissolve", 1), (QStringList{"From", "To"}));
  EXPECT_EQ(names("Gradient Ramp", 1), QStringList{});
}

TEST_F(WindowPartsTest, RecentFilesAreTheNewestThatAreThere) {
  host::Preferences preferences(false);
  QStringList expected;
  for (int i = 0; i < 15; ++i) {
    const std::string name = "p" + std::to_string(i) + ".png";
    write(name, "");
    preferences.noteFile(QString::fromStdString(at(name)));
    expected.prepend(QString::fromStdString(at(name)));
  }
  preferences.noteFile(QString::fromStdString(at("p9.png")));
  expected.removeAll(QString::fromStdString(at("p9.png")));
  expected.prepend(QString::fromStdString(at("p9.png")));
  std::filesystem::remove(at("p14.png"));
  expected = expected.mid(0, 12);
  expected.removeAll(QString::fromStdString(at("p14.png")));
  EXPECT_EQ(preferences.recentFiles(), expected);
  preferences.forgetRecentFiles();
  EXPECT_TRUE(preferences.recentFiles().isEmpty());
}

TEST_F(WindowPartsTest, ExportsTellProgressAndLeaveNothingUnfinished) {
  const auto run = [&](const QStringList& arguments, const std::string& output, bool cancels) {
    int ended = 0;
    host::RenderJob job(arguments, QString::fromStdString(at(output)), nullptr, {{}, [&] { ++ended; }});
    if (cancels) {
      EXPECT_TRUE(QTest::qWaitFor([&] { return job.done() > 0; }, 30000));
      job.cancel();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return ended > 0; }, 60000));
    EXPECT_EQ(ended, 1);
    return std::tuple(job.state(), job.done(), job.message().toStdString());
  };
  using State = host::RenderJob::State;
  const QStringList noise{"Noise", "--size", "64x48", "--frames"};
  EXPECT_EQ(run(noise + QStringList{"0-5"}, "n.%d.png", false),
            std::tuple(State::Done, std::uint64_t{6}, std::string()));
  EXPECT_EQ(files().size(), 6u);

  const auto [failed, none, reason] = run({"Levels", "--input", "missing.png"}, "x.png", false);
  EXPECT_EQ(failed, State::Failed);
  EXPECT_NE(reason.find("missing.png"), std::string::npos) << reason;

  write("old.mkv", "old");
  const std::vector<std::string> before = files();
  const QStringList endless{"Noise", "--size", "640x480", "--frames", "0-100000", "--codec", "ffv1"};
  EXPECT_EQ(std::get<0>(run(endless, "old.mkv", true)), State::Canceled);
  EXPECT_EQ(files(), before);
  std::string text;
  std::getline(std::ifstream(at("old.mkv")), text);
  EXPECT_EQ(text, "old");
}

TEST_F(WindowPartsTest, TheActivityPanelCountsWhatGoesOn) {
  host::ActivityPanel panel;
  int told = 0;
  panel.setChanged([&] { ++told; });
  panel.addFailure("Cannot be rendered", "reason");
  panel.addFailure("Cannot be rendered", "reason");
  EXPECT_EQ(panel.summary(), "1 problem");
  panel.addJob("x.png", [&](std::function<void()> tell) {
    return std::make_unique<host::RenderJob>(QStringList{"Levels", "--input", "missing.png"},
                                             QString::fromStdString(at("x.png")), nullptr,
                                             host::RenderJob::Told{tell, tell});
  });
  EXPECT_EQ(panel.summary(), "1 export running, 1 problem");
  EXPECT_TRUE(QTest::qWaitFor([&] { return panel.runningJobs() == 0; }, 30000));
  EXPECT_EQ(panel.summary(), "2 problems");
  EXPECT_GE(told, 3);
  panel.clearFinished();
  EXPECT_EQ(panel.summary(), "");
}

TEST_F(WindowPartsTest, WhatIsExportedFollowsFromTheFileAndTheFrames) {
  struct Row {
    host::Exportable what;
    const char* output;
    QString expectedOutput;
    QStringList expected;
  };
  const Row rows[] = {
      {{.first = 3, .count = 9, .name = "a"}, "o.png", "o.%04d.png", {}},
      {{.first = 3, .count = 9, .chosen = {{4, 6}}, .name = "a"}, "o.#%03d.tif", "o.#%03d.tif", {"--frames", "4-6"}},
      {{.count = 2, .name = "a"}, "o.mov", "o.mov", {"--codec", "prores"}},
      {{.isOpenEnded = true, .name = "a"}, "o.mp4", "o.mp4", {"--frames", "0-49", "--codec", "h264"}},
  };
  for (const Row& row : rows) {
    QString output;
    QStringList arguments;
    auto* dialog = new host::ExportDialog(
        row.what, QString::fromStdString(folder.path()),
        [&](const QString& path, const QStringList& chosen) {
          output = path;
          arguments = chosen;
        },
        nullptr);
    dialog->setOutput(QString::fromStdString(at(row.output)));
    dialog->accept();
    delete dialog;
    EXPECT_EQ(output, QString::fromStdString(folder.path()) + "/" + row.expectedOutput);
    EXPECT_EQ(arguments, row.expected) << row.output;
  }
  host::ExportDialog dialog(
      {.name = "a"}, {}, [](const QString&, const QStringList&) { ADD_FAILURE(); }, nullptr);
  dialog.setAttribute(Qt::WA_DeleteOnClose, false);
  dialog.setOutput("picture.unknown");
  dialog.accept();
}

TEST_F(WindowPartsTest, ListsAreSearched) {
  std::string chosen;
  auto* chooser = new host::EffectChooser(
      "Levels", [&](const std::string& name) { chosen = name; }, nullptr);
  chooser->show();
  auto* field = chooser->findChild<QLineEdit*>();
  QTest::keyClicks(field, "grad map");
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(chosen, "Gradient Map");

  QAction undo("&Undo");
  undo.setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
  QAction without("Nothing");
  auto* page =
      new host::ShortcutPage({{"Edit", {&undo, &without}, {}}, {"Stops", {}, {{"Del", "Remove it"}}}}, nullptr);
  auto* list = page->findChild<QTreeWidget*>();
  EXPECT_EQ(list->topLevelItem(0)->childCount(), 1);
  page->search("remove");
  EXPECT_TRUE(list->topLevelItem(0)->isHidden());
  EXPECT_FALSE(list->topLevelItem(1)->isHidden());
  delete page;
}
