// Time per call of the Student's t distribution function and quantile, at
// df 10 and 1e5, beside Boost.Math's for the same arguments.
//
// RESULTS (g++ 12 -O3 Release, Boost 1.81 with its default policy, 2 cores at
// 2.4 GHz, load average about 5 from other builds; median CPU time of 5
// repetitions, each call cycling through 8 arguments):
//
//   BM_TSXStudentTCDF/10                 3068 ns
//   BM_TSXStudentTCDF/100000            22571 ns
//   BM_TSXStudentTQuantile/10            1718 ns
//   BM_TSXStudentTQuantile/100000       69746 ns
//   BM_BoostStudentTCDF/10               2826 ns
//   BM_BoostStudentTCDF/100000           3019 ns
//   BM_BoostStudentTQuantile/10          5536 ns
//   BM_BoostStudentTQuantile/100000      6233 ns
//
// At df 1e5 the series of the incomplete beta converges like X^n with X =
// df / (df + t^2) near 1, so it runs its 10001 terms before the continued
// fraction takes over; the quantile pays that on each Newton pass.
#include <benchmark/benchmark.h>

#include <cstddef>

#include "tsxml/stats/distributions.h"

#ifdef TSXML_HAVE_BOOST_MATH
#include <boost/math/distributions/students_t.hpp>
#endif

namespace {

// Arguments as a significance or a confidence limit would use them.
constexpr double kXs[] = {-3.5, -2.1, -1.3, -0.4, 0.2, 0.9, 1.7, 2.6};
constexpr double kPs[] = {0.005, 0.025, 0.05, 0.1, 0.9, 0.95, 0.975, 0.995};
constexpr std::size_t kCount = sizeof(kXs) / sizeof(kXs[0]);
static_assert(sizeof(kPs) / sizeof(kPs[0]) == kCount);

// The degrees of freedom of a benchmark: its range(0).
double Df(const benchmark::State& state) {
  return state.range(0) == 10 ? 10.0 : 1e5;
}

// Times `call` on the arguments `args` in turn.
template <typename Call>
void Cycle(benchmark::State& state, const double (&args)[kCount], Call call) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(call(args[i]));
    i = (i + 1) % kCount;
  }
}

void BM_TSXStudentTCDF(benchmark::State& state) {
  const double df = Df(state);
  int status = 0;
  Cycle(state, kXs, [&](double x) { return TSXStudentTCDF(x, df, status); });
}
BENCHMARK(BM_TSXStudentTCDF)->Arg(10)->Arg(100000);

void BM_TSXStudentTQuantile(benchmark::State& state) {
  const double df = Df(state);
  int status = 0;
  Cycle(state, kPs,
        [&](double p) { return TSXStudentTQuantile(p, df, status); });
}
BENCHMARK(BM_TSXStudentTQuantile)->Arg(10)->Arg(100000);

#ifdef TSXML_HAVE_BOOST_MATH
void BM_BoostStudentTCDF(benchmark::State& state) {
  const boost::math::students_t dist(Df(state));
  Cycle(state, kXs, [&](double x) { return boost::math::cdf(dist, x); });
}
BENCHMARK(BM_BoostStudentTCDF)->Arg(10)->Arg(100000);

void BM_BoostStudentTQuantile(benchmark::State& state) {
  const boost::math::students_t dist(Df(state));
  Cycle(state, kPs, [&](double p) { return boost::math::quantile(dist, p); });
}
BENCHMARK(BM_BoostStudentTQuantile)->Arg(10)->Arg(100000);
#endif

}  // namespace
