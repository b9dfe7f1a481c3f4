// tarvex_dvdnav_play DISC [--keys KEYS] [--max-cells N]
//
// Plays a DVD-Video disc from first play with libdvdnav's virtual machine, a real player's, and
// prints the cells it enters as one JSON object, so that the tests can hold `tarvex-cli play`
// against it. Keys follow play's rules: one key is consumed whenever playback waits for the user
// (at the first navigation pack of a cell whose highlight information holds buttons, once per cell
// entry, and at an infinite still); when KEYS runs out a menu gets `enter` and a still `skip`.
//
// Output: {"cells":[{"domain","title_set","language","pgc","cell","title","chapter",
// "first_sector","key"[,"implicit"]}],"first_title","keys_left","blocks","end","end_reason"}:
// first_title is the title of the first title cell entered (null when none); end is "stop" (an
// Exit command or a chain with nowhere to go: libdvdnav reports both alike), "limit", "error" or
// "loop" (libdvdnav stayed inside one call for seconds, following chains without cells, or gave
// a million events without a new cell).
// title_set comes from libdvdnav's title set change events (DVDNAV_VTS_CHANGE, new_vtsN), 0 in
// first play and the video manager's menus; pgc from dvdnav_current_title_program, or, before
// libdvdnav has loaded any title set (it then refuses to answer), from the chain of the domain's
// table whose cell of that number holds the cell's first navigation pack; first_sector from the
// cell's entry in the chain's C_PBIT, read with libdvdread. Menus use the language unit "en",
// else the first one, as libdvdnav does.
// Keys at a menu: up/down/left/right move the highlight and the next key is consumed at the same
// cell, unless the button reached is an auto-action one; enter, a number, menu, title end the
// wait; skip there ends the still that follows. At an infinite still, menu and title call those
// menus and any other key ends the still. Timed stills end at once.
#include <dvdnav/dvdnav.h>
#include <dvdread/ifo_read.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <iostream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using Json = nlohmann::ordered_json;

// Blocks read without entering a new cell before the run counts as a loop (a menu cell that
// loops on itself is read again and again without a new cell change).
constexpr long kEventsWithoutCell = 1000000;
// Seconds libdvdnav may spend inside one call: its machine follows cell-less chains inside
// dvdnav_get_next_block and never returns from a loop of them.
constexpr int kSecondsPerCall = 3;

struct Options {
  std::string disc;
  std::deque<std::string> keys;
  std::size_t max_cells = 1000;
};

bool IsNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

// Sets the option named arg from value; false when the value does not fit.
bool SetOption(Options& options, const std::string& arg, const std::string& value) {
  if (arg == "--max-cells") {
    if (!IsNumber(value) || value.size() > 9) return false;
    options.max_cells = std::stoul(value);
    return true;
  }
  std::stringstream list(value);
  for (std::string key; std::getline(list, key, ',');) {
    if (!key.empty()) options.keys.push_back(key);
  }
  return true;
}

std::optional<Options> ParseOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    bool named = arg == "--keys" || arg == "--max-cells";
    if (named && i + 1 < argc) {
      if (!SetOption(options, arg, argv[++i])) return std::nullopt;
    } else if (options.disc.empty() && arg.rfind("--", 0) != 0) {
      options.disc = arg;
    } else {
      return std::nullopt;
    }
  }
  if (options.disc.empty()) return std::nullopt;
  return options;
}

// The IFOs of the disc, opened with libdvdread, to read a cell's first sector.
class Ifos {
 public:
  explicit Ifos(const std::string& disc) : reader_(DVDOpen(disc.c_str())) {}
  ~Ifos() {
    for (ifo_handle_t* ifo : ifos_) {
      if (ifo != nullptr) ifoClose(ifo);
    }
    if (reader_ != nullptr) DVDClose(reader_);
  }
  Ifos(const Ifos&) = delete;
  Ifos& operator=(const Ifos&) = delete;

