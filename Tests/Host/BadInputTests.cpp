// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Tests/Host/Program.h"
#include "Tests/Host/TestImages.h"

#include <elf.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iomanip>
#include <map>
#include <sstream>

// Whatever is wrong: one line that names the thing and the reason, the exit code of that sort of failure, and every
// file as it was.

namespace {

namespace fs = std::filesystem;

constexpr const char* OldContent = "what was there before";

// A folder with good and bad files to point at.
class Workplace {
 public:
  Workplace() {
    for (const char* name : {"good.tif", "f.1.tif", "f.2.tif", "f.4.tif"}) writeTiff(at(name), variedImage(4, 3, 8));
    writeTiff(at("other.tif"), variedImage(5, 3, 8));
    writeFile(at("text.png"), "this is no picture");
    writeFile(at("empty.png"), "");
    writeFile(at("half.tif"), readFile(at("good.tif")).substr(0, 60));
    writeFile(at("out.png"), OldContent);
    for (const char* documents : {VORTO_TEST_DOCUMENTS, VORTO_TEST_DOCUMENTS "/bad"}) fs::copy(documents, path());
    fs::create_directory(at("folder.png"));
  }

  std::string at(const std::string& name) const { return folder_.path() + "/" + name; }
  const std::string& path() const { return folder_.path(); }

  // Every "@" in an argument stands for the folder.
  ProgramRun run(const Words& arguments, const RunOptions& options = {}) const {
    Words words;
    for (const std::string& argument : arguments) {
      words.push_back(argument);
      for (std::size_t mark; (mark = words.back().find('@')) != std::string::npos;)
        words.back().replace(mark, 1, path());
    }
    return vorto(words, options);
  }

