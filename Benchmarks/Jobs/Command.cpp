// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Jobs/Command.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <sstream>

namespace {

[[noreturn]] void becomeProgram(const std::string& folder, const std::vector<std::string>& words) {
  const int nowhere = open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, stream);
  std::vector<char*> arguments;
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  if (chdir(folder.c_str()) == 0) execvp(arguments[0], arguments.data());
  _exit(127);
}

double secondsOf(const timeval& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

}  // namespace

Cost runCommand(const std::string& folder, const std::vector<std::string>& words) {
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) becomeProgram(folder, words);
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child) return {};
  Cost cost;
  cost.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
  cost.seconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
  cost.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  cost.mebibytes = static_cast<double>(usage.ru_maxrss) / 1024;
  return cost;
}

std::vector<std::string> wordsOf(const std::string& line) {
  std::istringstream stream(line);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  return words;
}
