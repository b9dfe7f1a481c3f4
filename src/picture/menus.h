// Every menu as a picture: for each menu chain whose cells hold buttons or a still, the cell's
// first picture (decoded with libavcodec) under its first sub-picture unit, in the chain's
// colours; per button the picture with that button recoloured in its colour group's selected
// or activated colours; the buttons with their rectangles, neighbours and commands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "disc/model.h"
#include "nav/domains.h"
#include "picture/mpeg2_picture.h"
#include "picture/spu_decoder.h"
#include "stream/nav_fields.h"

namespace tarvex::picture {

struct MenuButtonTarget {
  nav::ChainRef chain;
  std::uint32_t title = 0;  // the disc title whose first part the chain plays, 0 none
};

struct MenuPicture {
  nav::ChainRef chain;
  std::uint32_t cell = 0;  // number in the chain
  std::string name;        // "vtsm-1-en-2": the files' common stem
  RgbImage background;
  std::vector<std::uint8_t> unit;  // the sub-picture unit, empty when the cell has none
  SpuControl control;
  std::array<Rgb, 16> palette{};
  std::array<std::uint32_t, 6> button_colors{};  // per colour group: selected, activated
  std::vector<NavButton> buttons;                // of the group of the menu's display
  std::vector<std::optional<MenuButtonTarget>> targets;
};

// Nothing with error set when a menu VOB cannot be read.
std::optional<std::vector<MenuPicture>> ReadMenus(const Disc& disc, std::string& error);

// The picture of a menu: its frame under its sub-picture, the sub-picture blended as
// (a x c + (255 - a) x p) / 255 with a = 17 x contrast; button (from 1) recoloured in its
// selected (activated = false) or activated colours, 0 for none.
RgbImage ComposeMenu(const MenuPicture& menu, std::uint32_t button, bool activated);

std::string MenusJson(const Disc& disc, const std::vector<MenuPicture>& menus);
std::string MenusText(const Disc& disc, const std::vector<MenuPicture>& menus);
// DIR/{name}.png and DIR/{name}-b{n}-selected.png / -b{n}-activated.png.
bool WriteMenuPngs(const std::vector<MenuPicture>& menus, const std::string& dir,
                   std::string& error);

}  // namespace tarvex::picture
