// The console table of Google Benchmark, keeping each benchmark's real time (the median
// when repeated) and counters for the closing table a benchmark program prints.
#pragma once

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace barcode_orv::bench {

class MedianReporter : public benchmark::ConsoleReporter {
 public:
  struct Result {
    double microseconds = 0;
    std::map<std::string, double> counters;
    bool from_median = false;

    double Counter(const char* name) const {
      const auto it = counters.find(name);
      return it == counters.end() ? 0 : it->second;
    }
  };

  MedianReporter() : ConsoleReporter(isatty(STDOUT_FILENO) != 0 ? OO_Color : OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (run.run_type == Run::RT_Aggregate && !median) continue;
      Result& result = results_[run.run_name.function_name];
      if (result.from_median && !median) continue;
      result.from_median = median;
      result.microseconds = run.GetAdjustedRealTime() * benchmark::GetTimeUnitMultiplier(benchmark::kMicrosecond) /
                            benchmark::GetTimeUnitMultiplier(run.time_unit);
      for (const auto& [name, counter] : run.counters) result.counters[name] = counter.value;
    }
  }

 protected:
  // The result of the benchmark named `kind` + `name` ("Ours_PNG/" + a workload), if run.
  const Result* Find(const char* kind, const char* name) const {
    const auto it = results_.find(std::string(kind) + name);
    return it == results_.end() ? nullptr : &it->second;
  }

  static std::string Format(const char* format, double value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
  }

 private:
  std::map<std::string, Result> results_;
};

}  // namespace barcode_orv::bench
