// SPDX-License-Identifier: BSD-3-Clause
// Frames that several processes render: nothing may tell it from one that renders them all.
#include "Tests/Host/IccProfiles.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// A folder with sequences of eight frames; every "@" in an argument stands for it.
class Jobs : public testing::Test {
 protected:
  Jobs() {
    for (int frame = 1; frame <= 8; ++frame) {
      const std::string number = std::to_string(frame);
      TestImage image = variedImage(24, 10, 8);
      for (double& sample : image.samples) sample = static_cast<int>(sample + 20 * frame) % 256;
      writePng(at("in." + number + ".png"), image);
      writePng(at("broken." + number + ".png"), image);
      if (frame < 4) {
        writePng(at("tag." + number + ".tif"), flatImage(4, 4, {200, 100, 50, 255}));
      } else {
        writeTagged(at("tag." + number + ".tif"), flatImage(4, 4, {200, 100, 50, 255}), profileBytes(wideProfile()));
      }
      writeExr(at("light." + number + ".exr"), TestImage{2, 1, 32, {0.25, 2, -1, 1, 0.5, 0.5, 0.5, 1}});
      const std::uint32_t width = frame == 6 ? 5 : 4;
      writePng(at("sizes." + number + ".png"), flatImage(width, 4, {10.0 * frame, 0, 0, 255}));
    }
    const std::string whole = readFile(at("broken.5.png"));
    writeFile(at("broken.5.png"), whole.substr(0, whole.size() / 2));
    const std::string contents = at("plugins/Frames.plugin/Contents");
    fs::create_directories(contents + "/Linux");
    writeFile(contents + "/Info.plist",
              "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>P</string></dict></plist>");
    fs::copy_file(fs::read_symlink("/proc/self/exe").parent_path().string() + "/../test-plugins/Frames.so",
                  contents + "/Linux/P");
    options.environment = {"VORTO_PLUGIN_PATH=" + at("plugins")};
  }

  std::string at(const std::string& name) const { return folder_.path(name); }

  ProgramRun run(Words words, const std::string& jobs = "") const {
    words.insert(words.begin(), "render");
    for (std::string& word : words) {
      for (std::size_t mark; (mark = word.find('@')) != std::string::npos;) word.replace(mark, 1, folder_.path());
    }
    if (!jobs.empty()) words.insert(words.end(), {"--jobs", jobs});
    return vorto(words, options);
  }

  // Names and contents of the files of a folder in it.
  std::map<std::string, std::string> files(const std::string& folder) const {
    std::map<std::string, std::string> contents;
    for (const auto& entry : fs::directory_iterator(at(folder))) {
      contents[entry.path().filename().string()] = readFile(entry.path().string());
    }
    return contents;
  }

  std::map<std::string, std::string> filesOf(const Words& words, const std::string& jobs) {
    fs::remove_all(at("out"));
    fs::create_directory(at("out"));
    const ProgramRun result = run(words, jobs);
    EXPECT_EQ(result.exitCode, 0) << result.err;
    return files("out");
  }

  double gray(const std::string& file) const { return readImage(at(file)).pixel(0, 0)[0]; }

  RunOptions options;

 private:
  const TemporaryFolder folder_;
};

}  // namespace