  // Title set 0 is the video manager.
  ifo_handle_t* Get(int title_set) {
    if (reader_ == nullptr || title_set < 0 || title_set > 99) return nullptr;
    if (ifos_.size() <= static_cast<std::size_t>(title_set)) ifos_.resize(title_set + 1, nullptr);
    if (ifos_[title_set] == nullptr) ifos_[title_set] = ifoOpen(reader_, title_set);
    return ifos_[title_set];
  }

 private:
  dvd_reader_t* reader_;
  std::vector<ifo_handle_t*> ifos_;
};

// The menu language unit a player takes for the menu language "en": the unit with that code,
// else the first one.
pgci_lu_t* MenuLanguageUnit(pgci_ut_t* units) {
  if (units == nullptr || units->nr_of_lus == 0) return nullptr;
  for (int i = 0; i < units->nr_of_lus; ++i) {
    if (units->lu[i].lang_code == (('e' << 8) | 'n')) return &units->lu[i];
  }
  return &units->lu[0];
}

std::string LanguageCode(const pgci_lu_t* unit) {
  return {static_cast<char>(unit->lang_code >> 8), static_cast<char>(unit->lang_code & 0xff)};
}

struct Place {
  std::string domain;
  int title_set = 0;
  int pgc = 0;  // 0: not known
  int cell = 0;
  int title = 0;
  int chapter = 0;
};

// The table of chains a place plays in (a title set's VTS_PGCIT, a menu domain's language
// unit); unit receives the language unit of a menu.
pgcit_t* ChainTable(Ifos& ifos, const Place& place, const pgci_lu_t** unit) {
  ifo_handle_t* ifo = ifos.Get(place.title_set);
  if (ifo == nullptr || place.domain == "fp") return nullptr;
  if (place.domain == "vts") return ifo->vts_pgcit;
  pgci_lu_t* lu = MenuLanguageUnit(ifo->pgci_ut);
  *unit = lu;
  return lu != nullptr ? lu->pgcit : nullptr;
}

// The chain a place plays in, from the IFO of its domain; unit receives its language unit.
pgc_t* ChainOf(Ifos& ifos, const Place& place, const pgci_lu_t** unit) {
  if (place.domain == "fp") {
    ifo_handle_t* ifo = ifos.Get(0);
    return ifo != nullptr ? ifo->first_play_pgc : nullptr;
  }
  pgcit_t* chains = ChainTable(ifos, place, unit);
  if (chains == nullptr || place.pgc < 1 || place.pgc > chains->nr_of_pgci_srp) return nullptr;
  return chains->pgci_srp[place.pgc - 1].pgc;
}

// The first chain of the place's table whose cell place.cell holds sector lbn of the VOB set,
// or 0: libdvdnav gives no chain number before it has loaded a title set.
int ChainHolding(Ifos& ifos, const Place& place, std::uint32_t lbn) {
  const pgci_lu_t* unit = nullptr;
  pgcit_t* chains = ChainTable(ifos, place, &unit);
  for (int n = 1; chains != nullptr && n <= chains->nr_of_pgci_srp; ++n) {
    const pgc_t* chain = chains->pgci_srp[n - 1].pgc;
    if (chain == nullptr || place.cell > chain->nr_of_cells) continue;
    const cell_playback_t& cell = chain->cell_playback[place.cell - 1];
    if (cell.first_sector <= lbn && lbn <= cell.last_sector) return n;
  }
  return 0;
}

Json CellJson(Ifos& ifos, const Place& place) {
  const pgci_lu_t* unit = nullptr;
  pgc_t* chain = ChainOf(ifos, place, &unit);
  Json cell = {{"domain", place.domain}, {"title_set", place.title_set}};
  cell["language"] = unit != nullptr ? Json(LanguageCode(unit)) : Json();
  cell["pgc"] = place.pgc > 0 ? Json(place.pgc) : Json();
  cell["cell"] = place.cell;
  bool in_title = place.domain == "vts";
  cell["title"] = in_title ? Json(place.title) : Json();
  cell["chapter"] = in_title ? Json(place.chapter) : Json();
  bool known = chain != nullptr && place.cell >= 1 && place.cell <= chain->nr_of_cells;
  // A copy: the IFO structures are packed.
  std::uint32_t first = known ? chain->cell_playback[place.cell - 1].first_sector : 0;
  cell["first_sector"] = known ? Json(first) : Json();
  cell["key"] = nullptr;
  return cell;
}

