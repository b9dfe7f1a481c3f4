#include "nav/machine.h"

#include <span>
#include <unordered_set>

#include "nav/cell_buttons.h"
#include "nav/instruction.h"
#include "nav/registers.h"
#include "platform/format.h"

namespace tarvex::nav {

namespace {

constexpr std::uint64_t kMaxCommandsWithoutCell = 100000;
constexpr std::uint8_t kInfiniteStill = 0xFF;

enum class StepKind : std::uint8_t {
  kChain,         // enter the chain: pre commands, then its first program
  kChainProgram,  // enter the chain: pre commands, then the current program
  kProgram,       // play the current program
  kCell,          // play the current cell (angle blocks resolved)
  kResumeCell,    // play the current cell as it was left
  kCellPost,      // the cell's command, then the next cell
  kChainPost,     // post commands, then the next chain
  kLink,
  kDone,
};

struct Step {
  StepKind kind = StepKind::kDone;
  Link link;
};

struct Resume {
  std::uint32_t title_set = 0, pgcn = 0, cell = 0;
  std::array<std::uint16_t, 5> sprm{};  // SPRM 4 to 8
};

// What a key did at a cell that waits for the user.
enum class KeyEffect : std::uint8_t { kNone, kEndStill, kJump };

std::uint8_t BlockMode(const Cell& cell) {
  return cell.category[0] >> 6;
}

class Machine {
 public:
  Machine(const Disc& disc, const PlayOptions& options)
      : disc_(disc),
        options_(options),
        buttons_(disc),
        regs_(Registers::PowerOn(options.language, options.region)) {
    result_.keys = options.keys;
  }

  PlayResult Run() {
    Step step = StartFirstPlay();
    while (step.kind != StepKind::kDone) step = Advance(step);
    return std::move(result_);
  }

 private:
  Step Advance(const Step& step) {
    switch (step.kind) {
      case StepKind::kChain:
        return EnterChain(true);
      case StepKind::kChainProgram:
        return EnterChain(false);
      case StepKind::kProgram:
        return PlayProgram();
      case StepKind::kCell:
        return PlayCell();
      case StepKind::kResumeCell:
        return EnterCell();
      case StepKind::kCellPost:
        return CellPost();
      case StepKind::kChainPost:
        return ChainPost();
      case StepKind::kLink:
        return ProcessLink(step.link);
      default:
        return {};
    }
  }

  static Step Go(StepKind kind) { return {kind, {}}; }

  Step End(const std::string& end, const std::string& reason) {
    result_.end = end;
    result_.end_reason = reason;
    result_.trace.push_back({TraceLine::Kind::kEnd, "end: " + end + " (" + reason + ")", {}});
    return {};
  }

  ChainRef Here() const {
    bool manager = domain_ == Domain::kFirstPlay || domain_ == Domain::kVmgMenu;
    return {domain_, manager ? 0 : vts_, unit_, pgcn_};
  }
  std::string HereName() const { return ChainName(disc_, Here()); }

  // --- Where playback is -----------------------------------------------------------------

  Step StartFirstPlay() {
    if (disc_.vmg.first_play) {
      domain_ = Domain::kFirstPlay;
      pgc_ = &*disc_.vmg.first_play;
      pgcn_ = 0;
      return Go(StepKind::kChain);
    }
    // Without a first-play chain a player starts at the video manager's first menu chain.
    domain_ = Domain::kVmgMenu;
    if (!SetChain(1)) return End("error", "the disc has no first-play chain and no VMGM chain");
    return Go(StepKind::kChain);
  }

  // Makes chain n of the current domain (its language unit chosen by SPRM 0) current.
  bool SetChain(std::uint32_t n) {
    if (domain_ == Domain::kFirstPlay) domain_ = Domain::kVmgMenu;
    if (const std::vector<LanguageUnit>* units = UnitsOf(disc_, domain_, vts_)) {
      unit_ = ChooseUnit(*units, regs_.sprm[0]).value_or(0);
    } else {
      unit_ = 0;
    }
    const std::vector<Pgc>* chains = ChainsOf(disc_, domain_, vts_, unit_);
    if (!chains || n < 1 || n > chains->size()) return false;
    pgcn_ = n;
    pgc_ = &(*chains)[n - 1];
    pgn_ = 1;
    if (domain_ == Domain::kVtsTitle) regs_.sprm[6] = static_cast<std::uint16_t>(n);
    return true;
  }

