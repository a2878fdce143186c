// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <gtest/gtest.h>

#include <set>

// What vorto submit gives to a farm. Scripts are run by sh; sbatch is a script of the test's own.

namespace {

namespace fs = std::filesystem;

TestImage grayPixel(double value) {
  return flatImage(1, 1, {value, value, value, 255});
}

// Pictures in.1.tif, ... in a folder, each of its number's gray.
void writeFrames(const std::string& folder, int count) {
  fs::create_directories(folder);
  for (int frame = 1; frame <= count; ++frame) {
    writeTiff(folder + "/in." + std::to_string(frame) + ".tif", grayPixel(frame));
  }
}

// With the tests' own effects, of which "Frames" gives every frame a gray of its own.
RunOptions withFrames(const TemporaryFolder& folder) {
  const std::string contents = folder.path("PlugIns/Frames.plugin/Contents/");
  fs::create_directories(contents + "Linux");
  fs::copy_file(fs::read_symlink("/proc/self/exe").parent_path().string() + "/../test-plugins/Frames.so",
                contents + "Linux/Frames");
  writeFile(contents + "Info.plist",
            "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>org.vorto.test</string>"
            "<key>CFBundleExecutable</key><string>Frames</string></dict></plist>\n");
  return {{"VORTO_PLUGIN_PATH=" + folder.path("PlugIns")}, 0};
}

// The folder in which the script of a task renders frames of a clip.
std::string folderOfFrames(const std::string& script) {
  const std::string text = readFile(script);
  const std::size_t begin = text.find("mkdir -p '") + 10;
  return text.substr(begin, text.find("' ", begin) - begin);
}

// The script of a task that nothing but sh runs.
int runTask(const std::string& script, int task) {
  const std::string command = "SLURM_ARRAY_TASK_ID=" + std::to_string(task) + " sh " + script + " >/dev/null 2>&1";
  const int status = std::system(command.c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string dryScript(const Words& arguments, const Words& before = {}, const RunOptions& options = {}) {
  Words words{"submit", "--dry-run"};
  words.insert(words.end(), before.begin(), before.end());
  words.insert(words.end(), {"--", "render"});
  words.insert(words.end(), arguments.begin(), arguments.end());
  return vortoSucceeds(words, options).out;
}

}  // namespace

TEST(Submit, ScriptsHoldWhateverNamesThereAre) {
  const TemporaryFolder folder;
  const std::string names[] = {"plain",         "two words", "it's",     "\"quoted\"",   "a\nb",  "-lead",
                               "$HOME `id` \\", "#1; ls",    "*a [a-z]", "\xC3\xA9\x01", "~user", "a\\nb"};
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const std::string frames = folder.path(name + "/" + name);
    writeFrames(frames, 3);
    const std::string script =
        folder.write("script.sh", dryScript({"Levels", "--input", frames + "/in.%d.tif", "--set", "levels.gamma=1",
                                             "--output", frames + "/" + name + ".%d.tif", "--frames", "1-3x2"},
                                            {"--retries", "0", "--logs", folder.path("logs")}));
    EXPECT_EQ(runTask(script, 2), 0);
    EXPECT_FALSE(fs::exists(frames + "/" + name + ".2.tif")) << "of the other task";
    ASSERT_EQ(runTask(script, 1), 0);
    for (int frame = 1; frame <= 3; ++frame) {
      EXPECT_EQ(readTiff(frames + "/" + name + "." + std::to_string(frame) + ".tif").pixel(0, 0)[0], frame);
    }
  }
}

TEST(Submit, DealsFramesOut) {
  const TemporaryFolder folder;
  writeFrames(folder.path(), 23);
  const struct {
    Words frames;
    const char *array, *chunks;
  } cases[] = {
      {{}, "--array=1-3\n", " --frames=1-23x10 "},
      {{"--frames", "2-9"}, "--array=1-1\n", " --frames=2-9x10 "},
      {{"--frames=1-23x23"}, "--array=1-1\n", " --frames=1-23x23 "},
      {{"--frames=1-23x22"}, "--array=1-2\n", " --frames=1-23x22 "},
      {{"--frames=3x1"}, "--array=1-1\n", " --frames=3-3x1 "},
      {{"--frames", "1-8x3", "--jobs", "7", "--resume"}, "--array=1-3\n", " --frames=1-8x3 "},
  };
  for (const auto& each : cases) {
    Words words{"Levels", "-i", folder.path("in.%d.tif"), "-o", folder.path("out.%d.tif")};
    words.insert(words.end(), each.frames.begin(), each.frames.end());
    const std::string script = dryScript(words);
    EXPECT_NE(script.find(each.array), std::string::npos) << script;
    EXPECT_NE(script.find(each.chunks), std::string::npos) << script;
    EXPECT_NE(script.find(" --resume "), std::string::npos);
    EXPECT_EQ(script.find("--jobs=7"), std::string::npos) << "tasks have the cores that Slurm gives them";
  }
  const std::string many = dryScript({"Noise", "--frames", "0-99999", "--output", folder.path("n.%d.png")});
  EXPECT_NE(many.find("--array=1-1000\n"), std::string::npos) << "no more tasks than arrays have";
}

TEST(Submit, CarriesTheEnvironmentAndTheUsersOptions) {
  const TemporaryFolder folder;
  const std::string script = dryScript({"Noise", "--frames", "1-2", "--output", folder.path("n.%d.png")},
                                       {"--slurm=--partition=render", "--slurm", "--comment=a \"b\" \\", "--after",
                                        "17:18", "--logs", folder.path("50%")},
                                       {{"VORTO_PLUGIN_PATH=/it's", "OCIO=", "HOMELESS=1"}, 0});
  for (const char* const line :
       {"\n#SBATCH --partition=render\n", "\n#SBATCH \"--comment=a \\\"b\\\" \\\\\"\n", "\n#SBATCH --requeue\n",
        "\n#SBATCH --dependency=afterok:17:18\n", "/50%%/%A_%a.log\n", "\n#SBATCH --job-name=n.png\n",
        "\nexport VORTO_PLUGIN_PATH='/it'\\''s'\n", "\nexport OCIO=''\n"}) {
    EXPECT_NE(script.find(line), std::string::npos) << line << script;
  }
  EXPECT_EQ(script.find("HOMELESS"), std::string::npos);
  EXPECT_EQ(script.find("\n\n#SBATCH"), std::string::npos) << "sbatch reads no further than the first other line";
  EXPECT_FALSE(fs::exists(folder.path("50%")));
}

TEST(Submit, TasksTryAgainUnlessItIsOfNoUse) {
  const TemporaryFolder folder;
  const std::string output = folder.path("n.%d.png");
  const std::string tries = folder.path("tries");
  const std::string script = dryScript({"Noise", "--frames", "1-2", "--output", output}, {"--retries", "2"});
  const std::size_t program = script.find("  /"), end = script.find(' ', program + 2);
  const struct { int code, runs; } cases[] = {{0, 1}, {2, 1}, {143, 1}, {3, 3}, {139, 3}};
  for (const auto& [code, runs] : cases) {
    writeFile(tries, "");
    std::string changed = script;  // another program in the place of vorto
    changed.replace(program, end - program,
                    "  sh -c 'echo x >>" + tries + "; exit " + std::to_string(code) + "' vorto");
    EXPECT_EQ(runTask(folder.write("script.sh", changed), 1), code);
    EXPECT_EQ(readFile(tries).size(), 2u * static_cast<unsigned>(runs)) << code;
  }
}

TEST(Submit, GivesScriptsToSlurmOneBehindTheOther) {
  const TemporaryFolder folder;
  const std::string sbatch =
      folder.write("bin/sbatch", "#!/bin/sh\necho \"$@\" >>" + folder.path("given") + "\necho \"$((16 + $(wc -l <" +
                                     folder.path("given") + ")));cluster\"\n");
  fs::permissions(sbatch, fs::perms::owner_all);
  RunOptions options = withFrames(folder);
  options.environment.push_back("PATH=" + folder.path("bin") + ":/usr/bin:/bin");
  Words render{"Frames",
               "--size",
               "16x16",
               "--rate",
               "2",
               "--codec",
               "ffv1",
               "--frames",
               "4-9x4",
               "--output",
               folder.path("a clip.mkv")};
  Words words{"submit", "--logs", folder.path("logs/deep"), "--", "render"};
  words.insert(words.end(), render.begin(), render.end());
  const ProgramRun run = vortoSucceeds(words, options);
  const std::string scripts = folder.path("logs/deep/a-clip.mkv");
  EXPECT_EQ(readFile(folder.path("given")), "--parsable " + scripts +
                                                ".sh\n--parsable --dependency=afterok:17 --kill-on-invalid-dep=yes " +
                                                scripts + "-clip.sh\n");
  EXPECT_EQ(run.out.substr(0, run.out.find("\n  see")),
            "Job 17: frames 4-9 in 2 tasks\nJob 18: " + folder.path("a clip.mkv") + " of them");
  EXPECT_NE(run.out.find("scancel 17 18\n"), std::string::npos);
  for (int task = 1; task <= 2; ++task) EXPECT_EQ(runTask(scripts + ".sh", task), 0);
  const std::string frames = folderOfFrames(scripts + ".sh");
  EXPECT_EQ(frames.find(folder.path("a clip.mkv.frames-")), 0u);
  EXPECT_EQ(std::distance(fs::directory_iterator(frames), {}), 6);
  writeFile(frames + "/.write-a1B2c3", "what a node wrote when it died");
  for (const char* const other : {"00000003", "00000010"}) {
    fs::copy_file(frames + "/frame.00000009.png", frames + "/frame." + other + ".png");
  }
  EXPECT_EQ(runTask(scripts + "-clip.sh", 0), 0);
  EXPECT_FALSE(fs::exists(frames)) << "its frames are in it";
  render.insert(render.begin(), "render");
  render.back() = folder.path("direct.mkv");
  vortoSucceeds(render, options);
  std::set<std::string> pictures;
  for (const std::string name : {"a clip", "direct"}) {
    passThrough(folder.path(name + ".mkv"), folder.path(name + ".%d.ppm"));
    EXPECT_FALSE(fs::exists(folder.path(name + ".6.ppm")));
  }
  for (int frame = 0; frame < 6; ++frame) {
    const std::string number = "." + std::to_string(frame) + ".ppm";
    EXPECT_EQ(readFile(folder.path("a clip" + number)), readFile(folder.path("direct" + number))) << frame;
    EXPECT_TRUE(pictures.insert(readFile(folder.path("a clip" + number))).second) << "each has a gray of its own";
  }
  for (int task = 1; task <= 2; ++task) EXPECT_EQ(runTask(scripts + ".sh", task), 0);
  writeFile(frames + "/other", "");
  EXPECT_EQ(runTask(scripts + "-clip.sh", 0), 0) << "the clip is there, whatever else is";
  EXPECT_EQ(std::distance(fs::directory_iterator(frames), {}), 1);

  writeFile(sbatch, "#!/bin/sh\ncase $* in *-clip.sh) exit 1 ;; esac\necho 17\n");
  const ProgramRun half = vorto(words, options);
  EXPECT_EQ(half.exitCode, 1);
  EXPECT_NE(half.err.find("-clip.sh; job 17, which renders the frames, is in the queue: scancel 17 "),
            std::string::npos);

  writeFile(sbatch, "#!/bin/sh\necho 'no such partition' >&2\nexit 1\n");
  words = {"submit", "--logs",   folder.path(), "--",       "render",
           "Noise",  "--frames", "1",           "--output", folder.path("n.%d.png")};
  const ProgramRun refused = vorto(words, options);
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.err.find("no such partition\nvorto: cannot submit the job: sbatch did not take "), 0u);
  const ProgramRun without = vorto(words, {{"PATH=" + folder.path()}, 0});
  EXPECT_EQ(without.exitCode, 1);
  EXPECT_NE(without.err.find("there is no sbatch here; --dry-run"), std::string::npos) << without.err;
}

