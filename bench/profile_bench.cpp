// Times the profile (INI) component: N keys written into a few sections, flushed, read back
// from a fresh store, overwritten in place and flushed again.
//
//   profile_bench [KEYS]      (default 100000)
//
// Prints the time of each phase in milliseconds; exits 1 when a value does not read back.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/profile.h"

int main(int argc, char** argv) {
  const int keys = argc > 1 ? std::atoi(argv[1]) : 100000;
  char folder[] = "/tmp/tarvex-profile-bench-XXXXXX";
  if (!::mkdtemp(folder)) return 2;
  const std::string path = std::string(folder) + "/source.ini";

  std::vector<std::string> sections, upper_keys, keys_lc, values;
  for (int i = 0; i < keys; ++i) {
    std::string number = std::to_string(1000000 + i).substr(1);
    sections.push_back("sec0" + std::to_string(i % 7));
    keys_lc.push_back("vobu_sa" + number);
    upper_keys.push_back("VOBU_SA" + number);
    values.push_back(std::to_string(i * 3));
  }
  using Clock = std::chrono::steady_clock;
  auto ms = [](Clock::time_point a, Clock::time_point b) {
    return std::chrono::duration<double, std::milli>(b - a).count();
  };

  std::clock_t cpu0 = std::clock();
  auto t0 = Clock::now();
  tarvex::ProfileStore writer;
  for (int i = 0; i < keys; ++i) writer.WriteString(path, sections[i], keys_lc[i], values[i]);
  auto t1 = Clock::now();
  writer.Flush();
  auto t2 = Clock::now();
  tarvex::ProfileStore reader;
  int bad = 0;
  for (int i = 0; i < keys; ++i) {
    if (reader.GetString(path, sections[i], upper_keys[i], "$") != values[i]) ++bad;
  }
  auto t3 = Clock::now();
  for (int i = 0; i < keys; ++i) reader.WriteString(path, sections[i], keys_lc[i], "x");
  reader.Flush();
  auto t4 = Clock::now();
  double cpu_ms = 1000.0 * static_cast<double>(std::clock() - cpu0) / CLOCKS_PER_SEC;

  std::printf(
      "keys %d: write %.1f ms, flush %.1f ms, read back %.1f ms, rewrite+flush %.1f ms, "
      "total %.1f ms (CPU %.1f ms)\n",
      keys, ms(t0, t1), ms(t1, t2), ms(t2, t3), ms(t3, t4), ms(t0, t4), cpu_ms);
  std::error_code ec;
  std::filesystem::remove_all(folder, ec);
  if (bad != 0) {
    std::printf("%d values did not read back\n", bad);
    return 1;
  }
  return 0;
}
