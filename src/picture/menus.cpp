#include "picture/menus.h"

#include <filesystem>

#include "nav/analysis.h"
#include "nav/cell_buttons.h"
#include "nav/instruction.h"
#include "picture/packets.h"
#include "picture/png_file.h"
#include "picture/vob_reader.h"
#include "platform/json_writer.h"

namespace tarvex::picture {

namespace {

constexpr std::size_t kMaxVideoBytes = 8u << 20;  // a menu's first picture lies far before
constexpr std::uint8_t kFirstSubpicture = 0x20, kLastSubpicture = 0x3F;
constexpr std::uint8_t kWideGroup = 1;  // button group display type bit of a 16:9 wide screen

const StreamDeclarations* MenuStreams(const Disc& disc, const nav::ChainRef& c) {
  if (c.domain == nav::Domain::kVmgMenu) return &disc.vmg.menu;
  const TitleSet* ts = disc.FindTitleSet(c.title_set);
  return ts ? &ts->menu : nullptr;
}

// The cell whose picture stands for the chain: the first with buttons, else the first still
// (the last cell when the chain itself holds a still); nothing when neither.
const Cell* MenuCell(const Pgc& pgc, const VobSet& vobs, nav::CellButtons& buttons) {
  for (const Cell& cell : pgc.cells) {
    if (buttons.Find(vobs, cell, true)) return &cell;
  }
  for (const Cell& cell : pgc.cells) {
    if (cell.still_time() != 0) return &cell;
  }
  return pgc.still_time != 0 && !pgc.cells.empty() ? &pgc.cells.back() : nullptr;
}

// The sub-picture stream the menu plays for its display: the id its chain gives stream 1, or
// nothing when the chain does not make one available (the cell's first one is taken).
std::optional<std::uint8_t> MenuStreamId(const StreamDeclarations& s, const Pgc& pgc) {
  SubpictureControl control = DecodeSubpictureControl(pgc.subpicture_control[0]);
  const char* display = s.video.wide() ? "wide" : "4:3";
  for (const SubpictureStream& id : SubpictureStreamIds(s.video, control)) {
    if (std::string(display) == id.display) return static_cast<std::uint8_t>(id.id);
  }
  return std::nullopt;
}

// The video and the first sub-picture unit of a cell.
class CellContent {
 public:
  explicit CellContent(std::optional<std::uint8_t> id) : id_(id) {}
  void Pack(ByteView record) {
    for (const PesPacket& p : PackPackets(record)) {
      if (p.stream_id >= 0xE0 && p.stream_id <= 0xEF && video.size() < kMaxVideoBytes)
        video.insert(video.end(), p.payload.data(), p.payload.data() + p.payload.size());
      if (p.stream_id == kPrivateStream1) Subpicture(p);
    }
  }
  std::vector<std::uint8_t> video, unit;

 private:
  void Subpicture(const PesPacket& p) {
    if (done_ || p.substream < kFirstSubpicture || p.substream > kLastSubpicture) return;
    if (id_ ? p.substream != *id_ : (unit.empty() && !p.pts)) return;
    if (!id_) id_ = p.substream;
    if (unit.empty() && !p.pts) return;
    unit.insert(unit.end(), p.payload.data(), p.payload.data() + p.payload.size());
    if (unit.size() >= 2 && unit.size() >= ByteView(unit).be16(0)) {
      unit.resize(ByteView(unit).be16(0));
      done_ = true;
    }
  }
  std::optional<std::uint8_t> id_;
  bool done_ = false;
};

// The buttons of the group the menu's display shows.
std::vector<NavButton> GroupButtons(ByteView nav_pack, const HighlightInfo& h, bool wide) {
  std::uint32_t groups = h.groups() == 0 ? 1 : h.groups();
  std::uint32_t chosen = 1;
  for (std::uint32_t g = 1; g <= groups; ++g) {
    std::uint32_t type = (h.button_modes >> (12 - 4 * g)) & 7;
    if (wide ? (type & kWideGroup) != 0 : type == 0) {
      chosen = g;
      break;
    }
  }
  return DecodeButtonGroup(nav_pack, chosen, groups);
}

std::string Stem(const Disc& disc, const nav::ChainRef& c) {
  return std::string(nav::DomainName(c.domain)) + "-" + std::to_string(c.title_set) + "-" +
         nav::UnitLanguage(disc, c).value_or("xx") + "-" + std::to_string(c.pgc);
}

// The disc title whose first part a title chain plays, 0 for none.
std::uint32_t TitleOfChain(const Disc& disc, const nav::ChainRef& c) {
  const TitleSet* ts =
      c.domain == nav::Domain::kVtsTitle ? disc.FindTitleSet(c.title_set) : nullptr;
  if (!ts) return 0;
  for (std::size_t t = 0; t < ts->parts.size(); ++t) {
    if (!ts->parts[t].empty() && ts->parts[t].front().pgcn == c.pgc)
      return nav::DiscTitle(disc, c.title_set, static_cast<std::uint32_t>(t + 1));
  }
  return 0;
}

// Where a button always sends playback: the one chain its edges of the analysis reach, when
// no comparison decides it.
std::optional<MenuButtonTarget> ButtonTarget(const Disc& disc, const nav::NavAnalysis& a,
                                             const nav::ChainRef& c, std::uint32_t button) {
  auto it = a.index.find(c);
  if (it == a.index.end()) return std::nullopt;
  std::optional<std::size_t> to;
  for (const nav::NavEdge& e : a.edges[it->second]) {
    if (e.button != button) continue;
    if (e.conditional || (to && *to != e.to)) return std::nullopt;
    to = e.to;
  }
  if (!to) return std::nullopt;
  return MenuButtonTarget{a.chains[*to], TitleOfChain(disc, a.chains[*to])};
}

}  // namespace

namespace {

struct MenuReader {
  const Disc& disc;
  nav::CellButtons cell_buttons;
  nav::NavAnalysis analysis;
  std::string& error;