TEST(Submit, TellsOfFramesThatStayAndKeepsOtherScripts) {
  const TemporaryFolder folder;
  fs::permissions(folder.write("bin/sbatch", "#!/bin/sh\necho 17\n"), fs::perms::owner_all);
  RunOptions options = withFrames(folder);
  options.environment.push_back("PATH=" + folder.path("bin"));
  for (const char* const number : {"1", "2", "99"})
    writePng(folder.path(std::string("s.") + number + ".png"), grayPixel(7));
  folder.write("s.3.png", "no picture");
  folder.write("s.04.png", "of another name");
  const struct {
    Words words;
    const char *remark, *script;
  } cases[] = {
      {{"Noise", "--frames", "2-5", "--output", "s.%d.png"}, "1 of 4 frames is there already", "s.png"},
      {{"Noise", "--frames", "2-5", "--output", "s.%d.png"}, "1 of 4 frames is there already", "s.png"},
      {{"Noise", "--frames", "0-4294967295x4294967", "--output", "s.%d.png"}, "3 of 4294967296 frames are", "s.png-2"},
      {{"Noise", "--frames", "2-6", "--output", "s.%d.png"}, "1 of 5 frames is there already", "s.png-3"},
      {{"Noise", "--frames", "2-5", "--output", "s.%d.tif"}, "", "s.tif"},
      {{"Counted Frames", "--frames", "2-5", "--output", "s.%d.png"}, "", "s.png-4"},
  };
  for (const auto& each : cases) {
    Words words{"submit", "--logs", folder.path("logs"), "--", "render"};
    words.insert(words.end(), each.words.begin(), each.words.end());
    words.back() = folder.path(words.back());
    const ProgramRun run = vorto(words, options);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    if (*each.remark) {
      EXPECT_NE(run.err.find(each.remark), std::string::npos) << run.err;
    } else {
      EXPECT_EQ(run.err, "") << each.script;
    }
    EXPECT_NE(run.out.find(folder.path("logs/") + each.script + ".sh\n"), std::string::npos) << run.out;
    EXPECT_NE(readFile(folder.path("logs/") + each.script + ".sh").find("--frames=" + each.words[2].substr(0, 3)),
              std::string::npos);
  }
}