  std::string MissingChain(std::uint32_t n) const {
    return Format("there is no program chain %d in ", {n}) +
           (domain_ == Domain::kVtsTitle ? Format("VTS %d", {vts_})
                                         : std::string(DomainName(domain_)) + " " +
                                               UnitLanguage(disc_, Here()).value_or("?"));
  }

  // Enters the entry chain of menu (2 title, 3 root .. 7 chapter) of a menu domain.
  std::optional<std::string> EnterMenu(Domain domain, std::uint8_t menu) {
    const std::vector<LanguageUnit>* units = UnitsOf(disc_, domain, vts_);
    if (!units || units->empty()) {
      return domain == Domain::kVmgMenu ? std::string("the video manager has no menus")
                                        : Format("title set %d has no menus", {vts_});
    }
    std::uint32_t unit = ChooseUnit(*units, regs_.sprm[0]).value_or(0);
    std::uint32_t n = EntryChain((*units)[unit].pgcs, menu);
    if (n == 0) {
      return std::string(domain == Domain::kVmgMenu ? "the video manager" : "the title set") +
             " has no " + MenuName(menu);
    }
    domain_ = domain;
    SetChain(n);
    return std::nullopt;
  }

  // Part of title part of title ttn of title set vts: its chain current, its program next.
  bool SetPart(std::uint32_t vts, std::uint32_t ttn, std::uint32_t part) {
    const TitleSet* ts = disc_.FindTitleSet(vts);
    if (!ts || !ts->present || ttn < 1 || ttn > ts->parts.size()) return false;
    const std::vector<PartOfTitle>& parts = ts->parts[ttn - 1];
    if (part < 1 || part > parts.size()) return false;
    std::uint32_t title = DiscTitle(disc_, vts, ttn);
    if (title == 0) return false;
    domain_ = Domain::kVtsTitle;
    vts_ = vts;
    if (!SetChain(parts[part - 1].pgcn)) return false;
    regs_.sprm[4] = static_cast<std::uint16_t>(title);
    regs_.sprm[5] = static_cast<std::uint16_t>(ttn);
    regs_.sprm[7] = static_cast<std::uint16_t>(part);
    pgn_ = parts[part - 1].pgn;
    return true;
  }

  // The part of title the current chain and program play (the first title of the set that
  // has them, as players search), 0 when none.
  std::pair<std::uint32_t, std::uint32_t> SearchPart() const {
    const TitleSet* ts = disc_.FindTitleSet(vts_);
    if (!ts) return {0, 0};
    for (std::uint32_t t = 0; t < ts->parts.size(); ++t) {
      const std::vector<PartOfTitle>& parts = ts->parts[t];
      for (std::uint32_t p = 0; p < parts.size(); ++p) {
        if (parts[p].pgcn != pgcn_) continue;
        if (parts[p].pgn == pgn_) return {t + 1, p + 1};
        if (p > 0 && parts[p].pgn > pgn_ && parts[p - 1].pgn < pgn_) return {t + 1, p};
      }
    }
    return {0, 0};
  }

  // The program of the current cell; false past the last cell.
  bool SetProgramFromCell() {
    std::uint32_t programs = static_cast<std::uint32_t>(pgc_->program_map.size());
    std::uint32_t pgn = 0;
    while (pgn < programs && celln_ >= pgc_->program_map[pgn]) ++pgn;
    if (pgn == programs && celln_ > pgc_->cells.size()) return false;
    pgn_ = pgn;
    if (domain_ == Domain::kVtsTitle) {
      auto [ttn, part] = SearchPart();
      if (ttn) regs_.sprm[7] = static_cast<std::uint16_t>(part);
    }
    return true;
  }

  void SaveResume(std::uint32_t cell) {
    rsm_.cell = cell ? cell : celln_;
    rsm_.title_set = vts_;
    rsm_.pgcn = pgcn_;
    for (int i = 0; i < 5; ++i) rsm_.sprm[i] = regs_.sprm[4 + i];
  }

  // --- Loop detection --------------------------------------------------------------------

