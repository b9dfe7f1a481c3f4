#include "ifo/srpt_images.h"

#include <gtest/gtest.h>

#include <sstream>

#include "convert/drivers.h"
#include "ifo/ifo_images.h"
#include "ifo/table.h"
#include "platform/bytes.h"

namespace tarvex::test {

std::vector<std::uint8_t> WithTableAt(std::vector<std::uint8_t> image, std::size_t start_sector_at,
                                      std::uint32_t sector,
                                      const std::vector<std::uint8_t>& table) {
  ByteWriter(image).put_be32(start_sector_at, sector);
  std::size_t at = std::size_t{sector} * 2048;
  if (image.size() < at) image.resize(at, 0);
  if (image.size() < at + table.size()) image.resize(at + table.size(), 0);
  std::copy(table.begin(), table.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
  image.resize((image.size() + 2047) / 2048 * 2048, 0);
  return image;
}

void UseSource(Fixture& f, const std::string& text, const std::string& name) {
  f.ctx->convert.source_path = f.dir.file(name);
  WriteText(f.ctx->convert.source_path, text);
}

EmittedTable LoadAndEmit(Fixture& f, TableId id, const std::string& name) {
  LoadTableSource(*f.ctx, id);
  TableSize size = MeasureTable(*f.ctx, id);
  std::string path = f.dir.file(name);
  {
    File out = File::Create(path);
    EmitTable(*f.ctx, id, out);
  }
  return {size.sectors, size.bytes, ReadFileBytes(path)};
}

std::vector<std::string> DetailsOf(Fixture& f, const std::string& prefix) {
  for (std::size_t i = 0; i < f.lines().size(); ++i) {
    if (f.lines()[i].starts_with(prefix)) {
      f.ctx->report.Select(i);
      ShowIfoDetails(*f.ctx);
      return f.lines();
    }
  }
  ADD_FAILURE() << "no line begins with " << prefix;
  return {};
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

}  // namespace tarvex::test