TEST_F(Jobs, GiveWhatOneProcessGives) {
  writePng(at("still.png"), variedImage(24, 10, 8));
  options.input = at("still.png");
  const struct {
    Words words;
    int exitCode;
    std::size_t files;
    std::size_t lines;  // that are said
  } cases[] = {
      {{"Levels", "--input", "@/in.%d.png", "--set", "levels.gamma=1.2", "--output", "@/out/o.%02d.png"}, 0, 8, 0},
      {{"Levels", "--input", "@/in.%d.png", "--output", "@/out/o.%d.exr", "--frames", "2-7x4", "--chunk", "2"},
       0,
       2,
       1},
      {{"Dissolve", "--input", "@/in.%d.png", "@/still.png", "--output", "@/out/o.%d.tif"}, 0, 8, 0},
      {{"Over", "--input", "@/in.%d.png", "-", "--output", "@/out/o.%d.png"}, 0, 8, 0},
      {{"Over", "--input", "@/in.%d.png", "/dev/stdin", "--output", "@/out/o.%d.png"}, 0, 8, 0},
      {{"Levels", "--input", "@/in.%d.png", "--output", "-", "--format", "y4m"}, 0, 0, 0},
      {{"Levels", "--input", "@/in.%d.png", "--output", "-", "--format", "raw"}, 0, 0, 0},
      {{"Levels", "--input", "@/in.%d.png", "--output", "-", "--format", "png"}, 0, 0, 0},
      {{"Levels", "--input", "@/tag.%d.tif", "--output", "@/out/o.%d.png", "--verbose"}, 0, 8, 2},
      {{"Levels", "--input", "@/light.%d.exr", "--output", "@/out/o.%d.png", "--verbose"}, 0, 8, 3},
      {{"Levels", "--input", "@/sizes.%d.png", "--output", "-", "--format", "y4m"}, 4, 0, 1},
      {{"Frames", "--frames", "0-7", "--rate", "1", "--output", "@/out/o.%d.png"}, 0, 8, 0},
      {{"Counted Frames", "--frames", "0-7", "--output", "@/out/o.%d.png"}, 0, 8, 0},
  };
  for (const auto& [words, exitCode, fileCount, lines] : cases) {
    std::map<std::string, std::string> expected;
    ProgramRun alone;
    for (const char* const jobs : {"1", "2", "3"}) {
      fs::remove_all(at("out"));
      fs::create_directory(at("out"));
      const ProgramRun result = run(words, jobs);
      const std::string what = words[0] + " " + words[2] + " " + words.back() + " " + jobs;
      EXPECT_EQ(result.exitCode, exitCode) << what << result.err;
      if (*jobs == '1') {
        alone = result;
        expected = files("out");
        EXPECT_EQ(expected.size(), fileCount) << what;
        EXPECT_EQ(alone.out.empty(), fileCount > 0) << what;
        continue;
      }
      EXPECT_TRUE(result.out == alone.out) << what;
      EXPECT_EQ(result.err, alone.err) << what;
      EXPECT_TRUE(files("out") == expected) << what;
    }
    EXPECT_EQ(static_cast<std::size_t>(std::ranges::count(alone.err, '\n')), lines) << alone.err;
  }
}

TEST_F(Jobs, AreRenderedBySeveralProcesses) {
  const Words words{"Frames", "--frames", "0-11", "--set", "trouble=pids " + at("pids"), "--output", "@/out/o.%d.png"};
  filesOf(words, "3");
  std::istringstream lines(readFile(at("pids")));
  std::map<std::string, int> frames;
  for (std::string line; std::getline(lines, line);) ++frames[line];
  EXPECT_EQ(frames.size(), 3u);
}

// The frames before it are there, and what is there of others is whole.
TEST_F(Jobs, TheFirstFrameThatFailsEndsTheRun) {
  const Words words{"Levels", "--input", "@/broken.%d.png", "--set", "levels.gamma=1.2", "--output", "@/out/o.%d.png"};
  const auto whole =
      filesOf({"Levels", "--input", "@/in.%d.png", "--set", "levels.gamma=1.2", "--output", "@/out/o.%d.png"}, "1");
  std::string said;
  for (const char* const jobs : {"1", "2", "3"}) {
    fs::remove_all(at("out"));
    fs::create_directory(at("out"));
    const ProgramRun result = run(words, jobs);
    EXPECT_EQ(result.exitCode, 3) << jobs;
    if (said.empty()) said = result.err;
    EXPECT_EQ(result.err, said) << jobs;
    EXPECT_NE(said.find("broken.5.png"), std::string::npos) << said;
    const auto rendered = files("out");
    for (const char* const name : {"o.1.png", "o.2.png", "o.3.png", "o.4.png"}) {
      EXPECT_TRUE(rendered.contains(name)) << name << " with " << jobs;
    }
    EXPECT_FALSE(rendered.contains("o.5.png"));
    for (const auto& [name, bytes] : rendered) EXPECT_TRUE(whole.at(name) == bytes) << name << " with " << jobs;
  }
}

TEST_F(Jobs, AFullDiskIsToldOnce) {
  fs::create_directory(at("out"));
  options.fileSizeLimit = 100;
  const struct {
    Words words;
    const char* said;  // itself cut by the limit
  } cases[] = {
      {{"Levels", "--input", "@/in.%d.png", "--output", "@/out/o.%d.png"}, "o.1.png: cannot write"},
      {{"Checkerboard", "--size", "64x64", "--frames", "0-4294967295", "--output", "@/out/o.%d.png"}, "o.0.png: ca"},
  };
  for (const auto& [words, said] : cases) {
    const ProgramRun alone = run(words, "1");
    const ProgramRun result = run(words, "3");
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_EQ(result.err, alone.err);
    EXPECT_NE(result.err.find(said), std::string::npos) << result.err;
    EXPECT_TRUE(files("out").empty());
  }
}