  // Whether the machine is in a state it was in before (same place, registers, resume point
  // and keys left): it would go on the same way for ever.
  bool Repeats(char where) {
    std::string key;
    auto put = [&key](std::uint64_t v, int bytes) {
      for (int i = 0; i < bytes; ++i) key.push_back(static_cast<char>(v >> (8 * i)));
    };
    key.push_back(where);
    put(static_cast<std::uint8_t>(domain_), 1);
    put(vts_, 2);
    put(unit_, 2);
    put(pgcn_, 2);
    put(pgn_, 2);
    put(celln_, 2);
    for (unsigned n = 0; n < 16; ++n) put(regs_.Gprm(n) | (regs_.counter[n] ? 0x10000 : 0), 3);
    for (std::uint16_t s : regs_.sprm) put(s, 2);
    put(regs_.random, 4);
    put(regs_.timer_counted, 4);
    put(rsm_.title_set, 2);
    put(rsm_.pgcn, 2);
    put(rsm_.cell, 2);
    for (std::uint16_t s : rsm_.sprm) put(s, 2);
    put(next_key_, 4);
    return !seen_.insert(std::move(key)).second;
  }

  // --- Commands --------------------------------------------------------------------------

  // What a command did: where it linked or went on, else the registers it set.
  static std::string ResultText(const Outcome& out, const std::string& changes) {
    if (out.link) return "link: " + LinkText(*out.link);
    if (out.goto_line) return Format("goto line %d", {out.goto_line});
    if (out.break_out) return "break";
    if (!changes.empty()) return "set " + changes;
    return out.condition ? "done" : "condition false";
  }

  // Runs one command; nothing when the run ended (an unknown command or too many commands).
  std::optional<Outcome> RunCommand(const NavCommand& bytes, const char* where,
                                    std::uint32_t number) {
    if (++commands_since_cell_ > kMaxCommandsWithoutCell) {
      End("loop", "100,000 commands executed without entering a cell");
      return std::nullopt;
    }
    Instruction in = Decode(bytes);
    Registers before = regs_;
    Outcome out = Execute(in, regs_);
    std::string changes = RegisterChanges(before, regs_);
    CommandEvent event{Here(), UnitLanguage(disc_, Here()), where,
                       number, InstructionText(in),         ResultText(out, changes),
                       changes};
    result_.trace.push_back(
        {TraceLine::Kind::kCommand,
         Format("  %s %d: ", {where, number}) + event.text + "  -> " + event.result,
         event.registers});
    result_.commands.push_back(std::move(event));
    if (in.unknown) {
      End("error", Format("%s command %d of ", {where, number}) + HereName() +
                       " is not a navigation command");
      return std::nullopt;
    }
    return out;
  }

  // Runs a list of commands from its first line; the link it ends with, if any. A link that
  // only highlights a button ends the list without leaving the chain.
  std::optional<Link> RunCommands(std::span<const NavCommand> list, const char* where,
                                  std::uint32_t first_number = 1) {
    std::size_t i = 0;
    while (i < list.size()) {
      std::optional<Outcome> out =
          RunCommand(list[i], where, first_number + static_cast<std::uint32_t>(i));
      if (!out) return std::nullopt;
      if (out->link) {
        if (out->link->kind != LinkKind::kNoLink) return out->link;
        if (out->link->button) regs_.Highlight(out->link->button);
        return std::nullopt;
      }
      if (out->break_out) break;
      i = out->goto_line ? out->goto_line - 1 : i + 1;
    }
    return std::nullopt;
  }

  // --- Playing -----------------------------------------------------------------------------

  Step EnterChain(bool first_program) {
    if (Repeats('c')) return End("loop", "back in " + HereName() + " in a state it was in");
    std::string line = "chain " + HereName();
    bool menu = domain_ == Domain::kVmgMenu || domain_ == Domain::kVtsMenu;
    if (menu && pgc_->entry()) {
      line += Format(" (entry: %s)", {MenuName(static_cast<std::uint8_t>(pgc_->menu_id()))});
    }
    result_.trace.push_back({TraceLine::Kind::kChain, line, {}});
    if (first_program) pgn_ = 1;
    celln_ = 0;
    std::optional<Link> link = RunCommands(pgc_->pre, "pre");
    if (!result_.end.empty()) return {};
    if (link) return {StepKind::kLink, *link};
    return Go(StepKind::kProgram);
  }