TEST(Submit, ClipsAreNoArrays) {
  const TemporaryFolder folder;
  const struct {
    const char* option;
    bool isArray;
  } cases[] = {{"--array=1-2%1", true}, {"--array 1-2", true},   {"--arr=1-2", true},      {"-a1-2", true},
               {"-a 1-2", true},        {"-Ha1-2", true},        {"--account=a", false},   {"-Aa", false},
               {"-H", false},           {"--comment=-a", false}, {"--acctg-freq=1", false}};
  for (const auto& [option, isArray] : cases) {
    const std::string scripts =
        dryScript({"Noise", "--frames", "1-4", "--output", folder.path("n.mkv")}, {"--slurm=" + std::string(option)});
    const std::size_t clip = scripts.find("#!/bin/sh", 1), found = scripts.find(option);
    EXPECT_LT(found, clip) << option;
    EXPECT_EQ(scripts.find(option, clip) == std::string::npos, isArray) << option;
  }
}

TEST(Submit, ClipsOfOtherParametersHaveOtherFrames) {
  const TemporaryFolder folder;
  const auto framesOf = [&](const Words& more, const Words& before = {}) {
    Words words{"Noise", "--size", "8x8", "--output", folder.path("it's.mkv")};
    words.insert(words.end(), more.begin(), more.end());
    return folderOfFrames(folder.write("script.sh", dryScript(words, before)));
  };
  std::set<std::string> folders;
  const std::string usual = framesOf({"--frames", "1-4"});
  for (const Words& words : {Words{"--frames", "1-4"}, Words{"--frames", "1-5"},
                             Words{"--frames", "1-4", "--time", "2"}, Words{"--frames", "1-4", "--depth", "16"}}) {
    EXPECT_TRUE(folders.insert(framesOf(words)).second) << words.back();
  }
  EXPECT_EQ(framesOf({"--frames", "1-4x2", "--codec", "ffv1", "--jobs", "1"}, {"--retries", "7"}), usual)
      << "the same pictures";
}