TEST_F(Jobs, AProcessThatDiesIsStartedAgainOnce) {
  const auto words = [&](const std::string& trouble, const std::string& effect = "Frames") {
    return Words{effect, "--frames", "0-7", "--rate", "1", "--set", "trouble=" + trouble, "--output", "@/out/o.%d.png"};
  };
  const auto whole = filesOf(words("none"), "1");
  writeFile(at("marker"), "");
  EXPECT_EQ(
      run(words("once " + at("marker")), "2").err,
      "vorto: frame 3: the process that rendered it was ended by signal 11 (Segmentation fault) and started again\n");
  EXPECT_TRUE(files("out") == whole);

  fs::remove_all(at("out"));
  fs::create_directory(at("out"));
  const ProgramRun result = run(words("always"), "2");
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_EQ(result.err,
            "vorto: frame 3: the process that rendered it was ended twice: signal 11 (Segmentation fault)\n");
  const auto rendered = files("out");
  for (const char* const name : {"o.0.png", "o.1.png", "o.2.png"}) EXPECT_TRUE(rendered.contains(name)) << name;
  for (const auto& [name, bytes] : rendered) EXPECT_TRUE(whole.at(name) == bytes) << name;
}

// The signal comes to one process, or as from a terminal to all of them. Of a clip nothing is left.
TEST_F(Jobs, SignalsEndAllProcessesAndLeaveWholeFiles) {
  const std::string program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
  const std::string trouble = "trouble=pids " + at("pids");
  const Words words{"Frames", "--frames", "0-39", "--set", trouble, "--output", "@/out/o.%d.png"};
  const auto whole = filesOf(words, "3");
  ASSERT_EQ(whole.size(), 40u);
  writeFile(at("pids.hold"), "");
  const struct {
    int signal;
    bool isToAll;
    const char* output;
  } cases[] = {{SIGINT, true, "o.mkv"},     {SIGINT, false, "o.mkv"},     {SIGTERM, false, "o.mkv"},
               {SIGHUP, true, "o.mkv"},     {SIGTERM, false, "o.%d.png"}, {SIGHUP, true, "o.%d.png"},
               {SIGINT, false, "o.%d.png"}, {SIGINT, true, "o.%d.png"}};
  for (const auto& [signal, isToAll, output] : cases) {
    fs::remove(at("pids"));
    fs::remove_all(at("out"));
    fs::create_directory(at("out"));
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const pid_t process = fork();
    if (process == 0) {
      setpgid(0, 0);
      dup2(ends[1], STDERR_FILENO);
      setenv("VORTO_PLUGIN_PATH", at("plugins").c_str(), 1);
      execl(program.c_str(), "vorto", "render", "Frames", "--frames", "0-39", "--set", trouble.c_str(), "--output",
            at(std::string("out/") + output).c_str(), "--codec", "ffv1", "--jobs", "3", nullptr);
      _exit(127);
    }
    setpgid(process, process);
    close(ends[1]);
    while (std::ranges::count(readFile(at("pids")), '\n') < 10 && waitpid(process, nullptr, WNOHANG) == 0) usleep(1000);
    kill(isToAll ? -process : process, signal);
    int status = 0;
    waitpid(process, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << " " << status;
    // All that could have written to standard error are gone, and have written nothing.
    pollfd waiting{ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&waiting, 1, 60000), 1) << signal << output;
    char byte;
    EXPECT_EQ(read(ends[0], &byte, 1), 0) << signal << output;
    close(ends[0]);
    const auto rendered = files("out");
    EXPECT_LT(rendered.size(), 40u);
    for (const auto& [name, bytes] : rendered) {
      ASSERT_TRUE(whole.contains(name)) << name;
      EXPECT_TRUE(whole.at(name) == bytes) << name;
    }
  }
  fs::remove(at("pids.hold"));
  const std::string there = std::to_string(files("out").size());
  Words resumed = words;
  resumed.push_back("--resume");
  EXPECT_EQ(run(resumed, "2").err, "vorto: " + there + " of 40 frames are there already\n");
  EXPECT_TRUE(files("out") == whole);
}

// What cannot go into a clip, or dies, leaves the old one.
TEST_F(Jobs, AClipIsWrittenAsAWholeOrNotAtAll) {
  fs::create_directory(at("out"));
  writeFile(at("out/o.mkv"), "old");
  const struct {
    const char* trouble;
    int exitCode;
    std::string said;
  } cases[] = {
      {"grow", 4,
       "vorto: cannot write " + at("out/o.mkv") +
           ": frame 1 has 2 x 1 pixels, the first one 1 x 1, and the frames of a clip have one size: --size "
           "gives it\n"},
      {"always", 5, "vorto: frame 3: the process that rendered it was ended twice: signal 11 (Segmentation fault)\n"}};
  for (const auto& [trouble, exitCode, said] : cases) {
    const ProgramRun result = run({"Frames", "--frames", "0-7", "--rate", "1", "--set",
                                   std::string("trouble=") + trouble, "--codec", "ffv1", "--output", "@/out/o.mkv"},
                                  "2");
    EXPECT_EQ(result.exitCode, exitCode) << trouble;
    EXPECT_EQ(result.err, said);
    EXPECT_EQ(files("out"), (std::map<std::string, std::string>{{"o.mkv", "old"}})) << trouble;
  }
}

