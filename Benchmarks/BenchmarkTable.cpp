// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace {

struct Table {
  std::string name;
  std::vector<std::string> rows;
  std::vector<std::string> columns;
  std::map<std::pair<std::string, std::string>, double> cells;  // median microseconds
};

void addOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

// The rows of benchmarks that compare by themselves, as they come.
class MeasuredRows {
 public:
  void print(const benchmark::BenchmarkReporter::Run& run) {
    const std::string name = run.run_name.function_name;
    const std::size_t slash = name.find('/');
    const std::string table = name.substr(0, slash);
    if (table != _table) {
      std::printf("\n%-44s %9s %8s %9s | %9s %8s  %s\n", table.c_str(), "ms", "GB/s", "x memcpy", "peer ms", "x peer",
                  "best peer");
      _table = table;
    }
    const auto value = [&run](const char* counter) {
      const auto found = run.counters.find(counter);
      return found == run.counters.end() ? 0.0 : found->second.value;
    };
    std::printf("%-44s %9.3f %8.1f %9.2f |", name.substr(slash + 1).c_str(), value(kMeasures.milliseconds),
                value(kMeasures.gigabytes), value(kMeasures.timesMemcpy));
    if (value(kMeasures.timesPeer) > 0) {
      std::printf(" %9.3f %8.2f  %s", value(kMeasures.peerMilliseconds), value(kMeasures.timesPeer),
                  run.report_label.c_str());
    }
    std::printf("\n");
    std::fflush(stdout);
  }

 private:
  std::string _table;
};

class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
      if (run.counters.contains(kMeasures.timesMemcpy)) {
        _measured.print(run);
        continue;
      }
      const bool median = run.aggregate_name == "median" || run.repetitions <= 1;
      if (!run.error_occurred && median) add(run.run_name.function_name, run.GetAdjustedCPUTime());
    }
  }

  void Finalize() override {
    for (const Table& table : _tables) print(table);
  }

 private:
  void add(const std::string& name, double microseconds) {
    const std::size_t first = name.find('/');
    const std::size_t last = name.rfind('/');
    if (first == std::string::npos || first == last) return;
    const std::string tableName = name.substr(0, first);
    auto table = std::ranges::find(_tables, tableName, &Table::name);
    if (table == _tables.end()) table = _tables.insert(table, Table{tableName, {}, {}, {}});
    const std::string row = name.substr(first + 1, last - first - 1);
    const std::string column = name.substr(last + 1);
    addOnce(table->rows, row);
    addOnce(table->columns, column);
    table->cells[{row, column}] = microseconds;
  }

  static void print(const Table& table) {
    std::printf("\n%s (microseconds of processor time, median; in brackets: times the vorto column)\n%-28s",
                table.name.c_str(), "");
    for (const std::string& column : table.columns) std::printf(" %18s", column.c_str());
    std::printf("\n");
    for (const std::string& row : table.rows) {
      std::printf("%-28s", row.c_str());
      const auto own = table.cells.find({row, "vorto"});
      for (const std::string& column : table.columns) {
        const auto cell = table.cells.find({row, column});
        if (cell == table.cells.end()) {
          std::printf(" %18s", "-");
        } else if (own == table.cells.end() || cell == own) {
          std::printf(" %18.2f", cell->second);
        } else {
          std::printf(" %9.2f (%6.2f)", cell->second, cell->second / own->second);
        }
      }
      std::printf("\n");
    }
    std::fflush(stdout);
  }

  std::vector<Table> _tables;
  MeasuredRows _measured;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  TableReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