TEST(Submit, PartOfAClipHasItsOwnSound) {
  const TemporaryFolder folder;
  const std::string clip = folder.path("in.mp4"), direct = folder.path("direct.mkv"), farm = folder.path("farm.mkv");
  const auto md5 = [](const std::string& path) {  // of pictures and of packets of sound
    const std::string sum = path + ".md5";
    const std::string read = "ffmpeg -v error -y -i " + path;
    const std::string both = read + " -map 0:v -f md5 " + sum + " && " + read + " -map 0:a -c copy -f md5 " + sum + "a";
    EXPECT_EQ(std::system(both.c_str()), 0);
    return readFile(sum) + readFile(sum + "a");
  };
  const std::string make =
      "ffmpeg -v error -f lavfi -i testsrc=size=64x48:rate=30000/1001 -f lavfi -i sine=frequency=440 "
      "-t 1 -c:v mjpeg -c:a aac " +
      clip;
  ASSERT_EQ(std::system(make.c_str()), 0);
  vortoSucceeds({"render", "Levels", "--input", clip, "--frames", "10-19", "--output", direct, "--codec", "ffv1"});
  const std::string scripts =
      dryScript({"Levels", "--input", clip, "--frames", "10-19x6", "--output", farm, "--codec", "ffv1"});
  const std::size_t second = scripts.find("#!/bin/sh", 1);
  const std::string frames = folder.write("frames.sh", scripts.substr(0, second));
  for (int task = 1; task <= 2; ++task) EXPECT_EQ(runTask(frames, task), 0);
  EXPECT_EQ(runTask(folder.write("clip.sh", scripts.substr(second)), 0), 0);
  EXPECT_EQ(md5(farm), md5(direct));
}

