#include <benchmark/benchmark.h>
#include <omp.h>

#include "bench/support/jobs.h"

int main(int argc, char** argv) {
  omp_set_num_threads(1);  // jobs for a team say so themselves
  BENCH::addJobs();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
