// Driving the IFO commands in tests: opening an image and showing its overview, pressing
// Details on a heading line, disassembling to a source, assembling one table or a whole IFO
// from a source, and reading a section of a source back.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "ifo/table.h"
#include "support/test_support.h"

namespace tarvex::test {

// Writes image to dir/name, opens it as an IFO and shows its overview; returns the path.
std::string OpenIfo(Fixture& f, const std::string& name, const std::vector<std::uint8_t>& image);

// The first n report lines (all of them when there are fewer).
std::vector<std::string> FirstLines(const Fixture& f, std::size_t n);
// The first two overview lines of MakeVmgImage(): the information table's heading and the
// menu VOB's line.
std::vector<std::string> VmgImageOverviewHead();

// Whether the report (or lines) holds exactly this line.
bool HasLine(const std::vector<std::string>& lines, const std::string& line);
bool HasLine(const Fixture& f, const std::string& line);

// Writes bytes at offset of the open file, behind the back of the open tables.
void OverwriteOpenFile(Fixture& f, std::int64_t offset, const std::vector<std::uint8_t>& bytes);

// Selects the first report line beginning with prefix and shows its details; false (and a
// test failure) when there is none. DetailsOf returns the report lines after that.
bool PressDetailsOn(Fixture& f, const std::string& prefix);
std::vector<std::string> DetailsOf(Fixture& f, const std::string& prefix);

// Disassembles the open IFO with the Disassemble command into dir/name; returns the path.
std::string DisassembleIfoTo(Fixture& f, const std::string& name);
// Goes back from the details to the overview, disassembles the open IFO with the Disassemble
// command into dir/name and returns the key lines of one section of the source.
std::vector<std::string> DisassembledSection(Fixture& f, const std::string& name,
                                             const std::string& section);
// Disassembles the given tables of the open IFO into dir/name; returns the source text.
std::string DisassembleTables(Fixture& f, std::initializer_list<TableId> ids,
                              const std::string& name = "OUT.INI");

// Assembles the source with the batch driver into dir/out/ifo_name (the folder is made);
// returns the written bytes.
std::vector<std::uint8_t> AssembleBatchInto(Fixture& f, const std::string& source,
                                            const std::string& ifo_name);
// Disassembles the open IFO to dir/<name without extension>.INI and assembles that source
// into dir/out/name; returns the written bytes.
std::vector<std::uint8_t> RoundTripThroughDrivers(Fixture& f, const std::string& name);

// Writes the text as the current IfoSource of the fixture (dir/name).
void UseSource(Fixture& f, const std::string& text, const std::string& name = "SOURCE.INI");

// UseSource, then loads the table kind from it.
void LoadSource(Fixture& f, TableId id, const std::string& text,
                const std::string& name = "SOURCE.INI");
// Emits the loaded table kind into dir/name; returns the written bytes.
std::vector<std::uint8_t> EmitInto(Fixture& f, TableId id, const std::string& name = "TABLE.BIN");

// Loads, measures and emits one table kind into dir/name; returns the written bytes.
struct EmittedTable {
  std::uint32_t sectors = 0;
  std::uint32_t bytes = 0;
  std::vector<std::uint8_t> file;
};
EmittedTable LoadAndEmit(Fixture& f, TableId id, const std::string& name = "OUT.IFO");

// Assembles the loaded tables as a whole title set or video manager IFO into dir/name with
// the assembly entry point (no batch driver); returns the written bytes.
std::vector<std::uint8_t> AssembleTitleSetInto(Fixture& f, const std::string& name);
std::vector<std::uint8_t> AssembleVideoManagerInto(Fixture& f, const std::string& name);

// UseSource and LoadAndEmit in one step: the bytes written, and the size measured if asked.
std::vector<std::uint8_t> AssembleTable(Fixture& f, TableId id, const std::string& source,
                                        TableSize* size = nullptr);

// The section's key=value lines of the IfoSource text, in order.
std::vector<std::string> SectionLines(const std::string& text, const std::string& section);

// The text without carriage returns.
std::string WithoutCr(const std::string& text);

}  // namespace tarvex::test
