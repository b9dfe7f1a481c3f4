#include "nav/play_output.h"

#include "platform/json_writer.h"

namespace tarvex::nav {

std::string PlayText(const PlayResult& result, bool with_registers) {
  std::string out;
  for (const TraceLine& line : result.trace) {
    out += line.text;
    if (with_registers && !line.registers.empty()) out += "  [" + line.registers + "]";
    out += '\n';
  }
  return out;
}

namespace {

void OptionalUint(JsonWriter& json, const char* name, const std::optional<std::uint32_t>& v) {
  json.Key(name);
  v ? json.Uint(*v) : json.Null();
}

void OptionalString(JsonWriter& json, const char* name, const std::optional<std::string>& v) {
  json.Key(name);
  v ? json.String(*v) : json.Null();
}

// "domain", "title_set", "language", "pgc" of a chain.
void ChainMembers(JsonWriter& json, const ChainRef& chain,
                  const std::optional<std::string>& language) {
  json.Member("domain", DomainName(chain.domain));
  json.MemberUint("title_set", chain.title_set);
  OptionalString(json, "language", language);
  json.Key("pgc");
  chain.domain == Domain::kFirstPlay ? json.Null() : json.Uint(chain.pgc);
}

void CellJson(JsonWriter& json, const CellEvent& cell) {
  json.BeginObject();
  ChainMembers(json, cell.chain, cell.language);
  OptionalUint(json, "title", cell.title);
  OptionalUint(json, "chapter", cell.chapter);
  json.MemberUint("cell", cell.cell);
  json.MemberUint("first_sector", cell.first_sector);
  OptionalString(json, "key", cell.key);
  if (cell.implicit) json.Key("implicit").Bool(true);
  json.EndObject();
}

void CommandJson(JsonWriter& json, const CommandEvent& command) {
  json.BeginObject();
  ChainMembers(json, command.chain, command.language);
  json.Member("where", command.where);
  json.MemberUint("number", command.number);
  json.Member("text", command.text);
  json.Member("result", command.result);
  if (!command.registers.empty()) json.Member("registers", command.registers);
  json.EndObject();
}

}  // namespace

std::string PlayJson(const Disc& disc, const PlayResult& result) {
  JsonWriter json;
  json.set_compact_depth(2);
  json.BeginObject();
  json.Member("disc", disc.path);
  json.Key("keys").BeginArray();
  for (const std::string& key : result.keys) json.String(key);
  json.EndArray();
  json.Key("cells").BeginArray();
  for (const CellEvent& cell : result.cells) CellJson(json, cell);
  json.EndArray();
  json.Key("commands").BeginArray();
  for (const CommandEvent& command : result.commands) CommandJson(json, command);
  json.EndArray();
  json.Member("end", result.end);
  json.Member("end_reason", result.end_reason);
  OptionalUint(json, "first_title", result.first_title);
  json.EndObject();
  return json.text() + "\n";
}

}  // namespace tarvex::nav
