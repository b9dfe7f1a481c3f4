#include "support/test_support.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace tarvex::test {

TempDir::TempDir() {
  std::random_device rd;
  auto base = std::filesystem::temp_directory_path();
  for (int attempt = 0; attempt < 100; ++attempt) {
    auto candidate = base / ("tarvex-test-" + std::to_string(rd()));
    if (std::filesystem::create_directory(candidate)) {
      path_ = candidate.string();
      return;
    }
  }
  throw std::runtime_error("cannot create a temporary folder");
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

void WriteFileBytes(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(reinterpret_cast<const char*>(bytes.data()),
            static_cast<std::streamsize>(bytes.size()));
}

std::vector<std::uint8_t> ReadFileBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string ReadFileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

Fixture::Fixture() : ctx(std::make_unique<AppContext>(ui)) {
  std::filesystem::create_directory(dir.path() + "/config");
  ::setenv("XDG_CONFIG_HOME", (dir.path() + "/config").c_str(), 1);
}

Fixture::~Fixture() {
  ctx.reset();
}

std::string Fixture::OpenBytes(const std::string& name, const std::vector<std::uint8_t>& bytes,
                               std::int32_t file_type) {
  std::string path = dir.file(name);
  WriteFileBytes(path, bytes);
  ctx->open.file_handle = File::OpenRead(path);
  ctx->open.file_type = file_type;
  ctx->open.file_path = path;
  ctx->open.file_open = 1;
  if (file_type == kFileVob) {
    ctx->open.record_count = static_cast<std::uint32_t>(bytes.size() >> 11);
  }
  return path;
}

Record MakePackHeader(std::uint64_t scr_base, std::uint32_t scr_ext, std::uint32_t mux_rate) {
  Record r(2048, 0);
  r[0] = 0x00;
  r[1] = 0x00;
  r[2] = 0x01;
  r[3] = 0xBA;
  std::uint64_t b = scr_base & 0x1FFFFFFFFull;
  r[4] = static_cast<std::uint8_t>(0x44 | ((b >> 27) & 0x38) | ((b >> 28) & 0x03));
  r[5] = static_cast<std::uint8_t>(b >> 20);
  r[6] = static_cast<std::uint8_t>(0x04 | ((b >> 12) & 0xF8) | ((b >> 13) & 0x03));
  r[7] = static_cast<std::uint8_t>(b >> 5);
  r[8] = static_cast<std::uint8_t>(0x04 | ((b << 3) & 0xF8) | ((scr_ext >> 7) & 0x03));
  r[9] = static_cast<std::uint8_t>(((scr_ext << 1) & 0xFE) | 0x01);
  r[10] = static_cast<std::uint8_t>(mux_rate >> 14);
  r[11] = static_cast<std::uint8_t>(mux_rate >> 6);
  r[12] = static_cast<std::uint8_t>(((mux_rate << 2) & 0xFC) | 0x03);
  r[13] = 0xF8;  // no pack stuffing
  return r;
}

void PutTimeStamp(Record& r, std::size_t offset, std::uint8_t prefix, std::uint64_t ticks) {
  r[offset] = static_cast<std::uint8_t>((prefix << 4) | ((ticks >> 29) & 0x0E) | 1);
  r[offset + 1] = static_cast<std::uint8_t>(ticks >> 22);
  r[offset + 2] = static_cast<std::uint8_t>(((ticks >> 14) & 0xFE) | 1);
  r[offset + 3] = static_cast<std::uint8_t>(ticks >> 7);
  r[offset + 4] = static_cast<std::uint8_t>(((ticks << 1) & 0xFE) | 1);
}

Record MakePesPack(std::uint8_t stream_id, std::uint8_t flags2,
                   const std::vector<std::uint8_t>& header_data,
                   const std::vector<std::uint8_t>& payload, std::uint64_t scr_base) {
  Record r = MakePackHeader(scr_base);
  r[14] = 0x00;
  r[15] = 0x00;
  r[16] = 0x01;
  r[17] = stream_id;
  std::uint32_t length = 2048 - 20;
  r[18] = static_cast<std::uint8_t>(length >> 8);
  r[19] = static_cast<std::uint8_t>(length);
  r[20] = 0x81;  // '10' marker, original_or_copy
  r[21] = flags2;
  r[22] = static_cast<std::uint8_t>(header_data.size());
  std::size_t pos = 23;
  for (std::uint8_t b : header_data) r[pos++] = b;
  for (std::uint8_t b : payload) {
    if (pos >= r.size()) break;
    r[pos++] = b;
  }
  return r;
}

void PutBytes(Record& record, std::size_t offset, const std::vector<std::uint8_t>& bytes) {
  for (std::size_t i = 0; i < bytes.size() && offset + i < record.size(); ++i) {
    record[offset + i] = bytes[i];
  }
}

Record MakePaddingPack(std::uint64_t scr_base, std::uint32_t scr_ext) {
  Record r = MakePackHeader(scr_base, scr_ext);
  PutBytes(r, 14, {0x00, 0x00, 0x01, 0xBE, 0x07, 0xEC});
  for (std::size_t i = 20; i < r.size(); ++i) r[i] = 0xFF;
  return r;
}

std::vector<std::uint8_t> Concat(const std::vector<Record>& records) {
  std::vector<std::uint8_t> out;
  for (const auto& r : records) out.insert(out.end(), r.begin(), r.end());
  return out;
}

bool HaveTool(const char* name) {
  std::string cmd = std::string("command -v ") + name + " >/dev/null 2>&1";
  return std::system(cmd.c_str()) == 0;
}

std::string ShellQuote(const std::string& s) {
  std::string out = "'";
  for (char c : s) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string CaptureCommand(const std::string& cmd) {
  std::string out;
  if (FILE* p = ::popen(cmd.c_str(), "r")) {
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, p)) > 0) out.append(buf, n);
    ::pclose(p);
  }
  return out;
}

}  // namespace tarvex::test
