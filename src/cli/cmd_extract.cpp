// extract FILE [--audio] [--video] [--stills] [--subpictures] [--disassemble] [--dir DIR]
//              [--video-out PATH] [--stills-out PATH] [--subpictures-out PATH]
//              [--source-out PATH]
#include <filesystem>
#include <memory>

#include "cli/cli.h"
#include "convert/drivers.h"
#include "extract/extract.h"

namespace tarvex::cli {

namespace {

struct ExtractOptions {
  std::string file;
  bool audio = false;
  bool video = false;
  bool stills = false;
  bool subpictures = false;
  bool disassemble = false;
  std::string dir = ".";
  std::string video_out;
  std::string stills_out;
  std::string subpictures_out;
  std::string source_out;
};

std::string Stem(const std::string& file) {
  return std::filesystem::path(file).stem().string();
}

// FILE with its extension replaced by INI (".INI" appended when it has none).
std::string WithIniExtension(const std::string& file) {
  return std::filesystem::path(file).replace_extension("INI").string();
}

std::string InDir(const std::string& dir, const std::string& name) {
  return dir + "/" + name;
}

void AnswerChoosers(Session& session, const ExtractOptions& o) {
  auto fixed = [](std::string path) {
    return [path](const ChooserRequest&) -> std::optional<std::string> { return path; };
  };
  std::string dir = o.dir;
  session.choosers[ChooserPurpose::kAudioStream] =
      [dir](const ChooserRequest& request) -> std::optional<std::string> {
    return InDir(dir, request.default_name);
  };
  std::string stem = Stem(o.file);
  session.choosers[ChooserPurpose::kVideo] =
      fixed(o.video_out.empty() ? InDir(dir, stem + ".M2V") : o.video_out);
  session.choosers[ChooserPurpose::kStills] =
      fixed(o.stills_out.empty() ? InDir(dir, stem + ".M2V") : o.stills_out);
  session.choosers[ChooserPurpose::kSubPictures] =
      fixed(o.subpictures_out.empty() ? InDir(dir, stem + ".SUP") : o.subpictures_out);
  session.choosers[ChooserPurpose::kDisassemblySource] =
      fixed(o.source_out.empty() ? WithIniExtension(o.file) : o.source_out);
}

void RunExtract(Session& session, const ExtractOptions& o) {
  AnswerChoosers(session, o);
  AppContext& ctx = session.ctx;
  if (!OpenForCommand(session, o.file)) {
    PrintReport(ctx);
    return;
  }
  // The Extract dialog: every flag cleared, then the ticked boxes set.
  ctx.extract = ExtractRequest{};
  ctx.extract.extract_audio = o.audio ? 1 : 0;
  ctx.extract.extract_video = o.video ? 1 : 0;
  ctx.extract.extract_stills = o.stills ? 1 : 0;
  ctx.extract.extract_subpictures = o.subpictures ? 1 : 0;
  ctx.extract.disassemble_ifo = o.disassemble ? 1 : 0;
  // The fixed order of the Extract command.
  if (ctx.extract.extract_audio) ExtractAudio(ctx);
  if (ctx.extract.extract_video) ExtractVideo(ctx);
  if (ctx.extract.extract_stills) ExtractStills(ctx);
  if (ctx.extract.extract_subpictures) ExtractSubPictures(ctx);
  if (ctx.extract.disassemble_ifo) DisassembleIfo(ctx);
  PrintReport(ctx);
}

}  // namespace

void AddExtractCommands(CLI::App& app, Session& session) {
  auto o = std::make_shared<ExtractOptions>();
  CLI::App* cmd = app.add_subcommand(
      "extract",
      "Open FILE, tick the given boxes of the Extract dialog and press OK: demultiplex audio "
      "streams (DIR/audioNN.AC3, .WAV, .MPA), the video (DIR/STEM.M2V), MPEG stills "
      "(DIR/STEMnnnn.m2v), sub-picture units (DIR/STEM00nnnn.SUP) and/or disassemble an IFO "
      "(FILE with extension INI). STEM is FILE's name without its extension.");
  cmd->add_option("FILE", o->file, "The VOB, M2P or IFO file to open")->required();
  cmd->add_flag("--audio", o->audio, "Audio to *.M2A, *.MPA, *.AC3 or *.WAV");
  cmd->add_flag("--video", o->video, "Video to *.M2V or *.MPV");
  cmd->add_flag("--stills", o->stills, "MPEG Stills");
  cmd->add_flag("--subpictures", o->subpictures, "Sub-Pictures");
  cmd->add_flag("--disassemble", o->disassemble, "Disassemble *.IFO file to *.INI file");
  cmd->add_option("--dir", o->dir,
                  "Folder for the audio files and the default video, stills and sub-picture "
                  "names (default: the current folder)");
  cmd->add_option("--video-out", o->video_out, "Answer to the video file chooser");
  cmd->add_option("--stills-out", o->stills_out,
                  "Answer to the stills chooser (its last 4 characters are replaced by the "
                  "number and .m2v)");
  cmd->add_option("--subpictures-out", o->subpictures_out,
                  "Answer to the sub-picture chooser (its last 4 characters are replaced by "
                  "00, the number and .SUP/.sup)");
  cmd->add_option("--source-out", o->source_out,
                  "Answer to the disassembly source chooser (default: FILE with extension INI)");
  cmd->callback([&session, o] { session.action = [&session, o] { RunExtract(session, *o); }; });
}

}  // namespace tarvex::cli