bool HasButtons(const pci_t* pci) {
  return pci != nullptr && pci->hli.hl_gi.hli_ss != 0 && pci->hli.hl_gi.btn_ns > 0;
}

// One run of the player: its state, what it has played and how it ended.
class Run {
 public:
  Run(Options options, dvdnav_t* nav)
      : options_(std::move(options)), nav_(nav), ifos_(options_.disc) {}

  void Play();
  // The JSON object of the run so far; end overrides the end when the run has none yet.
  std::string Report(const std::string& end, const std::string& reason);

  long progress() const { return progress_.load(); }

 private:
  bool Step();
  void EnterCell(const dvdnav_cell_change_event_t& event);
  void AtNavPacket();
  void FindPendingChain();
  void AtStill(const dvdnav_still_event_t& event);
  bool ApplyButtonKey(pci_t* pci, const std::string& key);
  std::optional<std::string> NextKey();
  void MarkKey(const std::string& key, bool implicit);
  void End(const std::string& end, const std::string& reason);

  Options options_;
  dvdnav_t* nav_;
  Ifos ifos_;
  Json cells_ = Json::array();
  int title_set_ = 0;
  bool buttons_done_ = true;   // the keys of the current cell entry are consumed
  bool skip_pending_ = false;  // `skip` pressed at a menu: the still that follows ends
  std::atomic<long> blocks_ = 0;
  long events_since_cell_ = 0;
  Place place_;                     // the cell entered last
  bool chain_pending_ = false;      // its chain is found at its first navigation pack
  std::atomic<long> progress_ = 0;  // calls into libdvdnav that returned
  std::string end_;
  std::string reason_;
  std::mutex mutex_;  // guards cells_, the keys left and the end, which the watcher reports
};

void Run::Play() {
  while (Step()) {
  }
}

// Reads one block and acts on its event; false at the end.
bool Run::Step() {
  std::vector<std::uint8_t> buffer(DVD_VIDEO_LB_LEN);
  int32_t event = 0;
  int32_t length = 0;
  dvdnav_status_t status = dvdnav_get_next_block(nav_, buffer.data(), &event, &length);
  ++progress_;
  if (status != DVDNAV_STATUS_OK) {
    End("error", dvdnav_err_to_string(nav_));
    return false;
  }
  if (++events_since_cell_ > kEventsWithoutCell) End("loop", "a million events without a new cell");
  switch (event) {
    case DVDNAV_BLOCK_OK:
      ++blocks_;
      break;
    case DVDNAV_VTS_CHANGE:
      title_set_ = reinterpret_cast<dvdnav_vts_change_event_t*>(buffer.data())->new_vtsN;
      break;
    case DVDNAV_CELL_CHANGE:
      EnterCell(*reinterpret_cast<dvdnav_cell_change_event_t*>(buffer.data()));
      break;
    case DVDNAV_NAV_PACKET:
      AtNavPacket();
      break;
    case DVDNAV_STILL_FRAME:
      AtStill(*reinterpret_cast<dvdnav_still_event_t*>(buffer.data()));
      break;
    case DVDNAV_WAIT:
      dvdnav_wait_skip(nav_);
      break;
    case DVDNAV_STOP:
      End("stop", "libdvdnav stopped (an Exit command or a chain with nowhere to go)");
      break;
    default:
      break;
  }
  std::lock_guard lock(mutex_);
  return end_.empty();
}

