#pragma once

#include <benchmark/benchmark.h>

/// Measures `report`, which writes a report from what has been collected, by turns with `bare`, which writes the same
/// bytes from ready values; fails when they are not the same. The counter "ratio" is the first's time over the
/// second's; the report's own processor time is the benchmark's (UseManualTime).
void MeasureBesideBare(benchmark::State& state, void (&report)(), void (&bare)());
