// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Submission/BatchScript.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/Submission/ShellText.h"

namespace host {
namespace {

// A command line that does not fit (2), an interruption and an end that was wanted (128 + SIGINT, + SIGTERM) would come
// out the same once more.
constexpr const char* kFinalCodes = "2 | 130 | 143";

std::string directives(const BatchJob& job) {
  std::vector<std::string> options{"--job-name=" + job.name};
  if (job.tasks > 0) options.push_back("--array=1-" + std::to_string(job.tasks));
  options.push_back("--output=" + job.log);
  options.insert(options.end(), {"--requeue", "--open-mode=append"});
  if (!job.after.empty()) options.push_back("--dependency=afterok:" + job.after);
  options.insert(options.end(), job.options.begin(), job.options.end());
  std::string text;
  for (const std::string& option : options) {
    if (!option.starts_with("-")) {
      throw Failure(ExitCode::Usage,
                    "--slurm " + option + ": give an option of sbatch, as in --slurm=--partition=NAME");
    }
    text += "#SBATCH " + batchWord(option) + "\n";
  }
  return text;
}

std::string commandText(const std::vector<std::string>& words) {
  std::string text;
  std::size_t column = 0;
  for (const std::string& word : words) {
    const bool isNewLine = column > 0 && column + word.size() > 90;
    if (isNewLine) text += " \\\n     ";
    text += (column == 0 ? "  " : " ") + word;
    column = (isNewLine ? 6 : column) + 1 + word.size();
  }
  return text;
}

}  // namespace

std::string batchScript(const BatchJob& job) {
  std::string text = "#!/bin/sh\n" + directives(job) + "\n";
  for (const std::string& line : job.remarks) text += "# " + printable(line) + "\n";
  text += "set -u\n";
  if (job.tasks > 0)
    text += ": \"${SLURM_ARRAY_TASK_ID:?is the number of the task, 1 to " + std::to_string(job.tasks) + "}\"\n";
  text += "cd " + shellWord(job.folder) + " || exit 1\n";
  for (const auto& [name, value] : job.environment) text += "export " + name + "=" + shellWord(value) + "\n";
  for (const std::string& command : job.preparation) text += command + " || exit 1\n";
  text += "echo \"== $(date '+%F %T') ${SLURMD_NODENAME:-$(hostname)}" +
          std::string(job.tasks > 0 ? ", task $SLURM_ARRAY_TASK_ID" : "") +
          "\"\n\nleft=" + std::to_string(job.retries) + "\nwhile :; do\n" + commandText(job.words) + " && break\n";
  text += "  code=$?\n  case $code in " + std::string(kFinalCodes) + ") exit \"$code\" ;; esac\n";
  text += "  [ \"$left\" -gt 0 ] || exit \"$code\"\n  echo \"== exit code $code; once more\"\n";
  text += "  left=$((left - 1))\ndone\n";
  for (const std::string& command : job.cleanup) text += command + "\n";
  if (!job.cleanup.empty()) text += "exit 0\n";
  return text;
}

std::string batchName(const std::string& text) {
  std::string name;
  bool isAny = false;
  for (const char c : text) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    isAny = isAny || isLetter;
    const bool isKept = isLetter || c == '_' || (!name.empty() && (c == '.' || c == '-'));
    if (isKept) {
      name += c;
    } else if (!name.empty() && name.back() != '-') {
      name += '-';
    }
  }
  while (!name.empty() && (name.back() == '-' || name.back() == '.')) name.pop_back();
  return isAny ? name : "render";
}

}  // namespace host
