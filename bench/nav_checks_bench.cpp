// Times what verify's navigation checks add to verify --ifo-only, as the command runs them: the
// disc loaded from its files and its IFOs checked, without and with the navigation analysis, in
// turn, RUNS times each (default 50); the medians and their ratio are printed.
//
//   nav_checks_bench DISC [RUNS]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "disc/verify.h"
#include "nav/analysis.h"

namespace {

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

double TimeMs(const char* path, const tarvex::VerifyOptions& options) {
  auto t0 = std::chrono::steady_clock::now();
  std::string error;
  std::optional<tarvex::Disc> disc = tarvex::LoadDisc(path, error);
  if (!disc) return 0;
  tarvex::VerifyResult result = tarvex::VerifyDisc(*disc, options);
  auto t1 = std::chrono::steady_clock::now();
  if (result.findings.size() > 100000) std::puts("");  // keeps the result alive
  return std::chrono::duration<double, std::milli>(t1 - t0).count();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: nav_checks_bench DISC [RUNS]\n");
    return 2;
  }
  int runs = argc > 2 ? std::atoi(argv[2]) : 50;
  std::string error;
  std::optional<tarvex::Disc> disc = tarvex::LoadDisc(argv[1], error);
  if (!disc) {
    std::fprintf(stderr, "%s: %s\n", argv[1], error.c_str());
    return 1;
  }
  tarvex::VerifyOptions ifo_only{.ifo_only = true};
  tarvex::VerifyOptions with_nav{
      .ifo_only = true, .more_checks = [](const tarvex::Disc& d, tarvex::Findings& out) {
        tarvex::nav::AddNavigationFindings(d, tarvex::nav::Analyze(d), out);
      }};
  std::vector<double> plain, nav;
  for (int i = 0; i < runs; ++i) {
    plain.push_back(TimeMs(argv[1], ifo_only));
    nav.push_back(TimeMs(argv[1], with_nav));
  }
  double a = Median(plain), b = Median(nav);
  std::printf("verify --ifo-only (load and check)     %8.2f ms (median of %d)\n", a, runs);
  std::printf("  with the navigation checks            %8.2f ms\n", b);
  std::printf("  navigation checks add                 %8.1f %% (goal: under 10 %%)\n",
              100.0 * (b - a) / a);
  return 0;
}
