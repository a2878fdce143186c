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

std::vector<std::string> environmentFor(const std::string& home, const RunOptions& options) {
  std::vector<std::string> variables{"HOME=" + home};
  for (char** variable = environ; *variable; ++variable) {
    if (isPassedOn(*variable)) variables.emplace_back(*variable);
  }
  variables.insert(variables.end(), options.environment.begin(), options.environment.end());
  return variables;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

[[noreturn]] void execute(char** arguments, char** variables, const RunOptions& options, int out, int err) {
  if (options.fileSizeLimit) {
    const rlimit limit{options.fileSizeLimit, options.fileSizeLimit};
    setrlimit(RLIMIT_FSIZE, &limit);
    signal(SIGXFSZ, SIG_IGN);
  }
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  execve(arguments[0], arguments, variables);
  _exit(127);
}

}  // namespace

ProgramRun vorto(const std::vector<std::string>& arguments, const RunOptions& options) {
  const TemporaryFolder scratch;
  const std::string home = scratch.path() + "/home";
  fs::create_directory(home);
  std::vector<std::string> words{programPath()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = environmentFor(home, options);
  auto wordPointers = pointers(words);
  auto variablePointers = pointers(variables);
  const int out = memfd_create("out", MFD_CLOEXEC);
  const int err = memfd_create("err", MFD_CLOEXEC);

  const pid_t child = fork();
  if (child == 0) execute(wordPointers.data(), variablePointers.data(), options, out, err);
  int status = 0;
  waitpid(child, &status, 0);
  ProgramRun run;
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = readFile("/proc/self/fd/" + std::to_string(out));
  run.err = readFile("/proc/self/fd/" + std::to_string(err));
  close(out);
  close(err);
  return run;
}

ProgramRun vortoSucceeds(const std::vector<std::string>& arguments, const RunOptions& options) {
  ProgramRun run = vorto(arguments, options);
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return run;
}

void passThrough(const std::string& input, const std::string& output, const std::vector<std::string>& arguments) {
  std::vector<std::string> words{"render", "Levels", "--input", input, "--output", output};
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