TEST_F(Jobs, ResumeRendersWhatIsMissing) {
  const Words words{"Levels", "--input", "@/in.%d.png", "--set", "levels.gamma=1.2", "--output", "@/out/o.%d.png"};
  const auto whole = filesOf(words, "1");
  Words resumed = words;
  resumed.push_back("--resume");
  for (const char* const jobs : {"1", "3"}) {
    fs::remove(at("out/o.1.png"));
    writeFile(at("out/o.4.png"), "");
    writeFile(at("out/o.6.png"), "no picture");
    fs::last_write_time(at("out/o.7.png"), fs::file_time_type());
    const ProgramRun result = run(resumed, jobs);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "vorto: 5 of 8 frames are there already\n");
    EXPECT_TRUE(files("out") == whole) << jobs;
    EXPECT_EQ(fs::last_write_time(at("out/o.7.png")), fs::file_time_type()) << "it was left alone";
  }
  EXPECT_EQ(run(resumed).err, "vorto: 8 of 8 frames are there already\n");
  const struct {
    Words words;
    const char* said;
  } refused[] = {
      {{"Counted Frames", "--frames", "0-7x4", "--chunk", "2", "--output", "@/out/o.%d.png"}, "--chunk 2: the effect"},
      {{"Counted Frames", "--frames", "0-7", "--output", "@/out/o.%d.png"}, "keeps a state from frame to frame"},
      {{"Levels", "--input", "@/in.%d.png", "--output", "-", "--format", "raw"}, "--output - is written as a whole"},
      {{"Levels", "--input", "@/in.%d.png", "--output", "@/out/o.mp4"}, "o.mp4 is written as a whole"}};
  for (const auto& [arguments, said] : refused) {
    Words all = arguments;
    if (std::ranges::count(all, "--chunk") == 0) all.push_back("--resume");
    const ProgramRun result = run(all);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_NE(result.err.find(said), std::string::npos) << result.err;
  }
}

TEST_F(Jobs, AReaderWhoHasHadEnoughEndsThemQuietly) {
  const std::string program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
  const std::string command = "bash -c \"'" + program + "' render Levels --input '" + at("in.%d.png") +
                              "' --size 400x400 --output - --format raw --jobs 2 2>&1 | head -c 5 >/dev/null; "
                              "echo \\${PIPESTATUS[0]}\"";
  FILE* const pipe = popen(command.c_str(), "r");
  char text[100] = "";
  EXPECT_NE(fgets(text, sizeof text, pipe), nullptr);
  pclose(pipe);
  EXPECT_STREQ(text, "141\n");
}

// Descriptors that it opens do not take the numbers of those that it was started without.
TEST_F(Jobs, NeedNoStandardStreams) {
  const std::string program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
  const Words words{"Levels", "--input", "@/light.%d.exr", "--output", "@/out/o.%d.png"};
  const auto whole = filesOf(words, "1");
  for (const char* const jobs : {"1", "2"}) {
    fs::remove_all(at("out"));
    fs::create_directory(at("out"));
    const std::string command = "'" + program + "' render Levels --input '" + at("light.%d.exr") + "' --output '" +
                                at("out/o.%d.png") + "' --jobs " + jobs + " <&- >&- 2>&-";
    EXPECT_EQ(std::system(command.c_str()), 0) << jobs;
    EXPECT_TRUE(files("out") == whole) << jobs;
  }
}

TEST_F(Jobs, GetAlongWithLimits) {
  const std::string program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
  const std::string alone = run({"Levels", "--input", "@/in.%d.png", "--output", "-", "--format", "raw"}, "1").out;
  for (const char* const limit : {"ulimit -n 60", "ulimit -Sn 12", "ulimit -f 0"}) {
    const std::string command = std::string("bash -c \"(") + limit + "; '" + program + "' render Levels --input '" +
                                at("in.%d.png") + "' --output - --format raw --jobs 8) | cat >'" + at("raw") + "'\"";
    EXPECT_EQ(std::system(command.c_str()), 0) << limit;
    EXPECT_TRUE(readFile(at("raw")) == alone) << limit;
  }
}