  Step PlayProgram() {
    if (pgn_ == 0) return End("error", "link to program 0 of " + HereName());
    if (pgn_ > pgc_->program_map.size()) return Go(StepKind::kChainPost);
    celln_ = pgc_->program_map[pgn_ - 1];
    return Go(StepKind::kCell);
  }

  Step PlayCell() {
    if (celln_ == 0) return End("error", "link to cell 0 of " + HereName());
    if (celln_ > pgc_->cells.size()) return Go(StepKind::kChainPost);
    const Cell& cell = pgc_->cells[celln_ - 1];
    if (BlockMode(cell) == 1 && cell.block_type() == 1) {
      // The first cell of an angle block: the cell of the current angle.
      std::uint32_t target = celln_ + regs_.sprm[3] - 1;
      if (target >= 1 && target <= pgc_->cells.size() &&
          pgc_->cells[target - 1].block_type() == 1 && BlockMode(pgc_->cells[target - 1]) != 0) {
        celln_ = target;
      }
    }
    if (!SetProgramFromCell()) return Go(StepKind::kChainPost);
    return EnterCell();
  }

  void RecordCell() {
    const Cell& cell = pgc_->cells[celln_ - 1];
    CellEvent event{Here(), UnitLanguage(disc_, Here()), {}, {},
                    celln_, cell.first_sector,           {}, false};
    std::string line = Format("  cell %d (sector %d)", {celln_, cell.first_sector});
    if (domain_ == Domain::kVtsTitle) {
      TitleOfCell(event);
      if (event.title) AppendFormat(line, ", title %d chapter %d", {*event.title, *event.chapter});
      if (!result_.first_title && event.title) result_.first_title = event.title;
    }
    result_.trace.push_back({TraceLine::Kind::kCell, line, {}});
    result_.cells.push_back(std::move(event));
  }

  // The title and chapter a cell plays: from the part-of-title tables when one title plays
  // the chain, from SPRM 4 and 7 when several do.
  void TitleOfCell(CellEvent& event) const {
    const TitleSet* ts = disc_.FindTitleSet(vts_);
    if (!ts) return;
    std::uint32_t titles = 0;
    for (const std::vector<PartOfTitle>& parts : ts->parts) {
      for (const PartOfTitle& p : parts) {
        if (p.pgcn == pgcn_) {
          ++titles;
          break;
        }
      }
    }
    if (titles == 0) return;
    auto [ttn, part] = SearchPart();
    if (titles > 1 || ttn == 0) {
      event.title = regs_.sprm[4];
      event.chapter = regs_.sprm[7];
      return;
    }
    event.title = DiscTitle(disc_, vts_, ttn);
    event.chapter = part;
  }

  Step EnterCell() {
    if (celln_ == 0 || celln_ > pgc_->cells.size()) {
      return End("error", Format("there is no cell %d in ", {celln_}) + HereName());
    }
    if (result_.cells.size() >= options_.max_cells) {
      return End("limit", Format("%d cells played", {options_.max_cells}));
    }
    if (Repeats('p'))
      return End("loop", "back at cell " + std::to_string(celln_) + " of " + HereName() +
                             " in a state it was in");
    commands_since_cell_ = 0;
    RecordCell();
    const Cell& cell = pgc_->cells[celln_ - 1];
    const VobSet* vobs = VobsOf(disc_, domain_, vts_);
    const std::optional<HighlightInfo>* hli =
        vobs ? &buttons_.Find(*vobs, cell, domain_ != Domain::kVtsTitle) : nullptr;
    const HighlightInfo* buttons = hli && *hli ? &**hli : nullptr;
    if (buttons) {
      if (buttons->forced_select) regs_.Highlight(buttons->forced_select);
      Step step;
      if (WaitForKey(buttons, false, step) == KeyEffect::kJump) return step;
    }
    if (regs_.Advance(cell.time.Ticks()) && domain_ == Domain::kVtsTitle) {
      result_.trace.push_back({TraceLine::Kind::kNote, "  navigation timer ran out", {}});
      return {StepKind::kLink, Link{LinkKind::kChain, regs_.sprm[10]}};
    }
    if (cell.still_time() == kInfiniteStill) return WaitAtStill(buttons);
    regs_.Advance(std::uint64_t{cell.still_time()} * kTicksPerSecond);
    return Go(StepKind::kCellPost);
  }

