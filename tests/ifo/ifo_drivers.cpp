#include "ifo/ifo_drivers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "convert/drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/overview.h"
#include "ifo/vmgi_mat.h"
#include "ifo/vtsi_mat.h"
#include "platform/file_io.h"

namespace tarvex::test {

std::string OpenIfo(Fixture& f, const std::string& name, const std::vector<std::uint8_t>& image) {
  std::string path = f.OpenBytes(name, image, kFileIfo);
  ShowIfoOverview(*f.ctx);
  return path;
}

std::vector<std::string> FirstLines(const Fixture& f, std::size_t n) {
  return {f.lines().begin(),
          f.lines().begin() + static_cast<std::ptrdiff_t>(std::min(n, f.lines().size()))};
}

std::vector<std::string> VmgImageOverviewHead() {
  return {"VMGI_MAT IFO File: Video Manager Information Management Table",
          "VMGM_VOB: VMG Menu VOB starts at sector address: 1"};
}

bool HasLine(const std::vector<std::string>& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

bool HasLine(const Fixture& f, const std::string& line) {
  return HasLine(f.lines(), line);
}

void OverwriteOpenFile(Fixture& f, std::int64_t offset, const std::vector<std::uint8_t>& bytes) {
  File rw = File::OpenReadWrite(f.ctx->open.file_path);
  rw.Seek(offset);
  rw.Write(bytes.data(), bytes.size());
}

bool PressDetailsOn(Fixture& f, const std::string& prefix) {
  for (std::size_t i = 0; i < f.lines().size(); ++i) {
    if (f.lines()[i].starts_with(prefix)) {
      f.ctx->report.Select(i);
      ShowIfoDetails(*f.ctx);
      return true;
    }
  }
  ADD_FAILURE() << "no line begins with " << prefix;
  return false;
}

std::vector<std::string> DetailsOf(Fixture& f, const std::string& prefix) {
  if (!PressDetailsOn(f, prefix)) return {};
  return f.lines();
}

std::string DisassembleIfoTo(Fixture& f, const std::string& name) {
  std::string source = f.dir.file(name);
  f.ui.chooser_answers.push_back(source);
  DisassembleIfo(*f.ctx);
  return source;
}

std::vector<std::string> DisassembledSection(Fixture& f, const std::string& name,
                                             const std::string& section) {
  f.ctx->stream.details_mode = 0;
  ShowIfoOverview(*f.ctx);
  return SectionLines(ReadFileText(DisassembleIfoTo(f, name)), section);
}

std::string DisassembleTables(Fixture& f, std::initializer_list<TableId> ids,
                              const std::string& name) {
  f.ctx->convert.source_path = f.dir.file(name);
  for (TableId id : ids) DisassembleTable(*f.ctx, id);
  f.ctx->profiles.Flush();
  return ReadFileText(f.ctx->convert.source_path);
}

std::vector<std::uint8_t> AssembleBatchInto(Fixture& f, const std::string& source,
                                            const std::string& ifo_name) {
  std::filesystem::create_directory(f.dir.file("out"));
  f.ctx->batch.asm_path = source;
  f.ctx->batch.obj_path = f.dir.file("out/" + ifo_name);
  AssembleBatch(*f.ctx);
  return ReadFileBytes(f.ctx->batch.obj_path);
}

std::vector<std::uint8_t> RoundTripThroughDrivers(Fixture& f, const std::string& name) {
  std::string stem = name.substr(0, name.rfind('.'));
  return AssembleBatchInto(f, DisassembleIfoTo(f, stem + ".INI"), name);
}

void UseSource(Fixture& f, const std::string& text, const std::string& name) {
  f.ctx->convert.source_path = f.dir.file(name);
  WriteText(f.ctx->convert.source_path, text);
}

void LoadSource(Fixture& f, TableId id, const std::string& text, const std::string& name) {
  UseSource(f, text, name);
  LoadTableSource(*f.ctx, id);
}

std::vector<std::uint8_t> EmitInto(Fixture& f, TableId id, const std::string& name) {
  std::string path = f.dir.file(name);
  {
    File out = File::Create(path);
    EmitTable(*f.ctx, id, out);
  }
  return ReadFileBytes(path);
}

EmittedTable LoadAndEmit(Fixture& f, TableId id, const std::string& name) {
  LoadTableSource(*f.ctx, id);
  TableSize size = MeasureTable(*f.ctx, id);
  return {size.sectors, size.bytes, EmitInto(f, id, name)};
}

std::vector<std::uint8_t> AssembleTitleSetInto(Fixture& f, const std::string& name) {
  std::string path = f.dir.file(name);
  {
    File out = File::Create(path);
    AssembleTitleSet(*f.ctx, out, path);
  }
  return ReadFileBytes(path);
}

std::vector<std::uint8_t> AssembleVideoManagerInto(Fixture& f, const std::string& name) {
  std::string path = f.dir.file(name);
  {
    File out = File::Create(path);
    AssembleVideoManager(*f.ctx, out, path);
  }
  return ReadFileBytes(path);
}

std::vector<std::uint8_t> AssembleTable(Fixture& f, TableId id, const std::string& source,
                                        TableSize* size) {
  UseSource(f, source);
  EmittedTable t = LoadAndEmit(f, id, "TABLE.BIN");
  if (size) *size = TableSize{t.sectors, t.bytes};
  return t.file;
}

std::vector<std::string> SectionLines(const std::string& text, const std::string& section) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  bool inside = false;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.starts_with("[")) {
      inside = line == "[" + section + "]";
    } else if (inside && !line.empty()) {
      lines.push_back(line);
    }
  }
  return lines;
}

std::string WithoutCr(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c != '\r') out += c;
  }
  return out;
}

}  // namespace tarvex::test
