#include <benchmark/benchmark.h>
#include <omp.h>

#include <cstdlib>

#include "bench/support/jobs.h"
#include "tests/support/forced_kernels.h"

int main(int argc, char** argv) {
  omp_set_num_threads(1);  // jobs for a team say so themselves
  if (!TEST_SUPPORT::forceKernelsOfEnvironment()) return EXIT_FAILURE;
  BENCH::addJobs();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return EXIT_FAILURE;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
