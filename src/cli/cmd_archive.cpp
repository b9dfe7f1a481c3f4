// rip: a title's packs in play order, with its chapters.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

#include "archive/chapters.h"
#include "archive/rip.h"
#include "cli/cli.h"
#include "cli/disc_command.h"
#include "platform/format.h"

namespace tarvex::cli {

namespace {

struct RipArgs {
  std::string disc, output, chapters, format = "ogm";
  std::uint32_t title = 0, angle = 1;
};

void Fail(const std::string& what, const std::string& error) {
  std::fprintf(stderr, "tarvex-cli rip: %s: %s\n", what.c_str(), error.c_str());
}

// Writes all of bytes to fd; false with error on a write error.
bool WriteAll(int fd, std::span<const std::uint8_t> bytes, std::string& error) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      error = std::string("cannot write the output: ") + std::strerror(errno);
      return false;
    }
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// A progress line on standard error, rewritten in place whenever the percentage changes.
std::function<void(std::uint64_t, std::uint64_t)> TerminalProgress() {
  if (!isatty(STDERR_FILENO)) return {};
  auto last = std::make_shared<int>(-1);
  return [last](std::uint64_t done, std::uint64_t expected) {
    int percent =
        expected == 0 ? 100 : static_cast<int>(std::min<std::uint64_t>(100, done * 100 / expected));
    if (percent == *last) return;
    *last = percent;
    std::fprintf(stderr, "\rrip: %3d%% (%llu of %llu MiB)", percent,
                 static_cast<unsigned long long>(done >> 20),
                 static_cast<unsigned long long>(expected >> 20));
  };
}

// Whether fd is a regular file (which the kernel can copy VOB sectors into directly).
bool RegularFile(int fd) {
  struct stat st {};
  return fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
}

// Streams the title into FILE (or standard output for "-"); the exit status.
int WriteRip(const Disc& disc, const TitleCells& plan, const RipArgs& a) {
  bool to_stdout = a.output == "-";
  int fd = to_stdout ? STDOUT_FILENO
                     : ::open(a.output.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) {
    Fail(a.output, std::strerror(errno));
    return 1;
  }
  RipOptions options{.angle = a.angle,
                     .write = [fd](std::span<const std::uint8_t> bytes,
                                   std::string& error) { return WriteAll(fd, bytes, error); },
                     .direct_fd = RegularFile(fd) ? fd : -1,
                     .progress = TerminalProgress()};
  RipResult result = RipTitle(disc, plan, options);
  if (options.progress) std::fputc('\n', stderr);
  bool closed = to_stdout || ::close(fd) == 0;
  if (!result.ok) {
    Fail(a.disc, result.error + " (" + std::to_string(result.bytes) + " bytes written)");
    return 1;
  }
  if (!closed) {
    Fail(a.output, std::strerror(errno));
    return 1;
  }
  return 0;
}

const TitleEntry* FindTitle(const std::vector<TitleEntry>& titles, std::uint32_t number) {
  for (const TitleEntry& t : titles) {
    if (t.number == number) return &t;
  }
  return nullptr;
}

void RunRip(Session& session, const RipArgs& a) {
  if (a.output.empty() && a.chapters.empty()) {
    std::fprintf(stderr, "tarvex-cli rip: -o FILE is required unless only --chapters is asked\n");
    session.usage_error = true;
    return;
  }
  std::string error;
  std::optional<Disc> disc = LoadDisc(a.disc, error);
  if (!disc) {
    Fail(a.disc, error);
    session.exit_status = 1;
    return;
  }
  std::vector<TitleEntry> titles = DiscTitles(*disc);
  const TitleEntry* entry = FindTitle(titles, a.title);
  std::uint32_t angles = entry ? std::max<std::uint32_t>(1, entry->angles) : 0;
  if (entry == nullptr || a.angle > angles) {
    Fail(a.disc, entry == nullptr
                     ? "no title " + std::to_string(a.title)
                     : "title " + std::to_string(a.title) + " has " + Counted(angles, "angle"));
    session.usage_error = true;
    return;
  }
  TitleCells plan = PlanTitleCells(*disc, *entry, a.angle);
  if (!a.chapters.empty() &&
      !WriteTextFile(a.chapters, ChapterFile(plan.chapters, *ParseChapterFormat(a.format)))) {
    Fail(a.chapters, "cannot write the chapter file");
    session.exit_status = 1;
    return;
  }
  session.exit_status = a.output.empty() ? 0 : WriteRip(*disc, plan, a);
}

void AddRip(CLI::App& app, Session& session) {
  auto a = std::make_shared<RipArgs>();
  CLI::App* cmd =
      app.add_subcommand("rip", "Copy a title's packs in play order, losslessly, with chapters");
  cmd->footer(
      "Writes the packs of each cell of the title's program chain in order, each cell's\n"
      "sectors first to last from its VOB set (across VOB files, from an ISO image too). A\n"
      "title whose parts lie in several chains is ripped chain after chain in the order of\n"
      "its parts. In an angle block only the cell of --angle is written, and in an\n"
      "interleaved block only that angle's interleaved units, followed through the\n"
      "navigation packs' interleave links. -o - writes the bytes to standard output and\n"
      "nothing else; progress goes to standard error when it is a terminal.\n"
      "\n"
      "--chapters FILE writes the title's chapters: chapter k starts at the sum of the cell\n"
      "times of the cells before its first cell, counted exactly (frames of 1001/30000 s\n"
      "or 1/25 s) and rounded to the millisecond when written. Formats: ogm\n"
      "(CHAPTER01=00:00:00.000, CHAPTER01NAME=Chapter 01), ffmetadata (;FFMETADATA1,\n"
      "[CHAPTER] sections in milliseconds), matroska (the XML chapters mkvmerge reads).\n"
      "-o is required unless only --chapters is asked for.\n"
      "\n"
      "Exit status: 0 when the title was written, 1 when the disc cannot be read or a read\n"
      "or write fails (the message names the file and sector; what was written is kept), 2\n"
      "for a usage error (no such title, an angle beyond the title's angles).");
  cmd->add_option("DISC", a->disc, kDiscHelp)->required()->type_name("PATH");
  cmd->add_option("--title", a->title, "The title to rip, as info numbers it")
      ->required()
      ->type_name("N")
      ->check(CLI::Range(1u, 99u));
  cmd->add_option("--angle", a->angle, "The angle of angle blocks (default 1)")
      ->type_name("A")
      ->check(CLI::Range(1u, 9u));
  cmd->add_option("-o,--output", a->output,
                  "Write the title's bytes to FILE (- for standard output)")
      ->type_name("FILE");
  auto* chapters = cmd->add_option("--chapters", a->chapters, "Write the title's chapters to FILE")
                       ->type_name("FILE");
  cmd->add_option("--chapter-format", a->format,
                  "Chapter file format: ogm (default), ffmetadata or matroska")
      ->type_name("FORMAT")
      ->check(CLI::IsMember({"ogm", "ffmetadata", "matroska"}))
      ->needs(chapters);
  cmd->callback([&session, a] { session.action = [&session, a] { RunRip(session, *a); }; });
}

}  // namespace

void AddArchiveCommands(CLI::App& app, Session& session) {
  AddRip(app, session);
}

}  // namespace tarvex::cli
