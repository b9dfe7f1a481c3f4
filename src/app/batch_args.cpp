#include "app/batch_args.h"

#include <cstring>

#include "convert/drivers.h"

namespace tarvex {

namespace {

constexpr std::size_t kOptionLength = 5;
constexpr std::int32_t kBatchArgumentsNeeded = 2;

}  // namespace

void ParseBatchArguments(int argc, const char* const* argv, BatchArgs& batch) {
  for (int i = 1; i < argc; ++i) {
    const char* arg = argv[i];
    if (arg == nullptr) continue;
    // strncmp stops at the argument's end, so "-asm" alone does not match.
    if (std::strncmp(arg, "-asm=", kOptionLength) == 0) {
      batch.asm_path = arg + kOptionLength;
      ++batch.batch_args;
    } else if (std::strncmp(arg, "-obj=", kOptionLength) == 0) {
      batch.obj_path = arg + kOptionLength;
      ++batch.batch_args;
    }
  }
}

bool FirstPaint(AppContext& ctx, WindowState& window) {
  return FirstPaint(ctx, window, AssembleBatch);
}

bool FirstPaint(AppContext& ctx, WindowState& window, void (*assemble)(AppContext&)) {
  if (window.first_paint_done) return false;
  window.first_paint_done = 1;
  // Only the count matters: two "-asm=" arguments start the run too, with an empty output path.
  if (ctx.batch.batch_args != kBatchArgumentsNeeded) return false;
  assemble(ctx);
  return true;
}

}  // namespace tarvex