  Step WaitAtStill(const HighlightInfo* buttons) {
    for (;;) {
      if (Repeats('s'))
        return End("loop", "waiting at the still of cell " + std::to_string(celln_) + " of " +
                               HereName() + " in a state it was in");
      Step step;
      KeyEffect effect = WaitForKey(buttons, true, step);
      if (!result_.end.empty()) return {};
      if (effect == KeyEffect::kJump) return step;
      if (effect == KeyEffect::kEndStill) return Go(StepKind::kCellPost);
    }
  }

  // Takes the next key (or the implied one) and applies it.
  KeyEffect WaitForKey(const HighlightInfo* buttons, bool at_still, Step& step) {
    std::string key;
    bool implicit = next_key_ >= options_.keys.size();
    if (implicit) {
      key = buttons ? "enter" : "skip";
    } else {
      key = options_.keys[next_key_++];
    }
    CellEvent& cell = result_.cells.back();
    cell.key = key;
    cell.implicit = implicit;
    result_.trace.push_back(
        {TraceLine::Kind::kKey, "  key " + key + (implicit ? " (implied)" : ""), {}});
    return ApplyKey(key, buttons, at_still, step);
  }

  KeyEffect ApplyKey(const std::string& key, const HighlightInfo* buttons, bool at_still,
                     Step& step) {
    if (key == "skip") return at_still ? KeyEffect::kEndStill : KeyEffect::kNone;
    if (key == "menu" || key == "title") return MenuKey(key == "menu" ? 3 : 2, step);
    std::uint32_t current = regs_.highlighted_button();
    bool valid = buttons && current >= 1 && current <= buttons->buttons.size();
    if (key == "enter") {
      if (valid) return Activate(*buttons, current, step);
      return at_still ? KeyEffect::kEndStill : KeyEffect::kNone;
    }
    if (!buttons) return KeyEffect::kNone;
    if (key == "up" || key == "down" || key == "left" || key == "right") {
      if (!valid) return KeyEffect::kNone;
      const NavButton& b = buttons->buttons[current - 1];
      std::uint32_t next = key == "up"     ? b.up
                           : key == "down" ? b.down
                           : key == "left" ? b.left
                                           : b.right;
      if (next >= 1 && next <= buttons->buttons.size()) regs_.Highlight(next);
      const NavButton& now = buttons->buttons[regs_.highlighted_button() - 1];
      if (now.auto_action) return Activate(*buttons, now.number, step);
      return KeyEffect::kNone;
    }
    std::uint32_t n = static_cast<std::uint32_t>(std::stoul(key));
    if (n < 1 || n > buttons->buttons.size()) return KeyEffect::kNone;
    regs_.Highlight(n);
    return Activate(*buttons, n, step);
  }

  KeyEffect Activate(const HighlightInfo& buttons, std::uint32_t n, Step& step) {
    std::optional<Outcome> out = RunCommand(buttons.buttons[n - 1].command, "button", n);
    if (!out) return KeyEffect::kJump;  // the run ended
    if (!out->link) return KeyEffect::kNone;
    if (out->link->kind == LinkKind::kNoLink) {
      if (out->link->button) regs_.Highlight(out->link->button);
      return KeyEffect::kNone;
    }
    step = {StepKind::kLink, *out->link};
    return KeyEffect::kJump;
  }

  // The menu and title keys: a title saves its resume point as a call does.
  KeyEffect MenuKey(std::uint8_t menu, Step& step) {
    if (domain_ == Domain::kFirstPlay) return KeyEffect::kNone;
    if (domain_ == Domain::kVtsTitle) SaveResume(0);
    Domain domain = menu == 2 ? Domain::kVmgMenu : Domain::kVtsMenu;
    if (domain == Domain::kVtsMenu && vts_ == 0) return KeyEffect::kNone;
    if (EnterMenu(domain, menu)) return KeyEffect::kNone;  // no such menu: the key does nothing
    step = Go(StepKind::kChain);
    return KeyEffect::kJump;
  }

