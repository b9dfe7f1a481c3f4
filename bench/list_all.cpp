// Lists every record of a program stream through ListPage, one page of 16 records at a time
// as paging through the file does, and throws the lines away. Prints the record and line
// counts so the work cannot be skipped.
#include <cstdint>
#include <cstdio>
#include <string>

#include "platform/scripted_ui.h"
#include "state/context.h"
#include "stream/listing.h"

int main(int argc, char** argv) {
  using namespace tarvex;
  if (argc != 2) {
    std::fprintf(stderr, "usage: list_all FILE.VOB\n");
    return 2;
  }
  ScriptedUi ui;
  AppContext ctx(ui);
  ctx.open.file_path = argv[1];
  ctx.open.file_handle = File::OpenRead(ctx.open.file_path);
  if (!ctx.open.file_handle.is_open()) {
    std::fprintf(stderr, "Can not open %s\n", argv[1]);
    return 1;
  }
  ctx.open.file_type = kFileVob;
  ctx.open.file_open = 1;
  ctx.open.record_count = static_cast<std::uint32_t>(ctx.open.file_handle.Length() >> 11);

  std::uint64_t lines = 0, bytes = 0;
  const std::uint32_t count = ctx.open.record_count;
  for (std::uint64_t first = 0; first < count; first += PAGE_RECORDS) {
    const auto end =
        static_cast<std::uint32_t>(std::min<std::uint64_t>(first + PAGE_RECORDS, count));
    ListPage(ctx, static_cast<std::uint32_t>(first), end);
    lines += ctx.report.size();
    for (const std::string& line : ctx.report.lines()) bytes += line.size();
  }
  std::printf("records %u lines %llu bytes %llu\n", count, static_cast<unsigned long long>(lines),
              static_cast<unsigned long long>(bytes));
  return 0;
}
