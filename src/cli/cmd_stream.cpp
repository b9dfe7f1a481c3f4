// open, list, hex, details.
#include <cstdio>
#include <filesystem>
#include <memory>

#include "app/open_file.h"
#include "cli/cli.h"
#include "stream/details.h"
#include "stream/hex_view.h"
#include "stream/listing.h"
#include "stream/listing_json.h"

namespace tarvex::cli {

namespace {

// A record number: decimal digits only, 0 to 4294967295.
std::optional<std::uint32_t> ParseRecordNumber(const std::string& text) {
  if (text.empty() || text.size() > 10) return std::nullopt;
  std::uint64_t value = 0;
  for (char c : text) {
    if (c < '0' || c > '9') return std::nullopt;
    value = value * 10 + static_cast<std::uint64_t>(c - '0');
  }
  if (value > 0xFFFFFFFFull) return std::nullopt;
  return static_cast<std::uint32_t>(value);
}

CLI::Validator RecordNumber() {
  return CLI::Validator(
      [](std::string& text) -> std::string {
        if (ParseRecordNumber(text)) return {};
        return "'" + text + "' is not a record number (decimal, 0 to 4294967295)";
      },
      "", "record number");
}

// The full path a file chooser would hand back for FILE.
std::string ChooserPath(const std::string& file) {
  std::error_code ec;
  std::filesystem::path absolute = std::filesystem::absolute(file, ec);
  if (ec) return file;
  return absolute.lexically_normal().string();
}

CLI::App* AddFileCommand(CLI::App& app, const std::string& name, const std::string& summary,
                         const std::string& details, std::shared_ptr<std::string> file) {
  CLI::App* cmd = app.add_subcommand(name, summary);
  cmd->footer(details);
  cmd->add_option("FILE", *file,
                  "The file to open (*.VOB, *.M2P, *.IFO or *.SUP; the type comes from the "
                  "last three letters of the name)")
      ->required()
      ->type_name("PATH");
  return cmd;
}

}  // namespace

bool OpenForCommand(Session& session, const std::string& file,
                    std::optional<std::int32_t> forced_type) {
  std::string path = ChooserPath(file);
  session.choosers[ChooserPurpose::kOpenInput] =
      [path](const ChooserRequest&) -> std::optional<std::string> { return path; };
  OpenCommand(session.ctx, forced_type);
  session.choosers.erase(ChooserPurpose::kOpenInput);
  // With the chooser answered, a file that is not open afterwards could not be opened
  // ("Can not open %s" was shown).
  return session.ctx.open.file_handle.is_open();
}

namespace {

// A command on one record of FILE (hex, details): opens FILE, makes RECORD the current
// record (page_end, as the window's record selection does) and runs show on it.
void AddRecordCommand(CLI::App& app, Session& session, const char* name, const char* summary,
                      const char* details, const char* record_help, void (*show)(AppContext& ctx)) {
  auto file = std::make_shared<std::string>();
  auto record = std::make_shared<std::string>();
  CLI::App* cmd = AddFileCommand(app, name, summary, details, file);
  cmd->add_option("RECORD", *record, record_help)
      ->required()
      ->check(RecordNumber())
      ->type_name("NUMBER");
  cmd->callback([&session, file, record, show] {
    session.action = [&session, file, record, show] {
      if (OpenForCommand(session, *file)) {
        session.ctx.open.page_end = *ParseRecordNumber(*record);
        show(session.ctx);
      }
      PrintReport(session.ctx);
    };
  });
}

}  // namespace

void AddStreamCommands(CLI::App& app, Session& session) {
  {
    auto file = std::make_shared<std::string>();
    CLI::App* cmd = AddFileCommand(
        app, "open", "Open FILE and print its first page (File > Open)",
        "Opens FILE as File > Open does and prints what the window then shows:\n"
        "  *.VOB  the first page, records 0 to 15, one line per record with its pack\n"
        "         type and clock reference\n"
        "  *.IFO  the overview, one heading line per table\n"
        "  *.SUP  the decoded first sub-picture unit\n"
        "  *.M2P  opened, nothing listed\n"
        "The type comes from the last three letters of the name, in any case. A VOB\n"
        "whose length is not a multiple of 2048 bytes is listed after the message\n"
        "\"File format error!: Selected VOB file FILE has illegal length\".",
        file);
    cmd->callback([&session, file] {
      session.action = [&session, file] {
        OpenForCommand(session, *file);
        PrintReport(session.ctx);
      };
    });
  }
  {
    auto file = std::make_shared<std::string>();
    auto first = std::make_shared<std::string>();
    auto end = std::make_shared<std::string>();
    CLI::App* cmd = AddFileCommand(
        app, "list", "Open FILE and list records FIRST to END-1",
        "Opens FILE as the open command does, then lists the page of records FIRST to\n"
        "END-1 as paging in the window does: one line per record with its pack type and\n"
        "clock reference. Records are listed while they are below END and not beyond the\n"
        "record count (a record past the end of the file is listed from what the previous\n"
        "read left). For an IFO the overview is shown instead when FIRST < END.",
        file);
    cmd->add_option("FIRST", *first, "First record to list (decimal)")
        ->required()
        ->check(RecordNumber())
        ->type_name("NUMBER");
    cmd->add_option("END", *end, "One past the last record to list (decimal)")
        ->required()
        ->check(RecordNumber())
        ->type_name("NUMBER");
    auto json = std::make_shared<bool>(false);
    cmd->add_flag("--json", *json,
                  "Print the records as JSON, one object per pack: {\"file\", \"packets\": "
                  "[{\"record\", \"type\" (the listing's word), \"scr\" (27 MHz ticks), "
                  "\"scr_base\" (90 kHz), \"scr_extension\", \"pts\" and \"dts\" (90 kHz, all "
                  "33 bits, when present), \"stream_id\", \"sub_stream_id\" (private streams)}]}. "
                  "Only whole records within the file are listed; the report list is not used");
    cmd->callback([&session, file, first, end, json] {
      session.action = [&session, file, first, end, json] {
        if (*json) {
          auto text = ListPacksJson(*file, *ParseRecordNumber(*first), *ParseRecordNumber(*end));
          if (!text) {
            std::fprintf(stderr, "tarvex-cli list: %s: cannot be opened\n", file->c_str());
            session.exit_status = 1;
            return;
          }
          std::fwrite(text->data(), 1, text->size(), stdout);
          session.exit_status = 0;
          return;
        }
        if (OpenForCommand(session, *file)) {
          std::uint32_t from = *ParseRecordNumber(*first);
          std::uint32_t to = *ParseRecordNumber(*end);
          ListPage(session.ctx, from, to);
          session.ctx.open.page_end = to;
          session.ctx.open.scroll_page = static_cast<std::int32_t>(to >> 4);
        }
        PrintReport(session.ctx);
      };
    });
  }
  AddRecordCommand(app, session, "hex", "Open FILE and show record RECORD as a hex dump (HEX)",
                   "Opens FILE as the open command does, then shows record RECORD as pressing HEX\n"
                   "on its line does: a title line and 128 rows of 16 bytes with their file\n"
                   "addresses (record x 2048 for a VOB, 0 for other types).",
                   "The record to dump (decimal)", [](AppContext& ctx) {
                     ShowRecordHex(ctx, false);
                     ctx.stream.hex_mode = 1;
                   });
  AddRecordCommand(
      app, session, "details", "Open FILE and decode record RECORD field by field (Details)",
      "Opens FILE as the open command does, then decodes record RECORD as pressing\n"
      "Details on its line does: pack, system and PES headers, then the navigation\n"
      "pack (PCI and DSI), video, audio or sub-picture fields. A record that cannot be\n"
      "classified gives the error dump.",
      "The record to decode (decimal)", [](AppContext& ctx) {
        ShowRecordDetails(ctx);
        ctx.stream.details_mode = 1;
      });
}

}  // namespace tarvex::cli
