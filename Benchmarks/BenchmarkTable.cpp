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

class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred) std::fprintf(stderr, "%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
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
