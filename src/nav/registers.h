// The registers of the navigation machine and the execution of one command on them: the
// comparison, the register operations and the link the command takes.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "nav/instruction.h"

namespace tarvex::nav {

inline constexpr std::uint64_t kTicksPerSecond = 90000;  // playback time in 90 kHz ticks

struct Registers {
  std::array<std::uint16_t, 16> gprm{};
  std::array<bool, 16> counter{};  // GPRM in counter mode
  // Playback time played since a counter's value was set: it counts up one per second.
  std::array<std::uint64_t, 16> counted{};
  std::array<std::uint16_t, 24> sprm{};
  std::uint64_t timer_counted = 0;    // playback time since the navigation timer was set
  std::uint32_t random = 0x2545F491;  // the state of rnd's generator (fixed start: repeatable)

  // A player's registers at power-on: menu, audio and sub-picture language (two letters),
  // parental level 15, the region mask of region (1-8).
  static Registers PowerOn(const std::string& language, unsigned region);

  std::uint16_t Gprm(unsigned n) const;
  void SetGprm(unsigned n, std::uint16_t value);
  std::uint16_t Sprm(unsigned n) const { return n < sprm.size() ? sprm[n] : 0; }
  std::uint16_t Read(const Operand& operand) const;
  // Counters and the navigation timer advance by a playback time. Returns true when the
  // navigation timer ran out during it.
  bool Advance(std::uint64_t ticks);

  std::uint16_t highlighted_button() const { return static_cast<std::uint16_t>(sprm[8] >> 10); }
  void Highlight(unsigned button) { sprm[8] = static_cast<std::uint16_t>(button << 10); }
};

// What one command did.
struct Outcome {
  bool condition = true;        // the comparison held (or there was none)
  std::optional<Link> link;     // the link, jump or call it takes
  std::uint32_t goto_line = 0;  // 1-based line to go on at
  bool break_out = false;       // Break: the rest of the commands is skipped
};

Outcome Execute(const Instruction& instruction, Registers& registers);

// The registers that differ between two states, as "GPRM1=5 SPRM8=2048" (empty when none).
std::string RegisterChanges(const Registers& before, const Registers& after);

}  // namespace tarvex::nav
