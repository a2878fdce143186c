// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <vector>

// Somebody who does the work of a row. All take turns, so that each meets the same machine.
struct Contestant {
  std::string name;
  std::function<void()> work;
  std::vector<double> seconds = {};

  void takeTurn();
  double median();
};

// Times the row's contestants and counts kMeasures (BenchmarkTable.h): the first is the framework, the second memcpy,
// the others are peers, of which the best one is named. `traffic`: bytes that the framework's work reads and writes.
void measureInTurns(benchmark::State& state, std::vector<Contestant> contestants, int rounds, double traffic);