void Run::EnterCell(const dvdnav_cell_change_event_t& event) {
  if (cells_.size() >= options_.max_cells) {
    End("limit", "cell limit reached");
    return;
  }
  Place place;
  place.cell = event.cellN;
  place.domain = dvdnav_is_domain_fp(nav_)     ? "fp"
                 : dvdnav_is_domain_vmgm(nav_) ? "vmgm"
                 : dvdnav_is_domain_vtsm(nav_) ? "vtsm"
                                               : "vts";
  place.title_set = place.domain == "fp" || place.domain == "vmgm" ? 0 : title_set_;
  int32_t title = 0, pgcn = 0, pgn = 0, part = 0;
  if (dvdnav_current_title_program(nav_, &title, &pgcn, &pgn) == DVDNAV_STATUS_OK) {
    place.pgc = pgcn;
  }
  if (place.domain == "vts" && dvdnav_current_title_info(nav_, &title, &part) == DVDNAV_STATUS_OK) {
    place.title = title;
    place.chapter = part;
  }
  Json cell = CellJson(ifos_, place);
  std::lock_guard lock(mutex_);
  cells_.push_back(std::move(cell));
  place_ = place;
  chain_pending_ = place.pgc == 0;
  events_since_cell_ = 0;
  buttons_done_ = false;
  skip_pending_ = false;
}

std::optional<std::string> Run::NextKey() {
  std::lock_guard lock(mutex_);
  if (options_.keys.empty()) return std::nullopt;
  std::string key = options_.keys.front();
  options_.keys.pop_front();
  return key;
}

void Run::MarkKey(const std::string& key, bool implicit) {
  std::lock_guard lock(mutex_);
  if (cells_.empty()) return;
  Json& cell = cells_.back();
  cell["key"] = key;
  if (implicit) {
    cell["implicit"] = true;
  } else {
    cell.erase("implicit");
  }
}

// At the first navigation pack with buttons of a cell entry: keys until one leaves the highlight
// where it is (activation, a menu call, skip), or `enter` when the keys have run out.
void Run::AtNavPacket() {
  if (chain_pending_) FindPendingChain();
  pci_t* pci = dvdnav_get_current_nav_pci(nav_);
  if (buttons_done_ || !HasButtons(pci)) return;
  buttons_done_ = true;
  while (true) {
    std::optional<std::string> key = NextKey();
    if (!key) {
      MarkKey("enter", true);
      dvdnav_button_activate(nav_, pci);
      return;
    }
    MarkKey(*key, false);
    if (ApplyButtonKey(pci, *key)) return;
  }
}

void Run::FindPendingChain() {
  chain_pending_ = false;
  dsi_t* dsi = dvdnav_get_current_nav_dsi(nav_);
  if (dsi == nullptr || cells_.empty()) return;
  place_.pgc = ChainHolding(ifos_, place_, dsi->dsi_gi.nv_pck_lbn);
  Json cell = CellJson(ifos_, place_);
  std::lock_guard lock(mutex_);
  cell["key"] = cells_.back()["key"];
  cells_.back() = std::move(cell);
}

// Applies a key at a menu; true when it ends the wait there.
bool Run::ApplyButtonKey(pci_t* pci, const std::string& key) {
  auto moved = [&](dvdnav_status_t (*move)(dvdnav_t*, pci_t*)) {
    move(nav_, pci);
    int32_t button = 0;
    dvdnav_get_current_highlight(nav_, &button);
    // An auto-action button activates when selected (libdvdnav does it inside the move).
    return button >= 1 && button <= pci->hli.hl_gi.btn_ns &&
           pci->hli.btnit[button - 1].auto_action_mode != 0;
  };
  if (key == "up") return moved(dvdnav_upper_button_select);
  if (key == "down") return moved(dvdnav_lower_button_select);
  if (key == "left") return moved(dvdnav_left_button_select);
  if (key == "right") return moved(dvdnav_right_button_select);
  if (key == "enter") dvdnav_button_activate(nav_, pci);
  if (IsNumber(key)) dvdnav_button_select_and_activate(nav_, pci, std::stoi(key));
  if (key == "menu") dvdnav_menu_call(nav_, DVD_MENU_Root);
  if (key == "title") dvdnav_menu_call(nav_, DVD_MENU_Title);
  if (key == "skip") skip_pending_ = true;
  return true;
}

