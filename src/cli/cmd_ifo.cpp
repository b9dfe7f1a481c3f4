// ifo, disasm, asm and the -asm=/-obj= form.
#include <cstdio>
#include <cstring>
#include <memory>

#include "app/batch_args.h"
#include "cli/cli.h"
#include "convert/drivers.h"
#include "platform/paths.h"

namespace tarvex::cli {

namespace {

struct IfoArgs {
  std::string file;
  std::string prefix;
  std::string source;
  std::string output;
  bool has_prefix = false;
};

void RunIfo(Session& session, const IfoArgs& args) {
  AppContext& ctx = session.ctx;
  // The file is an IFO whatever its name: no type message, and the overview is its first page.
  if (!OpenForCommand(session, args.file, kFileIfo)) {
    PrintReport(ctx);
    return;
  }
  if (args.has_prefix) {
    for (std::size_t i = 0; i < ctx.report.size(); ++i) {
      if (ctx.report.line(i).starts_with(args.prefix)) {
        ctx.report.Select(i);
        ShowIfoDetails(ctx);
        break;
      }
    }
  }
  PrintReport(ctx);
}

void RunDisasm(Session& session, const IfoArgs& args) {
  AppContext& ctx = session.ctx;
  if (!OpenForCommand(session, args.file, kFileIfo)) {
    PrintReport(ctx);
    return;
  }
  std::string source = args.source.empty() ? ReplaceExtension(args.file, "INI") : args.source;
  session.choosers[ChooserPurpose::kDisassemblySource] =
      [source](const ChooserRequest&) -> std::optional<std::string> { return source; };
  DisassembleIfo(ctx);
  PrintReport(ctx);
}

void RunAsm(Session& session, const IfoArgs& args) {
  AppContext& ctx = session.ctx;
  ctx.batch.asm_path = args.source;
  ctx.batch.obj_path = args.output;
  ctx.batch.batch_args = 2;
  AssembleBatch(ctx);
  PrintReport(ctx);
}

}  // namespace

void AddIfoCommands(CLI::App& app, Session& session) {
  auto args = std::make_shared<IfoArgs>();

  CLI::App* ifo = app.add_subcommand(
      "ifo",
      "Open the IFO FILE (whatever its name) and show its overview; with PREFIX, press "
      "Details on the first overview line that begins with PREFIX");
  ifo->add_option("FILE", args->file, "IFO file")->required();
  ifo->add_option("PREFIX", args->prefix, "Beginning of the heading line to expand");
  ifo->callback([&session, args, ifo] {
    args->has_prefix = ifo->count("PREFIX") > 0;
    session.action = [&session, args] { RunIfo(session, *args); };
  });

  CLI::App* disasm = app.add_subcommand(
      "disasm",
      "Open the IFO FILE (whatever its name) and disassemble it into the IfoSource "
      "SOURCE (*.INI); "
      "SOURCE defaults to FILE with its extension replaced by INI");
  disasm->add_option("FILE", args->file, "IFO file")->required();
  disasm->add_option("SOURCE", args->source, "IfoSource to write");
  disasm->callback(
      [&session, args] { session.action = [&session, args] { RunDisasm(session, *args); }; });

  CLI::App* assemble = app.add_subcommand(
      "asm",
      "Assemble the IfoSource SOURCE (*.INI) into the IFO OUTPUT, as -asm=SOURCE "
      "-obj=OUTPUT does; the VOB size questions are answered by --yes/--no");
  assemble->add_option("SOURCE", args->source, "IfoSource to read")->required();
  assemble->add_option("OUTPUT", args->output, "IFO file to write")->required();
  assemble->callback(
      [&session, args] { session.action = [&session, args] { RunAsm(session, *args); }; });
}

std::optional<int> RunBatchArguments(int argc, char** argv, Session& session) {
  AppContext& ctx = session.ctx;
  ParseBatchArguments(argc, argv, ctx.batch);
  bool any = ctx.batch.batch_args != 0;
  bool yes = false, no = false;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--yes") == 0) yes = true;
    if (std::strcmp(argv[i], "--no") == 0) no = true;
  }
  if (!any) return std::nullopt;
  if (ctx.batch.batch_args != 2) {
    std::fprintf(stderr,
                 "tarvex-cli: -asm=SOURCE and -obj=OUTPUT must be given together, exactly two "
                 "arguments of that form (%d given)\n",
                 static_cast<int>(ctx.batch.batch_args));
    return 2;
  }
  if (yes && no) {
    std::fputs("tarvex-cli: --yes and --no exclude each other\n", stderr);
    return 2;
  }
  if (yes) session.ui.set_answer(ConsoleUi::Answer::kYes);
  if (no) session.ui.set_answer(ConsoleUi::Answer::kNo);
  AssembleBatch(ctx);
  ctx.profiles.Flush();
  PrintReport(ctx);
  return session.ui.messages_shown() > 0 ? 1 : 0;
}

}  // namespace tarvex::cli