  Words files() const {
    Words names;
    for (const auto& entry : fs::directory_iterator(path())) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  TemporaryFolder folder_;
};

void expectOneLine(const ProgramRun& run) {
  EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
  EXPECT_TRUE(run.err.starts_with("vorto: ")) << run.err;
}

enum { Usage = 2, Input = 3, Output = 4 };

struct BadInput {
  int line;  // of the file
  int exitCode;
  Words arguments;
  Words said;  // all of them
};

void PrintTo(const BadInput& input, std::ostream* out) {
  *out << "line " << input.line << " of " VORTO_BAD_INPUTS;
}

// Lines "sort: command line => part of the message | another part"; words with spaces stand in quotation marks.
std::vector<BadInput> badInputs() {
  const std::map<std::string, int> codes{{"usage", Usage}, {"input", Input}, {"output", Output}};
  std::vector<BadInput> rows;
  std::ifstream file(VORTO_BAD_INPUTS);
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    ++number;
    if (line.starts_with('#')) continue;
    const std::size_t colon = line.find(": ");
    const std::size_t arrow = line.find(" => ");
    BadInput row{number, codes.at(line.substr(0, colon)), {}, {}};
    std::istringstream words(line.substr(colon + 2, arrow - colon - 2));
    for (std::string word; words >> std::quoted(word);) row.arguments.push_back(word);
    for (std::size_t at = arrow + 4, bar = 0; bar != std::string::npos; at = bar + 3) {
      bar = line.find(" | ", at);
      row.said.push_back(line.substr(at, bar == std::string::npos ? bar : bar - at));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

Words render(const Words& more, const std::string& output = "@/out.png") {
  Words words{"render", "Levels", "--output", output};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

class BadInputTest : public testing::TestWithParam<BadInput> {};

}  // namespace

TEST_P(BadInputTest, IsToldInOneLineAndChangesNothing) {
  const Workplace workplace;
  const auto before = workplace.files();
  const ProgramRun run = workplace.run(GetParam().arguments);
  EXPECT_EQ(run.exitCode, GetParam().exitCode) << run.err;
  EXPECT_EQ(run.out, "");
  expectOneLine(run);
  for (const std::string& part : GetParam().said)
    EXPECT_NE(run.err.find(part), std::string::npos) << part << "\n" << run.err;
  EXPECT_EQ(workplace.files(), before);
  EXPECT_EQ(readFile(workplace.at("out.png")), OldContent);
}

INSTANTIATE_TEST_SUITE_P(Host, BadInputTest, testing::ValuesIn(badInputs()),
                         [](const auto& row) { return "Line" + std::to_string(row.param.line); });

TEST(BadInputs, AreAllRead) {
  EXPECT_GE(badInputs().size(), 85u);
}

TEST(FullDisk, LeavesTheOldFile) {
  const Workplace workplace;
  const auto before = workplace.files();
  RunOptions full;
  full.fileSizeLimit = 4096;
  for (const std::string name : {"out.png", "out.jpg", "out.tif", "out.exr"}) {
    writeFile(workplace.at(name), OldContent);
    const ProgramRun run = workplace.run(
        {"render", "Levels", "--input", VORTO_PHOTOS "/coffee.png", "--working-space", "raw", "--output", "@/" + name},
        full);
    EXPECT_EQ(run.exitCode, Output);
    expectOneLine(run);
    EXPECT_NE(run.err.find(name), std::string::npos) << run.err;
    EXPECT_EQ(readFile(workplace.at(name)), OldContent);
    if (name != "out.png") fs::remove(workplace.at(name));
  }
  EXPECT_EQ(workplace.files(), before);
  full.fileSizeLimit = 16;
  const ProgramRun list = workplace.run({"effects"}, full);
  EXPECT_EQ(list.exitCode, Output) << "standard output counts too";
}

// At any time of a run that reads little and writes much.
TEST(Signals, LeaveNothingBehind) {
  const std::string program = (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    for (const int delay : {20, 60, 120, 240, 480}) {  // milliseconds
      const TemporaryFolder folder;
      const std::string output = folder.path() + "/out.tif";
      writeFile(output, OldContent);
      const pid_t process = fork();
      if (process == 0) {
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        execl(program.c_str(), "vorto", "render", "Checkerboard", "--size", "6000x6000", "--output", output.c_str(),
              nullptr);
        _exit(127);
      }
      usleep(static_cast<useconds_t>(delay) * 1000);
      kill(process, signal);
      int status = 0;
      waitpid(process, &status, 0);
      EXPECT_TRUE(WIFSIGNALED(status) ? WTERMSIG(status) == signal : status == 0) << status;
      EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 1) << signal;
      EXPECT_TRUE(fs::file_size(output) > 1000 || readFile(output) == OldContent);
    }
  }
}

TEST(Permissions, ReadOnlyFoldersAndFilesStay) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is read-only for root";
  const Workplace workplace;
  chmod(workplace.at("out.png").c_str(), 0444);
  EXPECT_EQ(workplace.run(render({"--input", "@/good.tif"})).exitCode, Output);
  chmod(workplace.at("out.png").c_str(), 0644);
  chmod(workplace.path().c_str(), 0555);
  const ProgramRun run = workplace.run(render({"--input", "@/good.tif"}));
  chmod(workplace.path().c_str(), 0755);
  EXPECT_EQ(run.exitCode, Output);
  expectOneLine(run);
  EXPECT_EQ(readFile(workplace.at("out.png")), OldContent);
}

// What breaks is named and skipped, in the first run as in those that know it already; the effects that ship are there.
TEST(PlugIns, BrokenOnesAreOnlyWarnedOf) {
  const Workplace workplace;
  fs::create_directories(workplace.at("plugins/Broken.plugin/Contents"));
  writeFile(workplace.at("plugins/Bad.qtz"), "no composition");
  const std::string binaries = fs::read_symlink("/proc/self/exe").parent_path().string() + "/../test-plugins/";
  for (const std::string name : {"ThrowingConstructor", "Unmade", "Hanging", "Damaged"}) {
    const std::string contents = workplace.at("plugins/" + name + ".plugin/Contents");
    fs::create_directories(contents + "/Linux");
    writeFile(contents + "/Info.plist",
              "<plist version=\"1.0\"><dict><key>CFBundleExecutable</key><string>P</string></dict></plist>");
    fs::copy_file(binaries + (name == "Damaged" ? "Unmade" : name) + ".so", contents + "/Linux/P");
  }
  // The dynamic linker follows the table of the dynamic section wherever it leads.
  const std::string damaged = workplace.at("plugins/Damaged.plugin/Contents/Linux/P");
  std::string bytes = readFile(damaged);
  Elf64_Ehdr header;
  std::memcpy(&header, bytes.data(), sizeof header);
  for (std::size_t i = 0; i < header.e_phnum; ++i) {
    Elf64_Phdr segment;
    std::memcpy(&segment, bytes.data() + header.e_phoff + i * sizeof segment, sizeof segment);
    if (segment.p_type != PT_DYNAMIC) continue;
    for (std::size_t at = 8; at < segment.p_filesz; at += 16) bytes[segment.p_offset + at + 5] = '\x7f';
  }
  writeFile(damaged, bytes);

  RunOptions options;
  options.environment = {"VORTO_PLUGIN_PATH=" + workplace.at("nowhere") + "::" + workplace.at("plugins"),
                         "XDG_CACHE_HOME=" + workplace.at("cache")};
  const std::string cache = workplace.at("cache/vorto/plug-ins");
  EXPECT_NE(workplace.run({"effects"}, options).err.find("Hanging.plugin: loading it takes longer"), std::string::npos);
  fs::remove_all(workplace.at("plugins/Hanging.plugin"));  // is not remembered, and costs its time again
  for (const char* state : {"kept", "damaged", "made again"}) {
    for (const Words& command : {Words{"effects"}, Words{"effects", "--json"}}) {
      const ProgramRun run = workplace.run(command, options);
      EXPECT_EQ(run.exitCode, 0) << state;
      for (const char* said :
           {"Broken.plugin: ", "Bad.qtz: ", "ThrowingConstructor.plugin: it ends the process",
            "Damaged.plugin: it ends the process", "no patch today", "\"Gives None\" could not be made, from "}) {
        EXPECT_NE(run.err.find(said), std::string::npos) << state << ": " << said << "\n" << run.err;
      }
      EXPECT_NE(run.out.find("Gradient Map"), std::string::npos) << state;
    }
    EXPECT_NE(readFile(cache).find("ThrowingConstructor"), std::string::npos) << state;
    if (std::string(state) == "kept") writeFile(cache, readFile(cache).substr(0, 300) + "\n\t\n\xff");
  }
}
