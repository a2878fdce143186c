// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

namespace {

Words matches(const std::string& text, const char* pattern) {
  Words found;
  const std::regex expression(pattern, std::regex::multiline);
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at) found.push_back((*at)[1]);
  return found;
}

Words commandNames() {
  const std::string help = vortoSucceeds({"--help"}).out;
  return matches(help.substr(help.find("Subcommands:")), "^  ([a-z][a-z0-9-]*)  ");
}

// What completion offers, without the line in front and the descriptions.
Words completed(Words words) {
  words.insert(words.begin(), {"complete", "--"});
  const std::string out = vortoSucceeds(words).out;
  return matches(out.substr(out.find('\n')), "^([^\t\n]+)\t");
}

// What is copied from a page: minus signs.
std::string unescaped(std::string text) {
  return std::regex_replace(text, std::regex(R"(\\-)"), "-");
}

std::string manualFolder() {
  const std::string folder = testing::TempDir() + "/vorto-manual-pages";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  vortoSucceeds({"manual", "--output", folder});
  return folder;
}

}  // namespace

TEST(Manual, HasAPageForEveryCommandWithEveryOption) {
  const std::string folder = manualFolder();
  const Words commands = commandNames();
  ASSERT_GE(commands.size(), 7u);
  for (const std::string& command : commands) {
    const std::string page = unescaped(readFile(folder + "/vorto-" + command + ".1"));
    EXPECT_EQ(page, unescaped(vortoSucceeds({"manual", command}).out));
    for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXAMPLES", "EXIT STATUS", "ENVIRONMENT",
                                "FILES", "SEE ALSO"}) {
      EXPECT_TRUE(std::regex_search(page, std::regex("\n\\.SH " + std::string(section) + "\n[^\n]")))
          << command << ": " << section;
    }
    EXPECT_NE(page.find("\nvorto " + command), std::string::npos);  // an example
    const Words options = matches(vortoSucceeds({command, "--help"}).out, "^  (?:-[a-z],)?(--[a-z-]+)");
    ASSERT_FALSE(options.empty()) << command;
    for (const std::string& option : options) {
      EXPECT_TRUE(std::regex_search(page, std::regex("\n\\.TP\n[^\n]*\\\\fB" + option + "\\\\fR[^\n]*\n[A-Za-z]")))
          << command << " " << option;
      const Words offered = completed({command, option});
      EXPECT_NE(std::ranges::find(offered, option), offered.end()) << command << " " << option;
    }
  }
  const std::string program = unescaped(readFile(folder + "/vorto.1"));
  for (const std::string& command : commands) {
    EXPECT_TRUE(std::regex_search(program, std::regex("\n\\\\fB" + command + "\\\\fR\n[A-Z]"))) << command;
  }
  if (std::system("command -v groff >/dev/null") == 0) {
    const std::string problems = folder + "/problems";
    const std::string pages = "for page in " + folder + "/*.1; do groff -ww -man -Tascii $page; done";
    EXPECT_EQ(std::system((pages + " >/dev/null 2>" + problems).c_str()), 0);
    EXPECT_EQ(readFile(problems), "");
  }
}

// The words that completion offers are those that the options' parsers know.
TEST(Completion, OffersWhatOptionsTake) {
  for (const std::string option : {"--alpha", "--channels", "--depth", "--filter", "--fit", "--pixel-format", "--place",
                                   "--when-short", "--codec"}) {
    const std::string output = testing::TempDir() + (option == "--codec" ? "/never.mov" : "/never.png");
    Words line{"render", "Noise", "--size", "64x64", option, "zzz", "--output", output};
    if (option == "--codec") {
      line.emplace_back("--frames");
      line.emplace_back("0-2");
    }
    const ProgramRun run = vorto(line);
    EXPECT_EQ(run.exitCode, 2) << option;
    std::string known = run.err.substr(std::min(run.err.find(": give "), run.err.size()));
    known = std::regex_replace(known, std::regex("^: give | in pixels|X,Y|\n"), "");
    Words expected = matches(known, "([A-Za-z0-9+-]+)(?:, | or |$)");
    std::erase(expected, "or");
    ASSERT_FALSE(expected.empty()) << run.err;
    Words offered = completed({"render", "Noise", option, ""});
    std::ranges::sort(expected);
    std::ranges::sort(offered);
    EXPECT_EQ(offered, expected) << run.err;
  }
  const std::string formats = vorto({"render", "Noise", "--format", "zzz", "--output", "x"}).err;
  for (const std::string& format : completed({"render", "Noise", "--format", ""})) {
    const bool isClip = std::string(" mp4 mov mkv webm avi ").find(" " + format + " ") != std::string::npos;
    EXPECT_TRUE(isClip || std::regex_search(formats, std::regex("\\b" + format + "\\b"))) << format;
  }
}

TEST(Completion, KnowsWhatStandsBefore) {
  const struct {
    Words words;
    Words expected;
  } cases[] = {
      {{"render", "gradient m"}, {"Gradient Map"}},
      {{"render", "Levels", "--set", ""}, {"levels="}},
      {{"render", "Levels", "--set", "levels.alpha.gam"}, {"levels.alpha.gamma="}},
      {{"render", "Levels", "--set", "levels.selectedchannel=g"}, {"green"}},
      {{"render", "Levels", "--set=lev"}, {"levels="}},
      {{"render", "--depth", "8", "Dissolve", "--set", ""}, {}},  // its time and pictures are set by other options
      {{"render", "--input", "Levels", "--set", ""}, {}},         // that is a file
      {{"inspect", "--state", "lev"}, {"levels="}},
      {{"render", "Levels", "--state", "levels=preset:crush"}, {"preset:Crush Blacks"}},
      {{"render", "Gradient Map", "--state", "gradient=preset:crush"}, {}},
      {{"render", "Levels", "--output", "x.png", "--out"}, {"--output-space"}},
      {{"submit", "--", ""}, {"render"}},
      {{"submit", "--", "render", "--dep"}, {"--depth"}},
      {{"state", "x", ""}, {"--help", "--presets", "--json", "--convert", "--form", "--output"}},
      {{"--vers"}, {"--version"}},
      {{"preview", ""}, {}},
      {{"nothing", ""}, {}},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(completed(each.words), each.expected) << testing::PrintToString(each.words);
  }
}

TEST(Completion, QuotesForBash) {
  const std::string breaks = " \t\n\"'><=;|&(:";
  const struct {
    const char* line;
    const char* out;  // the kind, what is typed of a file's name, what goes in front of it, and the words
  } cases[] = {
      {"vorto render Gradient\\ M", "words\nGradient M\n\nGradient\\ Map\n"},
      {"vorto render 'Gradient M", "words\nGradient M\n\nGradient Map\n"},
      {"vorto render Levels --state levels=preset:Crush", "words\nCrush\n\nCrush\\ Blacks\n"},
      {"vorto render Levels --state \"levels=pictures/a", "files\npictures/a\nlevels=\n"},
      {"vorto render Levels --state levels=pictures/a", "files\npictures/a\n\n"},
      {"vorto submit --logs a\\ b", "folders\na b\n\n"},
      {"vorto render --depth=h", "words\nh\n\nhalf\n"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(vortoSucceeds({"complete", "--bash", breaks, "--", each.line}).out, each.out) << each.line;
  }
}
