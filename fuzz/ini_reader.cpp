// libFuzzer harness for the profile (INI) component: arbitrary bytes as a file, look-ups of a
// few sections and keys, writes, a flush to a temporary file and a read back. Checks that a
// value written reads back (before and after the flush) and that untouched keys keep theirs.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/file_io.h"
#include "platform/profile.h"

namespace {

// The harness's own folder, removed at exit (a plain array: nothing to destroy before then).
char temp_folder[] = "/tmp/tarvex-fuzz-ini-XXXXXX";

std::string TempFolder() {
  static const bool made = [] {
    if (!::mkdtemp(temp_folder)) std::abort();
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(temp_folder, ec);
    });
    return true;
  }();
  (void)made;
  return temp_folder;
}

void WriteAll(const std::string& path, const std::uint8_t* data, std::size_t size) {
  tarvex::File f = tarvex::File::Create(path);
  if (!f.is_open()) std::abort();
  f.Write(data, size);
}

void Check(bool ok) {
  if (!ok) std::abort();
}

// What a look-up gives for a value written as it is (trimmed, quotes removed, cut).
bool PlainValue(std::string_view v) {
  return v.find_first_of(std::string_view("\0\r\n \t\v\f\"'", 10)) == std::string_view::npos &&
         v.size() <= tarvex::kProfileValueMax;
}

// A section name as the store matches it: cut at a line end or zero, trimmed, ASCII case folded.
std::string Normal(std::string_view name) {
  name = name.substr(0, std::min(name.size(), name.find_first_of(std::string_view("\0\r\n", 3))));
  while (!name.empty() && std::strchr(" \t\r\v\f", name.front()) && name.front() != '\0') {
    name.remove_prefix(1);
  }
  while (!name.empty() && std::strchr(" \t\r\v\f", name.back()) && name.back() != '\0') {
    name.remove_suffix(1);
  }
  std::string out(name);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string path = TempFolder() + "/input.ini";
  WriteAll(path, data, size);

  // Names to look up: fixed ones, and ones taken from the input itself.
  std::string_view text(reinterpret_cast<const char*>(data), size);
  std::string from_input_section, from_input_key;
  if (std::size_t open = text.find('['); open != std::string_view::npos) {
    std::size_t close = text.find(']', open);
    if (close != std::string_view::npos) {
      from_input_section = std::string(text.substr(open + 1, close - open - 1));
    }
  }
  if (std::size_t eq = text.find('='); eq != std::string_view::npos) {
    std::size_t start = text.rfind('\n', eq);
    start = start == std::string_view::npos ? 0 : start + 1;
    from_input_key = std::string(text.substr(start, eq - start));
  }
  const std::string sections[] = {"kelvane", "VMGI_MAT", "", from_input_section};
  const std::string keys[] = {"kvln_path", "vmg_id", "", from_input_key};

  tarvex::ProfileStore store;
  std::string before[4][4];
  for (int s = 0; s < 4; ++s) {
    for (int k = 0; k < 4; ++k) {
      before[s][k] = store.GetString(path, sections[s], keys[k], "$default$");
      Check(before[s][k].size() <= tarvex::kProfileValueMax || before[s][k] == "$default$");
    }
  }

  // A value made of the input's last bytes (anything at all) and a plain one.
  std::string raw_value(text.substr(size > 40 ? size - 40 : 0));
  store.WriteString(path, "vmgi_mat", "vmg_id", "DVDVIDEO-VMG");
  store.WriteString(path, from_input_section, "tarvex_fuzz_key", raw_value);
  store.WriteString(path, "new_section", from_input_key, "x");
  Check(store.GetString(path, "VMGI_MAT", "VMG_ID", "$") == "DVDVIDEO-VMG");
  std::string in_memory = store.GetString(path, from_input_section, "tarvex_fuzz_key", "$");
  std::string serialized = store.Serialize(path);

  store.Flush();
  tarvex::ProfileStore fresh;
  Check(fresh.GetString(path, "vmgi_mat", "vmg_id", "$") == "DVDVIDEO-VMG");
  // The in-memory document answers what a fresh read of the written file answers.
  Check(fresh.GetString(path, from_input_section, "tarvex_fuzz_key", "$") == in_memory);
  if (PlainValue(raw_value) && from_input_section.find_first_of("\r\n", 0) == std::string::npos &&
      from_input_section.find('\0') == std::string::npos) {
    Check(in_memory == raw_value);
  }
  // The file holds exactly what was serialized.
  {
    tarvex::File f = tarvex::File::OpenRead(path);
    Check(f.is_open());
    std::string on_disk(static_cast<std::size_t>(f.Length()), '\0');
    Check(f.Read(on_disk.data(), on_disk.size()) == on_disk.size());
    Check(on_disk == serialized);
  }
  // Keys of sections nothing was written to read as before.
  const std::string written[] = {Normal("vmgi_mat"), Normal(from_input_section),
                                 Normal("new_section")};
  for (int s = 0; s < 4; ++s) {
    std::string name = Normal(sections[s]);
    if (name == written[0] || name == written[1] || name == written[2]) continue;
    for (int k = 0; k < 4; ++k) {
      Check(fresh.GetString(path, sections[s], keys[k], "$default$") == before[s][k]);
    }
  }
  Check(fresh.DeleteFile(path));
  return 0;
}
