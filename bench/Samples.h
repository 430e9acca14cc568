#pragma once
// Per-iteration samples of a benchmark, reported as their median and spread
// (10th and 90th percentile) rather than a mean that one slow frame drags up.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

class CSamples {
public:
    void Add(double value) { values.push_back(value); }
    double Percentile(double p) const
    {
        if (values.empty())
            return 0.0;
        std::vector<double> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        return sorted[static_cast<std::size_t>(p * static_cast<double>(sorted.size() - 1) + 0.5)];
    }
    double Median() const { return Percentile(0.5); }
    // name (the median), name_p10 and name_p90.
    void Report(benchmark::State& state, const std::string& name) const
    {
        state.counters[name] = Median();
        state.counters[name + "_p10"] = Percentile(0.1);
        state.counters[name + "_p90"] = Percentile(0.9);
    }

private:
    std::vector<double> values;
};

using BenchClock = std::chrono::steady_clock;

inline double MicrosecondsSince(BenchClock::time_point start)
{
    return std::chrono::duration<double, std::micro>(BenchClock::now() - start).count();
}
