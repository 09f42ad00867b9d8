#pragma once

#include <benchmark/benchmark.h>
#include <chrono>

/// Times the work and, in turns with it so that both meet the same noise, the yardstick it is held against.
/// Reports the work's time, the yardstick's ("yardstick", in seconds) and how many times as long the work took
/// ("ratio"). Register with UseManualTime().
template <class Work, class Yardstick>
void KRRunBesideYardstick(benchmark::State& state, Work work, Yardstick yardstick)
{
    using Clock = std::chrono::steady_clock;
    using Seconds = std::chrono::duration<double>;
    Seconds workTime {};
    Seconds yardstickTime {};
    for (auto _ : state) {
        const auto start = Clock::now();
        yardstick();
        const auto middle = Clock::now();
        work();
        const auto end = Clock::now();
        yardstickTime += middle - start;
        workTime += end - middle;
        state.SetIterationTime(Seconds(end - middle).count());
    }
    state.counters["yardstick"]
        = benchmark::Counter(yardstickTime.count(), benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = workTime / yardstickTime;
}