// An infinite still waits for a key (`skip` ends it, `menu` and `title` call those menus, any
// other key ends it too); a timed still ends at once, as its time would run out.
void Run::AtStill(const dvdnav_still_event_t& event) {
  if (event.length != 0xff || skip_pending_) {
    skip_pending_ = false;
    dvdnav_still_skip(nav_);
    return;
  }
  std::optional<std::string> key = NextKey();
  MarkKey(key.value_or("skip"), !key);
  if (key == "menu" || key == "title") {
    dvdnav_menu_call(nav_, key == "menu" ? DVD_MENU_Root : DVD_MENU_Title);
  } else {
    dvdnav_still_skip(nav_);
  }
}

void Run::End(const std::string& end, const std::string& reason) {
  std::lock_guard lock(mutex_);
  if (!end_.empty()) return;
  end_ = end;
  reason_ = reason;
}

std::string Run::Report(const std::string& end, const std::string& reason) {
  std::lock_guard lock(mutex_);
  Json keys_left = Json::array();
  for (const std::string& key : options_.keys) keys_left.push_back(key);
  Json first_title;
  for (const Json& cell : cells_) {
    if (cell["domain"] == "vts" && first_title.is_null()) first_title = cell["title"];
  }
  Json out = {{"cells", cells_},
              {"first_title", first_title},
              {"keys_left", keys_left},
              {"blocks", blocks_.load()},
              {"end", end_.empty() ? end : end_},
              {"end_reason", end_.empty() ? reason : reason_}};
  return out.dump() + "\n";
}

// Prints the run so far and ends the process when libdvdnav stays inside one call too long.
void Watch(Run& run, std::FILE* out, std::condition_variable& done_signal, std::mutex& done_mutex,
           bool& done) {
  long seen = -1;
  std::unique_lock lock(done_mutex);
  while (!done_signal.wait_for(lock, std::chrono::seconds(kSecondsPerCall), [&] { return done; })) {
    if (run.progress() == seen) {
      std::fputs(
          run.Report("loop", "libdvdnav did not return (a loop of chains without cells)").c_str(),
          out);
      std::fflush(out);
      std::_Exit(0);
    }
    seen = run.progress();
  }
}

dvdnav_t* OpenDisc(const std::string& disc) {
  dvdnav_t* nav = nullptr;
  if (dvdnav_open(&nav, disc.c_str()) != DVDNAV_STATUS_OK) return nullptr;
  dvdnav_set_readahead_flag(nav, 0);
  dvdnav_set_PGC_positioning_flag(nav, 1);
  dvdnav_set_region_mask(nav, 1);
  dvdnav_menu_language_select(nav, const_cast<char*>("en"));
  dvdnav_audio_language_select(nav, const_cast<char*>("en"));
  dvdnav_spu_language_select(nav, const_cast<char*>("en"));
  return nav;
}

}  // namespace

int main(int argc, char** argv) {
  std::optional<Options> options = ParseOptions(argc, argv);
  if (!options) {
    std::cerr << "usage: tarvex_dvdnav_play DISC [--keys KEYS] [--max-cells N]\n";
    return 2;
  }
  // libdvdread writes notices to standard output: the JSON goes to the real one, everything
  // else to standard error.
  std::FILE* out = fdopen(dup(STDOUT_FILENO), "w");
  dup2(STDERR_FILENO, STDOUT_FILENO);
  dvdnav_t* nav = OpenDisc(options->disc);
  if (nav == nullptr) {
    std::cerr << "tarvex_dvdnav_play: cannot open " << options->disc << "\n";
    return 1;
  }
  Run run(std::move(*options), nav);
  std::mutex done_mutex;
  std::condition_variable done_signal;
  bool done = false;
  std::thread watcher(Watch, std::ref(run), out, std::ref(done_signal), std::ref(done_mutex),
                      std::ref(done));
  run.Play();
  {
    std::lock_guard lock(done_mutex);
    done = true;
  }
  done_signal.notify_one();
  watcher.join();
  std::fputs(run.Report("", "").c_str(), out);
  std::fclose(out);
  dvdnav_close(nav);
  return 0;
}