TEST(Submit, RefusesWhatAFarmCannotRender) {
  const TemporaryFolder folder;
  writeFrames(folder.path(), 3);
  const RunOptions options = withFrames(folder);
  const std::string in = folder.path("in.%d.tif"), out = folder.path("o.%d.tif");
  const struct {
    Words words;
    int code;
    const char* reason;
  } cases[] = {
      {{"--", "effects"}, 2, "behind -- stands a render command"},
      {{"--", "render", "Levels", "--inptu", in, "--output", out}, 2, "vorto render --help"},
      {{"--", "render", "Lovels", "--input", in, "--output", out}, 2, "there is no effect \"Lovels\""},
      {{"--", "render", "Levels", "--input", in, "--output", out, "--set", "gama=2"}, 2, "gama"},
      {{"--", "render", "Levels", "--input", in, "--output", out, "--frames", "2-9"}, 3, "in.4.tif"},
      {{"--", "render", "Levels", "--input", folder.path("in.1.tif"), "--output", folder.path("o.tif")},
       2,
       "a farm renders a sequence"},
      {{"--", "render", "Levels", "--input", in, "--output", "-", "--format", "png"}, 2, "a farm renders a sequence"},
      {{"--", "render", "Over", "--input", in, "-", "--output", out}, 2, "standard input"},
      {{"--", "render", "Levels", "--input", in, "--output", out, "--frames", "1-3x2", "--chunk", "1"}, 2, "--chunk"},
      {{"--", "render", "Levels", "--input", in, "--output", folder.path("o.mkv"), "--codec", "vp8"}, 2, "vp8"},
      {{"--", "render", "Counted Frames", "--frames", "1-3x2", "--output", out}, 2, "leave x2 out"},
      {{"--slurm", "partition=a", "--", "render", "Levels", "--input", in, "--output", out}, 2, "an option of sbatch"},
      {{"--slurm", "--comment=a\nb", "--", "render", "Levels", "--input", in, "--output", out}, 2, "line break"},
      {{"--logs", "a\\b", "--", "render", "Levels", "--input", in, "--output", out}, 2, "backslash"},
      {{"--after", "me", "--", "render", "Levels", "--input", in, "--output", out}, 2, "--after me"},
  };
  for (const auto& each : cases) {
    Words words{"submit", "--dry-run"};
    words.insert(words.end(), each.words.begin(), each.words.end());
    const ProgramRun run = vorto(words, options);
    EXPECT_EQ(run.exitCode, each.code) << each.reason << ": " << run.err;
    EXPECT_NE(run.err.find(each.reason), std::string::npos) << run.err;
    EXPECT_EQ(run.out, "");
  }
  const std::string script = dryScript({"Counted Frames", "--frames", "1-300", "--output", out}, {}, options);
  EXPECT_NE(script.find("--array=1-1\n"), std::string::npos);
  EXPECT_EQ(script.find("--resume"), std::string::npos) << "its frames need those before them";
}
