// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Submission/Slurm.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

extern char** environ;

namespace host {
namespace {

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Unexpected, "cannot submit the job: " + reason);
}

std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> buffer;
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) return text;
  }
}

// What a program prints; what it says on standard error is seen. Empty unless it succeeds.
std::string printed(std::vector<std::string> arguments) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) refuse(std::strerror(errno));
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  std::vector<char*> words;
  words.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  pid_t child = 0;
  const int error = ::posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  const std::string text = error == 0 ? readToEnd(ends[0]) : "";
  ::close(ends[0]);
  if (error == ENOENT) refuse("there is no " + arguments[0] + " here; --dry-run prints the script");
  if (error != 0) refuse(arguments[0] + ": " + std::strerror(error));
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? text : "";
}

}  // namespace

std::string submitScript(const std::string& path, const std::string& after) {
  std::vector<std::string> arguments{"sbatch", "--parsable"};
  if (!after.empty()) arguments.insert(arguments.end(), {"--dependency=afterok:" + after, "--kill-on-invalid-dep=yes"});
  arguments.push_back(path);
  const std::string text = printed(arguments);
  std::string number = text.substr(0, text.find_first_of(";\n"));  // "17" or "17;cluster"
  if (number.empty() || number.find_first_not_of("0123456789") != std::string::npos) {
    refuse("sbatch did not take " + printable(path));
  }
  return number;
}

}  // namespace host
