// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Turns.h"

#include "Benchmarks/BenchmarkTable.h"

#include <algorithm>
#include <chrono>

void Contestant::takeTurn() {
  using Clock = std::chrono::steady_clock;
  constexpr double kTurn = 0.0006;
  work();  // the caches are as somebody else left them
  double total = 0;
  while (total < kTurn) {
    const Clock::time_point start = Clock::now();
    work();
    benchmark::ClobberMemory();
    seconds.push_back(std::chrono::duration<double>(Clock::now() - start).count());
    total += seconds.back();
  }
}

double Contestant::median() {
  std::ranges::nth_element(seconds, seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2));
  return seconds[seconds.size() / 2];
}

void measureInTurns(benchmark::State& state, std::vector<Contestant> contestants, int rounds, double traffic) {
  for (auto _ : state) {
    for (int round = 0; round < rounds; ++round) {
      for (Contestant& contestant : contestants) contestant.takeTurn();
    }
    state.SetIterationTime(contestants[0].median());
  }
  const double own = contestants[0].median();
  state.counters[kMeasures.milliseconds] = own * 1e3;
  state.counters[kMeasures.gigabytes] = traffic / own / 1e9;
  state.counters[kMeasures.timesMemcpy] = own / contestants[1].median();
  if (contestants.size() == 2) return;
  const auto best = std::ranges::min_element(contestants.begin() + 2, contestants.end(), {}, &Contestant::median);
  state.counters[kMeasures.peerMilliseconds] = best->median() * 1e3;
  state.counters[kMeasures.timesPeer] = own / best->median();
  state.SetLabel(best->name);
}