  // Reads one chain's menu; false only on a read error.
  bool Read(const nav::ChainRef& c, std::vector<MenuPicture>& out) {
    const Pgc* pgc = nav::FindChain(disc, c);
    const VobSet* vobs = nav::VobsOf(disc, c.domain, c.title_set);
    const StreamDeclarations* streams = MenuStreams(disc, c);
    if (!pgc || !vobs || !streams) return true;
    const Cell* cell = MenuCell(*pgc, *vobs, cell_buttons);
    if (!cell) return true;
    MenuPicture m{c, cell->number, Stem(disc, c), {}, {}, {}, PaletteToRgb(pgc->palette), {}, {},
                  {}};
    CellContent content(MenuStreamId(*streams, *pgc));
    VobReader reader(disc, *vobs);
    if (!reader.ForEach(
            cell->first_sector, cell->last_sector,
            [&](std::uint32_t, ByteView r) { content.Pack(r); }, error))
      return false;
    m.background = DecodeFirstPicture(content.video).value_or(RgbImage{});
    if (m.background.width == 0) {
      m.background = {streams->video.width ? streams->video.width : 720,
                      streams->video.height ? streams->video.height : 480,
                      {}};
      m.background.rgb.assign(std::size_t{m.background.width} * m.background.height * 3, 0);
    }
    m.unit = std::move(content.unit);
    if (!m.unit.empty()) m.control = DecodeSpuControl(m.unit);
    AddButtons(*vobs, *cell, streams->video.wide(), m);
    out.push_back(std::move(m));
    return true;
  }