  Step CellPost() {
    const Cell& cell = pgc_->cells[celln_ - 1];
    std::uint8_t number = cell.command();
    if (number != 0 && number <= pgc_->cell_commands.size()) {
      std::span<const NavCommand> one(&pgc_->cell_commands[number - 1], 1);
      std::optional<Link> link = RunCommands(one, "cell", number);
      if (!result_.end.empty()) return {};
      if (link) return {StepKind::kLink, *link};
    }
    if (BlockMode(cell) != 0 && cell.block_type() == 1) {
      // Past the other angles' cells of the block.
      ++celln_;
      while (celln_ <= pgc_->cells.size() && BlockMode(pgc_->cells[celln_ - 1]) >= 2) ++celln_;
    } else {
      ++celln_;
    }
    if (!SetProgramFromCell()) return Go(StepKind::kChainPost);
    return Go(StepKind::kCell);
  }

  Step ChainPost() {
    std::optional<Link> link = RunCommands(pgc_->post, "post");
    if (!result_.end.empty()) return {};
    if (link) return {StepKind::kLink, *link};
    if (pgc_->next == 0) return End("stop", HereName() + " ends and names no next chain");
    std::uint32_t next = pgc_->next;
    if (!SetChain(next)) return End("error", HereName() + ": next chain: " + MissingChain(next));
    return Go(StepKind::kChain);
  }

  // --- Links -------------------------------------------------------------------------------

  Step Fail(const Link& link, const std::string& why) {
    return End("error", LinkText(link) + " in " + HereName() + ": " + why);
  }

  Step LinkToChain(const Link& link, std::uint32_t n, const char* which) {
    if (n == 0) return Fail(link, std::string("the chain names no ") + which + " chain");
    if (!SetChain(n)) return Fail(link, MissingChain(n));
    return Go(StepKind::kChain);
  }

  Step ProcessLink(const Link& link) {
    if (link.button) regs_.Highlight(link.button);
    switch (link.kind) {
      case LinkKind::kTopCell:
        return Go(StepKind::kCell);
      case LinkKind::kNextCell:
        ++celln_;
        return Go(StepKind::kCell);
      case LinkKind::kPrevCell:
        if (celln_ <= 1) return Fail(link, "there is no cell before the first");
        --celln_;
        return Go(StepKind::kCell);
      case LinkKind::kTopProgram:
        return Go(StepKind::kProgram);
      case LinkKind::kNextProgram:
        ++pgn_;
        return Go(StepKind::kProgram);
      case LinkKind::kPrevProgram:
        if (pgn_ <= 1) return Fail(link, "there is no program before the first");
        --pgn_;
        return Go(StepKind::kProgram);
      case LinkKind::kTopChain:
        return Go(StepKind::kChain);
      case LinkKind::kNextChain:
        return LinkToChain(link, pgc_->next, "next");
      case LinkKind::kPrevChain:
        return LinkToChain(link, pgc_->previous, "previous");
      case LinkKind::kGoUpChain:
        return LinkToChain(link, pgc_->go_up, "go-up");
      case LinkKind::kTailChain:
        return Go(StepKind::kChainPost);
      case LinkKind::kResume:
        return ResumeLink(link);
      case LinkKind::kChain:
        return LinkToChain(link, link.number, "");
      case LinkKind::kPart:
        if (domain_ != Domain::kVtsTitle || !SetPart(vts_, regs_.sprm[5], link.number)) {
          return Fail(link, "the current title has no such part");
        }
        return Go(StepKind::kProgram);
      case LinkKind::kProgram:
        pgn_ = link.number;
        return Go(StepKind::kProgram);
      case LinkKind::kCell:
        celln_ = link.number;
        return Go(StepKind::kCell);
      case LinkKind::kExit:
        return End("exit", "Exit in " + HereName());
      default:
        return Jump(link);
    }
  }

  Step Jump(const Link& link) {
    switch (link.kind) {
      case LinkKind::kJumpTitle: {
        const TitleEntry* t = link.number >= 1 && link.number <= disc_.vmg.titles.size()
                                  ? &disc_.vmg.titles[link.number - 1]
                                  : nullptr;
        if (!t || !SetPart(t->title_set, t->title_in_set, 1)) return Fail(link, "no such title");
        return Go(StepKind::kChain);
      }
      case LinkKind::kJumpVtsTitle:
        if (vts_ == 0 || !SetPart(vts_, link.number, 1)) return Fail(link, "no such title");
        return Go(StepKind::kChain);
      case LinkKind::kJumpVtsPart:
        if (vts_ == 0 || !SetPart(vts_, link.title, link.number)) return Fail(link, "no such part");
        return Go(StepKind::kChainProgram);
      case LinkKind::kJumpVtsMenu:
        return JumpVtsMenu(link);
      default:
        return SystemSpace(link);
    }
  }

