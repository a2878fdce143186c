// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace host {

// A job for Slurm: a command, run once or in numbered tasks.
struct BatchJob {
  std::string name;
  std::uint64_t tasks = 0;           // from 1 on, each with its number in SLURM_ARRAY_TASK_ID; 0: no tasks
  std::string log;                   // a file, as sbatch names it
  std::vector<std::string> options;  // of sbatch, as the user gives them: "--partition=render"; later ones prevail
  std::string after;                 // the jobs that must have succeeded before, "17" or "17:18"; empty: none
  std::vector<std::string> remarks;  // lines for readers
  std::string folder;                // to run in: a whole path
  std::vector<std::pair<std::string, std::string>> environment;
  std::vector<std::string> preparation;  // commands before it, each of which must succeed
  std::vector<std::string> words;        // of the command, as sh reads them
  unsigned retries = 0;                  // how often a task tries again before it fails
  std::vector<std::string> cleanup;      // commands behind a success, which stays one if they fail
};

// A script for sbatch, which sh runs. Throws Failure for what such a script cannot hold.
std::string batchScript(const BatchJob& job);

// A text as the name of a job and of its files: other characters than letters, digits, '.', '_', '-' become '-', also
// those of other scripts. "render" where nothing is left.
std::string batchName(const std::string& text);

}  // namespace host
