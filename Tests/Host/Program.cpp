// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/Program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <string_view>

extern char** environ;

namespace {

namespace fs = std::filesystem;

std::string programPath() {
  return (fs::read_symlink("/proc/self/exe").parent_path() / "vorto").string();
}

// The locale is the one under which the tests run: results must not depend on it. Sanitizers keep their options.
bool isPassedOn(std::string_view variable) {
  for (const std::string_view prefix :
       {"LC_ALL=", "LANG=", "LOCPATH=", "ASAN_OPTIONS=", "LSAN_OPTIONS=", "UBSAN_OPTIONS=", "LD_LIBRARY_PATH="}) {
    if (variable.starts_with(prefix)) return true;
  }
  return false;
}

Words environmentFor(const std::string& home, const RunOptions& options) {
  static const TemporaryFolder cache;  // what is known of plug-ins, for all runs
  Words variables{"HOME=" + home};
  for (char** variable = environ; *variable; ++variable) {
    if (isPassedOn(*variable)) variables.emplace_back(*variable);
  }
  variables.insert(variables.end(), options.environment.begin(), options.environment.end());
  variables.push_back("FREI0R_PATH=");                    // no foreign effects, whatever is installed
  variables.push_back("XDG_CACHE_HOME=" + cache.path());  // of two with one name the first counts
  return variables;
}

std::vector<char*> pointers(Words& texts) {
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

}  // namespace

ProgramRun vorto(const Words& arguments, const RunOptions& options) {
  const TemporaryFolder scratch;
  const std::string home = scratch.path() + "/home";
  fs::create_directory(home);
  Words words{programPath()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  Words variables = environmentFor(home, options);
  const auto wordPointers = pointers(words);
  const auto variablePointers = pointers(variables);
  const ChildResult child = RunInChild([&] {
    if (options.fileSizeLimit) {
      const rlimit limit{options.fileSizeLimit, options.fileSizeLimit};
      setrlimit(RLIMIT_FSIZE, &limit);
    }
    dup2(open(options.input.c_str(), O_RDONLY), STDIN_FILENO);
    execve(wordPointers[0], wordPointers.data(), variablePointers.data());
    return 127;
  });
  const bool exited = WIFEXITED(child.status);
  return {exited ? WEXITSTATUS(child.status) : 128 + WTERMSIG(child.status), child.output, child.errors};
}

ProgramRun vortoSucceeds(const Words& arguments, const RunOptions& options) {
  ProgramRun run = vorto(arguments, options);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return run;
}

void passThrough(const std::string& input, const std::string& output, const Words& arguments,
                 const std::string& effect) {
  Words words{"render", effect, "--input", input, "--output", output, "--working-space", "raw"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  vortoSucceeds(words);
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