  Step JumpVtsMenu(const Link& link) {
    if (link.title_set != 0) {
      const TitleSet* ts = disc_.FindTitleSet(link.title_set);
      if (!ts || !ts->present) return Fail(link, "no such title set");
      vts_ = link.title_set;
    } else if (domain_ != Domain::kVtsMenu) {
      return Fail(link, "no title set is current");
    }
    regs_.sprm[5] = static_cast<std::uint16_t>(link.title);
    regs_.sprm[4] = static_cast<std::uint16_t>(DiscTitle(disc_, vts_, link.title));
    if (auto why = EnterMenu(Domain::kVtsMenu, link.menu)) return Fail(link, *why);
    return Go(StepKind::kChain);
  }

  // Jumps and calls to first play, the video manager's menus and chains, a title set's menus.
  Step SystemSpace(const Link& link) {
    bool call = link.kind >= LinkKind::kCallFirstPlay;
    if (call) SaveResume(link.resume_cell);
    switch (link.kind) {
      case LinkKind::kJumpFirstPlay:
      case LinkKind::kCallFirstPlay:
        return StartFirstPlay();
      case LinkKind::kJumpVmgMenu:
      case LinkKind::kCallVmgMenu:
        if (auto why = EnterMenu(Domain::kVmgMenu, link.menu)) return Fail(link, *why);
        return Go(StepKind::kChain);
      case LinkKind::kCallVtsMenu:
        if (vts_ == 0) return Fail(link, "no title set is current");
        if (auto why = EnterMenu(Domain::kVtsMenu, link.menu)) return Fail(link, *why);
        return Go(StepKind::kChain);
      default:  // kJumpVmgChain, kCallVmgChain
        if (disc_.vmg.menus.empty()) return Fail(link, "the video manager has no menus");
        domain_ = Domain::kVmgMenu;
        if (!SetChain(link.number)) return Fail(link, MissingChain(link.number));
        return Go(StepKind::kChain);
    }
  }

  Step ResumeLink(const Link& link) {
    if (rsm_.title_set == 0) return Fail(link, "nothing to resume: no call saved a resume point");
    domain_ = Domain::kVtsTitle;
    vts_ = rsm_.title_set;
    if (!SetChain(rsm_.pgcn)) return Fail(link, MissingChain(rsm_.pgcn));
    for (int i = 0; i < 5; ++i) regs_.sprm[4 + i] = rsm_.sprm[i];
    if (link.button) regs_.Highlight(link.button);
    if (rsm_.cell == 0) {
      pgn_ = 1;
      return Go(StepKind::kProgram);
    }
    celln_ = rsm_.cell;
    if (!SetProgramFromCell()) return Go(StepKind::kChainPost);
    result_.trace.push_back({TraceLine::Kind::kChain, "resume " + HereName(), {}});
    return Go(StepKind::kResumeCell);
  }

  const Disc& disc_;
  const PlayOptions& options_;
  CellButtons buttons_;
  Registers regs_;
  PlayResult result_;

  Domain domain_ = Domain::kFirstPlay;
  std::uint32_t vts_ = 0, unit_ = 0, pgcn_ = 0, pgn_ = 0, celln_ = 0;
  const Pgc* pgc_ = nullptr;
  Resume rsm_;
  std::size_t next_key_ = 0;
  std::uint64_t commands_since_cell_ = 0;
  std::unordered_set<std::string> seen_;
};

}  // namespace

bool IsKey(const std::string& key) {
  static constexpr const char* kNames[] = {"up",    "down", "left", "right",
                                           "enter", "skip", "menu", "title"};
  for (const char* name : kNames) {
    if (key == name) return true;
  }
  if (key.empty() || key.size() > 2) return false;
  for (char c : key) {
    if (c < '0' || c > '9') return false;
  }
  int n = std::stoi(key);
  return n >= 1 && n <= 36;
}

PlayResult Play(const Disc& disc, const PlayOptions& options) {
  return Machine(disc, options).Run();
}

}  // namespace tarvex::nav
