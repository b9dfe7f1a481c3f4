// Fuzzes the sub-picture unit decoder on an arbitrary SUP file.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/scripted_ui.h"
#include "state/context.h"
#include "stream/subpicture_unit.h"

using namespace tarvex;  // NOLINT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = "/tmp/tarvex-fuzz-sup-" + std::to_string(::getpid()) + ".sup";
  {
    File out = File::Create(path);
    out.Write(data, size);
  }
  ScriptedUi ui;
  AppContext ctx(ui);
  ctx.open.file_handle = File::OpenRead(path);
  ctx.open.file_type = kFileSup;
  ctx.open.file_path = path;
  // Record 0 as the Open command does, and a record further on.
  DecodeSubpictureUnit(ctx, 0);
  if (ctx.report.size() < 4 || ctx.report.size() > 4 + 2044) std::abort();
  DecodeSubpictureUnit(ctx, size > 0 ? data[0] : 1);
  if (ctx.report.size() < 4 || ctx.report.size() > 4 + 2044) std::abort();
  return 0;
}