  void AddButtons(const VobSet& vobs, const Cell& cell, bool wide, MenuPicture& m) {
    const std::optional<HighlightInfo>& h = cell_buttons.Find(vobs, cell, true);
    if (!h || m.unit.empty()) return;
    std::vector<std::uint8_t> record;
    std::string ignored;
    VobReader reader(disc, vobs);
    // The highlight's own navigation pack: the first of the cell that holds it.
    for (std::uint32_t s = cell.first_sector; s <= cell.last_sector; ++s) {
      if (!reader.Read(s, record, ignored)) return;
      HighlightInfo here = DecodeHighlight(record);
      if (!here.present()) continue;
      m.button_colors = here.colors;
      m.buttons = GroupButtons(record, here, wide);
      break;
    }
    for (const NavButton& b : m.buttons)
      m.targets.push_back(ButtonTarget(disc, analysis, m.chain, b.number));
  }
};

}  // namespace

std::optional<std::vector<MenuPicture>> ReadMenus(const Disc& disc, std::string& error) {
  MenuReader reader{disc, nav::CellButtons(disc), nav::Analyze(disc), error};
  std::vector<MenuPicture> menus;
  for (const nav::ChainRef& c : nav::AllChains(disc)) {
    if (c.domain != nav::Domain::kVmgMenu && c.domain != nav::Domain::kVtsMenu) continue;
    if (!reader.Read(c, menus)) return std::nullopt;
  }
  return menus;
}

RgbImage ComposeMenu(const MenuPicture& m, std::uint32_t button, bool activated) {
  RgbImage image = m.background;
  if (m.unit.empty()) return image;
  std::optional<SpuHighlight> highlight;
  if (button >= 1 && button <= m.buttons.size()) {
    const NavButton& b = m.buttons[button - 1];
    std::uint32_t group = b.color_group >= 1 && b.color_group <= 3 ? b.color_group : 1;
    highlight = HighlightCodes(m.button_colors[(group - 1) * 2 + (activated ? 1 : 0)]);
    highlight->x0 = b.x0;
    highlight->y0 = b.y0;
    highlight->x1 = b.x1;
    highlight->y1 = b.y1;
  }
  RgbaImage spu = RenderSpu(m.unit, m.control, m.palette, highlight ? &*highlight : nullptr);
  for (std::uint32_t y = 0; y < spu.height; ++y) {
    for (std::uint32_t x = 0; x < spu.width; ++x) {
      std::uint32_t sx = m.control.x0 + x, sy = m.control.y0 + y;
      if (sx >= image.width || sy >= image.height) continue;
      const std::uint8_t* c = spu.rgba.data() + (std::size_t{y} * spu.width + x) * 4;
      std::uint8_t* p = image.rgb.data() + (std::size_t{sy} * image.width + sx) * 3;
      for (int i = 0; i < 3; ++i)
        p[i] = static_cast<std::uint8_t>((c[3] * c[i] + (255 - c[3]) * p[i]) / 255);
    }
  }
  return image;
}

namespace {

void ChainJson(JsonWriter& j, const Disc& disc, const nav::ChainRef& c) {
  j.Member("domain", nav::DomainName(c.domain))
      .MemberUint("title_set", c.title_set)
      .Key("language");
  std::optional<std::string> language = nav::UnitLanguage(disc, c);
  if (language && c.domain != nav::Domain::kVtsTitle) {
    j.String(*language);
  } else {
    j.Null();
  }
  j.MemberUint("pgc", c.pgc);
}

void ButtonJson(JsonWriter& j, const Disc& disc, const NavButton& b,
                const std::optional<MenuButtonTarget>& t) {
  j.BeginObject().MemberUint("number", b.number).MemberUint("x0", b.x0).MemberUint("y0", b.y0);
  j.MemberUint("x1", b.x1).MemberUint("y1", b.y1).MemberUint("color_group", b.color_group);
  j.Key("auto_action").Bool(b.auto_action == 1);
  j.MemberUint("up", b.up)
      .MemberUint("down", b.down)
      .MemberUint("left", b.left)
      .MemberUint("right", b.right);
  j.Member("command", nav::InstructionText(nav::Decode(b.command))).Key("target");
  if (t) {
    j.BeginObject();
    ChainJson(j, disc, t->chain);
    j.Key("title");
    if (t->title) {
      j.Uint(t->title);
    } else {
      j.Null();
    }
    j.EndObject();
  } else {
    j.Null();
  }
  j.EndObject();
}

}  // namespace

std::string MenusJson(const Disc& disc, const std::vector<MenuPicture>& menus) {
  JsonWriter j;
  j.set_compact_depth(3);
  j.BeginArray();
  for (const MenuPicture& m : menus) {
    j.BeginObject();
    ChainJson(j, disc, m.chain);
    j.MemberUint("cell", m.cell).Member("file", m.name + ".png");
    j.MemberUint("width", m.background.width)
        .MemberUint("height", m.background.height)
        .Key("buttons")
        .BeginArray();
    for (std::size_t i = 0; i < m.buttons.size(); ++i)
      ButtonJson(j, disc, m.buttons[i], m.targets[i]);
    j.EndArray().EndObject();
  }
  j.EndArray();
  return j.text() + "\n";
}

std::string MenusText(const Disc& disc, const std::vector<MenuPicture>& menus) {
  std::string text;
  for (const MenuPicture& m : menus) {
    text += nav::ChainName(disc, m.chain) + ", cell " + std::to_string(m.cell) + ": " + m.name +
            ".png, " + std::to_string(m.background.width) + "x" +
            std::to_string(m.background.height) + ", " + std::to_string(m.buttons.size()) +
            " buttons\n";
    for (const NavButton& b : m.buttons) {
      text += "  button " + std::to_string(b.number) + " (" + std::to_string(b.x0) + "," +
              std::to_string(b.y0) + ")-(" + std::to_string(b.x1) + "," + std::to_string(b.y1) +
              ") group " + std::to_string(b.color_group) + ": " +
              nav::InstructionText(nav::Decode(b.command)) + "\n";
    }
  }
  return text;
}

bool WriteMenuPngs(const std::vector<MenuPicture>& menus, const std::string& dir,
                   std::string& error) {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  for (const MenuPicture& m : menus) {
    RgbImage plain = ComposeMenu(m, 0, false);
    if (!WritePng(dir + "/" + m.name + ".png", plain.width, plain.height, 3, plain.rgb, error))
      return false;
    for (const NavButton& b : m.buttons) {
      for (bool activated : {false, true}) {
        RgbImage image = ComposeMenu(m, b.number, activated);
        std::string file = dir + "/" + m.name + "-b" + std::to_string(b.number) +
                           (activated ? "-activated.png" : "-selected.png");
        if (!WritePng(file, image.width, image.height, 3, image.rgb, error)) return false;
      }
    }
  }
  return true;
}

}  // namespace tarvex::picture
