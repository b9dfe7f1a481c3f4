// Fuzz harness: an arbitrary IFO image is opened, its overview shown, every line's details
// pressed, and the whole file disassembled into an IfoSource.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "convert/drivers.h"
#include "ifo/overview.h"
#include "platform/file_io.h"
#include "platform/scripted_ui.h"
#include "state/context.h"

namespace {

std::string TempPath(const char* name) {
  return "/tmp/tarvex-fuzz-" + std::to_string(::getpid()) + "-" + name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string ifo_path = TempPath("VTS_01_0.IFO");
  const std::string ini_path = TempPath("VTS_01_0.INI");
  {
    tarvex::File out = tarvex::File::Create(ifo_path);
    out.Write(data, size);
  }
  tarvex::ScriptedUi ui;
  tarvex::AppContext ctx(ui);
  ctx.open.file_handle = tarvex::File::OpenRead(ifo_path);
  ctx.open.file_type = tarvex::kFileIfo;
  ctx.open.file_path = ifo_path;
  tarvex::ShowIfoOverview(ctx);
  std::size_t overview_lines = ctx.report.size();
  for (std::size_t i = 0; i < overview_lines; ++i) {
    ctx.report.Select(i);
    tarvex::ShowIfoDetails(ctx);
    if (ctx.stream.details_mode) tarvex::ShowIfoDetails(ctx);  // back to the overview
  }
  ui.chooser_answers.push_back(ini_path);
  tarvex::DisassembleIfo(ctx);
  ctx.profiles.Flush();
  ::unlink(ini_path.c_str());
  return 0;
}
