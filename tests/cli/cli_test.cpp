// Runs the built tarvex-cli on synthetic files and checks exit status, standard output and
// the message lines on standard error.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "platform/format.h"
#include "support/file_access.h"
#include "support/test_support.h"

#ifdef TARVEX_CLI_PATH

namespace tarvex {
namespace {

using test::ReadFileText;
using test::TempDir;

struct CliResult {
  int status = -1;
  std::string out;
  std::string err;
  std::vector<std::string> OutLines() const { return Split(out); }
  std::vector<std::string> ErrLines() const { return Split(err); }
  static std::vector<std::string> Split(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t pos = 0;
    while (pos < text.size()) {
      std::size_t nl = text.find('\n', pos);
      if (nl == std::string::npos) nl = text.size();
      lines.push_back(text.substr(pos, nl - pos));
      pos = nl + 1;
    }
    return lines;
  }
};

class CliTest : public ::testing::Test {
 protected:
  // Runs tarvex-cli with args in the test folder, standard input from /dev/null and the
  // configuration under the test folder.
  CliResult Run(const std::vector<std::string>& args) {
    std::string out_path = dir.file("stdout.txt"), err_path = dir.file("stderr.txt");
    pid_t pid = ::fork();
    if (pid == 0) {
      int in = ::open("/dev/null", O_RDONLY);
      int out = ::open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      int err = ::open(err_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
      if (in < 0 || out < 0 || err < 0 || ::chdir(dir.path().c_str()) != 0) ::_exit(127);
      ::dup2(in, 0);
      ::dup2(out, 1);
      ::dup2(err, 2);
      ::setenv("XDG_CONFIG_HOME", config_home.c_str(), 1);
      if (without_file_access_override) {
        std::string why = test::DropFileAccessOverride();
        if (!why.empty()) {
          why = "could not drop the file access capabilities: " + why + "\n";
          if (::write(2, why.data(), why.size()) < 0) ::_exit(126);
          ::_exit(126);
        }
      }
      std::vector<char*> argv;
      std::string program = TARVEX_CLI_PATH;
      argv.push_back(program.data());
      std::vector<std::string> copy = args;
      for (std::string& a : copy) argv.push_back(a.data());
      argv.push_back(nullptr);
      ::execv(program.c_str(), argv.data());
      ::_exit(127);
    }
    CliResult r;
    int wstatus = 0;
    if (pid > 0 && ::waitpid(pid, &wstatus, 0) == pid && WIFEXITED(wstatus)) {
      r.status = WEXITSTATUS(wstatus);
    }
    r.out = ReadFileText(out_path);
    r.err = ReadFileText(err_path);
    return r;
  }

  // Runs tarvex-cli as Run does, without the capabilities that let root read any file.
  CliResult RunWithoutFileAccessOverride(const std::vector<std::string>& args) {
    without_file_access_override = true;
    CliResult r = Run(args);
    without_file_access_override = false;
    return r;
  }

  std::string Make(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    std::string path = dir.file(name);
    test::WriteFileBytes(path, bytes);
    return path;
  }

  // n bytes counting 0, 1, 2 ... (mod 256).
  static std::vector<std::uint8_t> Counting(std::size_t n) {
    std::vector<std::uint8_t> v(n);
    for (std::size_t i = 0; i < n; ++i) v[i] = static_cast<std::uint8_t>(i);
    return v;
  }

  // The hex row "%04d -> " + 16 × "%02X " of the given bytes, written out by hand.
  static std::string Row(int offset, const std::vector<int>& bytes) {
    std::ostringstream s;
    s.fill('0');
    s.width(4);
    s << offset << " -> ";
    static const char* digits = "0123456789ABCDEF";
    for (int b : bytes) s << digits[(b >> 4) & 15] << digits[b & 15] << ' ';
    return s.str();
  }
  static std::string ZeroRow(int offset) { return Row(offset, std::vector<int>(16, 0)); }

  bool without_file_access_override = false;
  TempDir dir;
  std::string config_home = dir.file("config");
  std::string config_file = config_home + "/ambrix/ambrix.ini";
};

// --- usage ---------------------------------------------------------------------------------

TEST_F(CliTest, NoCommandIsAUsageError) {
  CliResult r = Run({});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
}

TEST_F(CliTest, UnknownCommandIsAUsageError) {
  EXPECT_EQ(Run({"frobnicate", "x.vob"}).status, 2);
}

// The commands a usage error lists, each with its arguments (more commands may follow).
const std::vector<std::string> kCommandLines = {
    "  open FILE",
    "  list FILE FIRST END [options]",
    "  hex FILE RECORD",
    "  details FILE RECORD",
    "  extract FILE [options]",
    "  ifo FILE [PREFIX]",
    "  disasm FILE [SOURCE]",
    "  asm SOURCE OUTPUT",
    "  info DISC [options]",
    "  verify [DISC] [options]",
};

// Checks the usage error for a missing or unknown command: first line, the command list
// and the pointer to --help; returns the lines between the list and the last line.
std::vector<std::string> CheckCommandList(const CliResult& r, const std::string& first) {
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
  std::vector<std::string> lines = r.ErrLines();
  if (lines.size() < 3 + kCommandLines.size()) {
    ADD_FAILURE() << r.err;
    return {};
  }
  EXPECT_EQ(lines[0], first);
  EXPECT_EQ(lines[1], "Commands:");
  EXPECT_EQ(lines.back(), "Run \"tarvex-cli --help\" for what each command does.");
  std::size_t end = 2;
  while (end < lines.size() && lines[end].rfind("  ", 0) == 0) ++end;
  std::vector<std::string> listed(lines.begin() + 2, lines.begin() + end);
  for (const std::string& command : kCommandLines) {
    EXPECT_NE(std::find(listed.begin(), listed.end(), command), listed.end()) << command;
  }
  return std::vector<std::string>(lines.begin() + end, lines.end() - 1);
}

TEST_F(CliTest, UnknownCommandIsNamedAndTheCommandsAreListed) {
  CliResult r = Run({"foo", "FILE"});
  EXPECT_EQ(CheckCommandList(r, "tarvex-cli: unknown command \"foo\""), std::vector<std::string>{});
}

TEST_F(CliTest, MissingCommandListsTheCommands) {
  EXPECT_EQ(CheckCommandList(Run({}), "tarvex-cli: a command is required"),
            std::vector<std::string>{});
  EXPECT_EQ(CheckCommandList(Run({"--yes"}), "tarvex-cli: a command is required"),
            std::vector<std::string>{});
}

TEST_F(CliTest, UnknownCommandIsFoundAfterGlobalOptionsAndDoubleDash) {
  EXPECT_EQ(
      CheckCommandList(Run({"--yes", "frob", "x.vob"}), "tarvex-cli: unknown command \"frob\""),
      std::vector<std::string>{});
  EXPECT_EQ(CheckCommandList(Run({"--", "frob"}), "tarvex-cli: unknown command \"frob\""),
            std::vector<std::string>{});
  // Commands are spelled in lower case.
  EXPECT_EQ(CheckCommandList(Run({"OPEN", "x.vob"}), "tarvex-cli: unknown command \"OPEN\""),
            std::vector<std::string>{});
}

TEST_F(CliTest, MistypedCommandGetsTheClosestCommandSuggested) {
  // One swap, one letter missing, one letter too many, one replaced.
  const std::vector<std::pair<std::string, std::string>> typos = {
      {"opne", "open"}, {"extrct", "extract"}, {"detailss", "details"}, {"hez", "hex"}};
  for (const auto& [typo, command] : typos) {
    EXPECT_EQ(
        CheckCommandList(Run({typo, "a.vob"}), "tarvex-cli: unknown command \"" + typo + "\""),
        std::vector<std::string>{"Did you mean \"" + command + "\"?"})
        << typo;
  }
}

TEST_F(CliTest, KnownCommandWithAMissingArgumentIsNotCalledUnknown) {
  CliResult r = Run({"list", "a.vob", "0"});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err.find("unknown command"), std::string::npos) << r.err;
  EXPECT_NE(r.err.find("END"), std::string::npos) << r.err;
}

TEST_F(CliTest, UnknownOptionIsAUsageError) {
  EXPECT_EQ(Run({"--frob", "open", "x.m2p"}).status, 2);
}

TEST_F(CliTest, MissingArgumentIsAUsageError) {
  Make("a.vob", Counting(2048));
  EXPECT_EQ(Run({"list", "a.vob", "0"}).status, 2);
  EXPECT_EQ(Run({"hex", "a.vob"}).status, 2);
  EXPECT_EQ(Run({"details", "a.vob"}).status, 2);
  EXPECT_EQ(Run({"open"}).status, 2);
}

TEST_F(CliTest, ExtraArgumentIsAUsageError) {
  Make("a.m2p", Counting(2048));
  EXPECT_EQ(Run({"open", "a.m2p", "extra"}).status, 2);
}

TEST_F(CliTest, BadNumbersAreUsageErrorsAndNothingRuns) {
  Make("a.vob", Counting(2048));
  for (const char* bad :
       {"abc", "-1", "1.5", "0x10", "4294967296", "99999999999", "", " 1", "1e3", "+1"}) {
    CliResult r = Run({"hex", "a.vob", bad});
    EXPECT_EQ(r.status, 2) << "'" << bad << "'";
    EXPECT_EQ(r.out, "") << bad;
    EXPECT_EQ(Run({"list", "a.vob", bad, "16"}).status, 2) << bad;
    EXPECT_EQ(Run({"list", "a.vob", "0", bad}).status, 2) << bad;
    EXPECT_EQ(Run({"details", "a.vob", bad}).status, 2) << bad;
  }
  // The command never ran: the open step did not even remember a folder.
  EXPECT_FALSE(std::filesystem::exists(config_file));
}

TEST_F(CliTest, LargestRecordNumberIsAccepted) {
  Make("a.m2p", Counting(2048));
  CliResult r = Run({"list", "a.m2p", "4294967295", "4294967295"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
}

TEST_F(CliTest, YesAndNoTogetherAreAUsageError) {
  Make("a.m2p", Counting(2048));
  EXPECT_EQ(Run({"--yes", "--no", "open", "a.m2p"}).status, 2);
}

TEST_F(CliTest, GlobalOptionsStandBeforeOrAfterTheCommand) {
  Make("a.m2p", Counting(2048));
  EXPECT_EQ(Run({"--yes", "open", "a.m2p"}).status, 0);
  EXPECT_EQ(Run({"open", "a.m2p", "--no"}).status, 0);
}

TEST_F(CliTest, HelpDescribesEveryCommandAndOption) {
  CliResult r = Run({"--help"});
  EXPECT_EQ(r.status, 0);
  for (const char* word :
       {"open", "list", "hex", "details", "--yes", "--no", "--version", "--help",
        "-asm=SOURCE -obj=OUTPUT", "Exit status", "caption: text", "kvln_path"}) {
    EXPECT_NE(r.out.find(word), std::string::npos) << word;
  }
}

TEST_F(CliTest, CommandHelpDescribesItsArguments) {
  for (const char* cmd : {"open", "list", "hex", "details"}) {
    CliResult r = Run({cmd, "--help"});
    EXPECT_EQ(r.status, 0) << cmd;
    EXPECT_NE(r.out.find("FILE"), std::string::npos) << cmd;
  }
  CliResult list = Run({"list", "--help"});
  EXPECT_NE(list.out.find("FIRST"), std::string::npos);
  EXPECT_NE(list.out.find("END"), std::string::npos);
  EXPECT_NE(Run({"hex", "--help"}).out.find("RECORD"), std::string::npos);
}

TEST_F(CliTest, VersionPrintsTheVersion) {
  CliResult r = Run({"--version"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, std::string("tarvex-cli ") + TARVEX_VERSION + "\n");
}

// --- open ----------------------------------------------------------------------------------

TEST_F(CliTest, MissingFileCanNotBeOpenedAndNothingIsPrinted) {
  CliResult r = Run({"open", "gone.vob"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  // A relative name stands for the full path a chooser returns.
  EXPECT_EQ(r.err, "File selection error!: Can not open " + dir.file("gone.vob") + "\n");
}

TEST_F(CliTest, DirectoryCanNotBeOpened) {
  std::filesystem::create_directory(dir.file("folder.vob"));
  CliResult r = Run({"open", dir.file("folder.vob")});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File selection error!: Can not open " + dir.file("folder.vob") + "\n");
}

TEST_F(CliTest, FifoCanNotBeOpenedAndDoesNotHang) {
  ASSERT_EQ(::mkfifo(dir.file("pipe.vob").c_str(), 0600), 0);
  CliResult r = Run({"hex", dir.file("pipe.vob"), "0"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "File selection error!: Can not open " + dir.file("pipe.vob") + "\n");
}

TEST_F(CliTest, UnreadableFileCanNotBeOpened) {
  std::string path = Make("locked.vob", Counting(2048));
  ASSERT_EQ(::chmod(path.c_str(), 0), 0);
  CliResult r = RunWithoutFileAccessOverride({"open", path});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File selection error!: Can not open " + path + "\n");
}

TEST_F(CliTest, OpenRemembersTheFolderInTheConfigurationFile) {
  Make("a.m2p", Counting(2048));
  CliResult r = Run({"open", "a.m2p"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(ReadFileText(config_file), "[kelvane]\r\nkvln_path=" + dir.path() + "\r\n");
}

TEST_F(CliTest, M2pIsOpenedAndNothingIsListed) {
  Make("a.m2p", Counting(4096));
  CliResult r = Run({"open", "a.m2p"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "");
}

TEST_F(CliTest, UnknownTypeIsReported) {
  std::string path = Make("data.vob2", Counting(2048));
  CliResult r = Run({"open", path});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "File selection error!: This file type, " + path +
                       ", is unknown or not currently supported\n");
}

TEST_F(CliTest, TruncatedVobGetsTheLengthMessage) {
  std::string path = Make("short.vob", Counting(2049));
  CliResult r = Run({"open", path});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File format error!: Selected VOB file " + path + " has illegal length\n");
}

TEST_F(CliTest, EmptyVobOpensWithoutMessage) {
  Make("empty.vob", {});
  CliResult r = Run({"open", "empty.vob"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
}

// --- list ----------------------------------------------------------------------------------

// Records whose first four bytes are 00 00 01 (0xE0 + r), so each listed line names its record.
std::vector<std::uint8_t> NumberedRecords(std::size_t records) {
  std::vector<std::uint8_t> bytes(records * 2048, 0);
  for (std::size_t r = 0; r < records; ++r) {
    bytes[r * 2048 + 2] = 0x01;
    bytes[r * 2048 + 3] = static_cast<std::uint8_t>(0xE0 + r);
  }
  return bytes;
}

TEST_F(CliTest, OpenPrintsTheFirstPage) {
  Make("four.vob", NumberedRecords(4));
  CliResult r = Run({"open", "four.vob"});
  EXPECT_EQ(r.status, 0);
  // Four records and, as r <= record_count is listed, record 4 from the bytes record 3 left.
  EXPECT_EQ(r.out,
            "000000Illegal pack_start_code 1e0\n"
            "000001Illegal pack_start_code 1e1\n"
            "000002Illegal pack_start_code 1e2\n"
            "000003Illegal pack_start_code 1e3\n"
            "000004Illegal pack_start_code 1e3\n");
}

TEST_F(CliTest, ListPrintsRecordsFirstToEndMinusOne) {
  Make("ten.vob", NumberedRecords(10));
  CliResult r = Run({"list", "ten.vob", "2", "5"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(r.out,
            "000002Illegal pack_start_code 1e2\n"
            "000003Illegal pack_start_code 1e3\n"
            "000004Illegal pack_start_code 1e4\n");
}

TEST_F(CliTest, ListWithFirstNotBelowEndPrintsNothing) {
  Make("ten.vob", NumberedRecords(10));
  CliResult r = Run({"list", "ten.vob", "5", "5"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, "");
}

TEST_F(CliTest, ListOfTruncatedVobStillRunsAfterTheLengthMessage) {
  std::vector<std::uint8_t> bytes = NumberedRecords(1);
  bytes.push_back(0x77);
  std::string path = Make("short.vob", bytes);
  CliResult r = Run({"list", path, "0", "16"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File format error!: Selected VOB file " + path + " has illegal length\n");
  // record_count is 1; record 1 is the one byte read over the rest of record 0.
  EXPECT_EQ(r.out,
            "000000Illegal pack_start_code 1e0\n"
            "000001Illegal pack_start_code 770001e0\n");
}

TEST_F(CliTest, ListOfUnknownTypeStillRuns) {
  std::string path = Make("data.bin", NumberedRecords(3));
  CliResult r = Run({"list", path, "0", "2"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File selection error!: This file type, " + path +
                       ", is unknown or not currently supported\n");
  // record_count is still 0 (set for VOB files only): record 0 is listed (r <= record_count).
  EXPECT_EQ(r.out, "000000Illegal pack_start_code 1e0\n");
}

TEST_F(CliTest, OpenOfAnIfoShowsTheOverview) {
  std::string ifo = std::string(TARVEX_SOURCE_DIR) + "/samples/disc/VIDEO_TS/VTS_01_0.IFO";
  ASSERT_TRUE(std::filesystem::exists(ifo)) << "the sample disc is missing";
  CliResult r = Run({"open", ifo});
  ASSERT_FALSE(r.OutLines().empty());
  EXPECT_EQ(r.OutLines()[0], "VTSI_MAT IFO File: Video Title Set Information Management Table");
}

// --- hex -----------------------------------------------------------------------------------

TEST_F(CliTest, HexShowsTheRecordAtItsFileAddress) {
  Make("two.vob", Counting(4096));
  CliResult r = Run({"hex", "two.vob", "1"});
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.err, "");
  std::vector<std::string> lines = r.OutLines();
  ASSERT_EQ(lines.size(), 130u);
  EXPECT_EQ(lines[0], "Hex display of record 1 at file address 2048");
  EXPECT_EQ(lines[1], " ");
  // Byte 2048 + k of the file is (2048 + k) mod 256 = k mod 256.
  EXPECT_EQ(lines[2], "0000 -> 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ");
  EXPECT_EQ(lines[3], "0016 -> 10 11 12 13 14 15 16 17 18 19 1A 1B 1C 1D 1E 1F ");
  EXPECT_EQ(lines[129], "2032 -> F0 F1 F2 F3 F4 F5 F6 F7 F8 F9 FA FB FC FD FE FF ");
}

TEST_F(CliTest, HexOfTruncatedVobStillRunsAfterTheLengthMessage) {
  std::vector<std::uint8_t> bytes(2049, 0x11);
  bytes[2048] = 0xAB;
  std::string path = Make("short.vob", bytes);
  CliResult r = Run({"hex", path, "1"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File format error!: Selected VOB file " + path + " has illegal length\n");
  std::vector<std::string> lines = r.OutLines();
  ASSERT_EQ(lines.size(), 130u);
  EXPECT_EQ(lines[0], "Hex display of record 1 at file address 2048");
  // One byte read; the view starts from a zeroed buffer.
  EXPECT_EQ(lines[2], Row(0, {0xAB, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(lines[3], ZeroRow(16));
}

TEST_F(CliTest, HexOfUnknownTypeStillRunsAtFileAddressZero) {
  std::string path = Make("data.bin", Counting(4096));
  CliResult r = Run({"hex", path, "1"});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "File selection error!: This file type, " + path +
                       ", is unknown or not currently supported\n");
  std::vector<std::string> lines = r.OutLines();
  ASSERT_EQ(lines.size(), 130u);
  // Only a VOB has record addresses: every other type reads from address 0.
  EXPECT_EQ(lines[0], "Hex display of record 1 at file address 0");
  EXPECT_EQ(lines[2], "0000 -> 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F ");
}

TEST_F(CliTest, HexOfEmptyVobShowsZeros) {
  Make("empty.vob", {});
  CliResult r = Run({"hex", "empty.vob", "0"});
  EXPECT_EQ(r.status, 0);
  std::vector<std::string> lines = r.OutLines();
  ASSERT_EQ(lines.size(), 130u);
  EXPECT_EQ(lines[0], "Hex display of record 0 at file address 0");
  for (int row = 0; row < 128; ++row) EXPECT_EQ(lines[2 + row], ZeroRow(row * 16));
}

TEST_F(CliTest, HexBeyondTheEndReadsNothing) {
  Make("one.vob", Counting(2048));
  CliResult r = Run({"hex", "one.vob", "5"});
  EXPECT_EQ(r.status, 0);
  std::vector<std::string> lines = r.OutLines();
  ASSERT_EQ(lines.size(), 130u);
  EXPECT_EQ(lines[0], "Hex display of record 5 at file address 10240");
  EXPECT_EQ(lines[2], ZeroRow(0));
}

// --- a file that cannot be opened stops every command --------------------------------------

TEST_F(CliTest, CanNotOpenStopsListHexAndDetails) {
  std::vector<std::vector<std::string>> commands = {
      {"list", "gone.vob", "0", "16"}, {"hex", "gone.vob", "0"}, {"details", "gone.vob", "0"}};
  for (const auto& args : commands) {
    CliResult r = Run(args);
    EXPECT_EQ(r.status, 1) << args[0];
    EXPECT_EQ(r.out, "") << args[0];
    ASSERT_EQ(r.ErrLines().size(), 1u) << args[0];
    EXPECT_EQ(r.ErrLines()[0], "File selection error!: Can not open " + dir.file("gone.vob"));
  }
}

TEST_F(CliTest, DetailsAndListRunWithoutMessageOnAGoodFile) {
  Make("two.vob", Counting(4096));
  CliResult details = Run({"details", "two.vob", "0"});
  EXPECT_EQ(details.status, 0);
  EXPECT_EQ(details.err, "");
  CliResult list_ok = Run({"list", "two.vob", "0", "16"});
  EXPECT_EQ(list_ok.status, 0);
  EXPECT_EQ(list_ok.err, "");
}

}  // namespace
}  // namespace tarvex

#endif  // TARVEX_CLI_PATH
