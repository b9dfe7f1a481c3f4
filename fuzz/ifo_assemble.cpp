// Fuzz harness: an arbitrary IfoSource is assembled into an IFO, beside small VOB files of
// odd and even sizes. The first byte picks the kind (title set or video manager) and the
// answers to the size questions.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "convert/drivers.h"
#include "platform/file_io.h"
#include "platform/scripted_ui.h"
#include "state/context.h"

namespace {

std::string TempDir() {
  std::string dir = "/tmp/tarvex-fuzz-asm-" + std::to_string(::getpid());
  ::mkdir(dir.c_str(), 0700);
  return dir;
}

void WriteFile(const std::string& path, std::size_t size) {
  tarvex::File out = tarvex::File::Create(path);
  std::vector<std::uint8_t> zeros(size, 0);
  out.Write(zeros.data(), zeros.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string dir = TempDir();
  const bool title_set = (data[0] & 1) != 0;
  const std::string stem = title_set ? "VTS_01_0" : "VIDEO_TS";
  const std::string source = dir + "/" + stem + ".INI";
  const std::string output = dir + "/" + stem + ".IFO";
  WriteFile(dir + "/vts_01_0.vob", 4097);
  WriteFile(dir + "/vts_01_1.vob", 2048);
  WriteFile(dir + "/VIDEO_TS.vob", 2048);
  {
    tarvex::File out = tarvex::File::Create(source);
    out.Write(data + 1, size - 1);
  }
  tarvex::ScriptedUi ui;
  for (int i = 0; i < 4; ++i) ui.yes_no_answers.push_back(((data[0] >> (1 + i)) & 1) != 0);
  tarvex::AppContext ctx(ui);
  ctx.batch.asm_path = source;
  ctx.batch.obj_path = output;
  ctx.batch.batch_args = 2;
  tarvex::AssembleBatch(ctx);
  return 0;
}
