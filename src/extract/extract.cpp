#include "extract/extract.h"

#include <array>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "extract/output_file.h"
#include "extract/payload.h"
#include "extract/record_reader.h"
#include "extract/write_behind.h"
#include "platform/file_identity.h"
#include "platform/format.h"
#include "stream/hex_view.h"
#include "stream/sector_type.h"

namespace tarvex {

namespace {

constexpr std::string_view kIllegalSector = "Illegal sector type, aborting extract operation!";
constexpr std::string_view kUnknownSector = "Unknown sector type, aborting extract operation!";
constexpr std::string_view kNothingFound = "End of file, no audio sectors found!";
constexpr std::string_view kFileSystemError = "File system error!";
constexpr std::string_view kFileReadError = "File read error!";
constexpr std::uint32_t kSaveFlags = kChooserHideReadOnly | kChooserFileMustExist;  // 0x1004

// The wait cursor of one run: switched on before a file is created, back off when the run
// ends or a creation fails.
class WaitCursor {
 public:
  explicit WaitCursor(UserInterface& ui) : ui_(ui) {}
  ~WaitCursor() { Off(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  void On() {
    ui_.SetWaitCursor(true);
    on_ = true;
  }
  void Off() {
    if (on_) ui_.SetWaitCursor(false);
    on_ = false;
  }

 private:
  UserInterface& ui_;
  bool on_ = false;
};

std::optional<std::string> ChooseOutput(AppContext& ctx, ChooserPurpose purpose, std::string filter,
                                        std::string default_name) {
  ChooserRequest request;
  request.purpose = purpose;
  request.filter = std::move(filter);
  request.initial_dir = ctx.open.file_dir;
  request.default_name = std::move(default_name);
  request.flags = kSaveFlags;
  return ctx.ui.ChooseSaveFile(request);
}

// The chosen path without its last four characters (the extension the chooser is assumed to
// have added, whatever it is).
std::string BaseName(const std::string& chosen) {
  return chosen.substr(0, chosen.size() > 4 ? chosen.size() - 4 : 0);
}

// The reader of one run. The stream is expected to keep the length it had when the Extract
// command began (a run started on its own: when the reader is made).
void ExpectStreamLength(const AppContext& ctx, RecordReader& reader) {
  if (ctx.extract.stream_length >= 0) reader.ExpectLength(ctx.extract.stream_length);
}

// The stream got shorter than the run expects while the run read it (see RecordReader): the
// walk has ended before the first record the stream no longer holds, and the run has finished
// every file it made as at the end of the stream (written out, WAV headers patched to the
// samples written, closed). One "File read error!" box names the stream, and the request is
// cleared, so no later run of the same Extract command starts on the shortened stream.
void StopOnShrunkStream(AppContext& ctx) {
  ctx.ui.ShowMessage(ctx.open.file_path, kFileReadError);
  ctx.extract = ExtractRequest{};
}

// A sector no extraction can handle: the error dump; the run ends.
void AbortOnIllegalSector(AppContext& ctx, RecordReader& reader, std::int32_t type) {
  reader.Release();
  ShowErrorDump(ctx, kIllegalSector, reader.position(), type);
}

// Makes an output file. When it is the open stream itself, which creating truncates, the
// reader first forgets what it read ahead of the current record, so the walk goes on with the
// file as it then is (as record-by-record reading would); from then on the run, and the later
// runs of the command, expect the stream to be as long as the truncation left it (a run's own
// truncation is no sign of the stream shrinking under it). When the file cannot be made the
// run ends: the "File system error!" box shows box_text (the routine's line buffer: nothing
// for audio and video, the numbered name for stills and sub-pictures) and the wait cursor
// goes back.
bool CreateOutput(AppContext& ctx, RecordReader& reader, WaitCursor& cursor, OutputFile& file,
                  const std::string& path, const std::string& box_text) {
  bool stream_itself = IsSameFile(ctx.open.file_path, path);
  if (stream_itself) reader.DropReadAhead();
  if (file.Create(path)) {
    if (stream_itself) {
      std::int64_t length = ctx.open.file_handle.Length();
      reader.ExpectLength(length);
      if (ctx.extract.stream_length >= 0) ctx.extract.stream_length = length;
    }
    return true;
  }
  ctx.ui.ShowMessage(box_text, kFileSystemError);
  cursor.Off();
  return false;
}

void WriteBytes(OutputFile& file, ByteView record, std::uint32_t start, std::int32_t length) {
  ByteRange range = PayloadBytes(record.size(), start, length);
  file.Write(record.sub(range.offset, range.size));
}

// ---------------------------------------------------------------------------------------
// Audio

struct AudioSlot {
  OutputFile file;
  std::uint32_t count = 0;  // sample bytes written after the WAV header
  bool wav = false;
};

struct AudioKind {
  const char* filter;
  const char* default_name;
};

AudioKind AudioKindOf(std::int32_t type) {
  switch (type) {
    case kSectorAc3:
      return {"AC3 Audio (*.AC3)|*.AC3|", "audio%02d.AC3"};
    case kSectorLpcm:
      return {"PCM Audio (*.WAV)|*.WAV|", "audio%02d.WAV"};
    default:
      return {"MPEG Audio (*.MPA)|*.MPA|", "audio%02d.MPA"};
  }
}

// The 44-byte RIFF/WAVE header as written when the file is made: both lengths 0, the byte
// rate field is the sampling frequency / 8 and the block align field channels x 2 (16 bits)
// or channels x 3.
std::array<std::uint8_t, 44> WavHeader(const LpcmParameters& lpcm) {
  std::array<std::uint8_t, 44> h{};
  ByteWriter w(h);
  w.put_bytes(0, ByteView(reinterpret_cast<const std::uint8_t*>("RIFF"), 4));
  w.put_le32(4, 0);
  w.put_bytes(8, ByteView(reinterpret_cast<const std::uint8_t*>("WAVE"), 4));
  w.put_bytes(12, ByteView(reinterpret_cast<const std::uint8_t*>("fmt "), 4));
  w.put_le32(16, 16);
  w.put_le16(20, 1);
  w.put_le16(22, lpcm.channels);
  w.put_le32(24, lpcm.sampling_frequency);
  w.put_le32(28, lpcm.sampling_frequency >> 3);
  w.put_le16(32, lpcm.bits_per_sample == 16 ? lpcm.channels * 2 : lpcm.channels * 3);
  w.put_le16(34, lpcm.bits_per_sample);
  w.put_bytes(36, ByteView(reinterpret_cast<const std::uint8_t*>("data"), 4));
  w.put_le32(40, 0);
  return h;
}

// Big-endian LPCM samples to little-endian: bytes 0 and 1, 2 and 3, ... of the payload are
// swapped in the record itself. With an odd length the last byte pairs with the byte after
// the payload; a partner outside the record reads as 0 and is not written.
struct SwapPlan {
  std::size_t size = 0;    // payload bytes inside the record
  std::size_t whole = 0;   // bytes that swap with a partner inside the record
  bool zero_last = false;  // the last byte's partner lies outside the record: it becomes 0
};

SwapPlan PlanSwap(std::size_t record_size, std::size_t offset, std::size_t size) {
  if (offset >= record_size) return {};
  std::size_t available = record_size - offset;  // bytes from the payload to the end
  std::size_t n = size < available ? size : available;
  std::size_t whole = n + (n & 1) <= available ? n + (n & 1) : n - (n & 1);
  return {n, whole, whole < n};
}

// Swaps the first `whole` bytes of from pairwise into to (which may be from itself).
void SwapPairsInto(const std::uint8_t* from, std::uint8_t* to, std::size_t whole) {
  std::size_t i = 0;
  for (; i + 8 <= whole; i += 8) {
    std::uint64_t v;
    std::memcpy(&v, from + i, 8);
    v = ((v & 0x00FF00FF00FF00FFull) << 8) | ((v >> 8) & 0x00FF00FF00FF00FFull);
    std::memcpy(to + i, &v, 8);
  }
  for (; i < whole; i += 2) {
    std::uint8_t first = from[i];
    to[i] = from[i + 1];
    to[i + 1] = first;
  }
}

// The swap made in the record itself.
void SwapPairsInPlace(std::span<std::uint8_t> record, std::size_t offset, std::size_t size) {
  SwapPlan plan = PlanSwap(record.size(), offset, size);
  SwapPairsInto(record.data() + offset, record.data() + offset, plan.whole);
  if (plan.zero_last) record[offset + plan.size - 1] = 0;
}

// Writes the payload as the swap leaves it straight from the record into the file; the record
// itself is changed only when a short read can still show it.
void WriteSwapped(OutputFile& file, RecordReader& reader, ByteRange range) {
  ByteView record = reader.view();
  SwapPlan plan = PlanSwap(record.size(), range.offset, range.size);
  if (plan.size == 0) return;
  std::uint8_t* out = file.Extend(plan.size);
  const std::uint8_t* in = record.data() + range.offset;
  // With an odd length whose partner lies inside the record, the last pair reaches one byte
  // past the payload: only its first byte (the byte after the payload) is written.
  std::size_t direct = plan.whole > plan.size ? plan.whole - 2 : plan.whole;
  SwapPairsInto(in, out, direct);
  if (direct < plan.whole) out[direct] = in[direct + 1];
  if (plan.zero_last) out[plan.size - 1] = 0;
  reader.ChangeWhenKept(SwapPairsInPlace, range.offset, range.size);
}

}  // namespace

void ExtractAudio(AppContext& ctx) {
  // Declared before the files it writes for, so that it outlives them.
  WriteBehind writer(OutputFile::kDefaultBufferSize + OutputFile::kCarryRoom);
  std::array<AudioSlot, 8> slots;
  for (AudioSlot& slot : slots) slot.file = OutputFile(&writer);
  ctx.ClearReportList();
  WaitCursor cursor(ctx.ui);
  RecordReader reader(ctx.open.file_handle);
  ExpectStreamLength(ctx, reader);
  AudioPayload payload;  // an unknown sub-stream keeps the previous pack's start and length
  LpcmParameters lpcm;
  // The end of the stream, or the stream shrank: either way every file is finished below.
  while (reader.Next() != 0) {
    ByteView record = reader.view();
    std::int32_t type = GetSectorType(record, ctx.stream.stream_number);
    if (type == kSectorIllegal) {
      // The files are left as they are: WAV headers are not patched.
      AbortOnIllegalSector(ctx, reader, type);
      return;
    }
    if (type != kSectorAc3 && type != kSectorLpcm && type != kSectorMpegAudio) continue;

    LocateAudioPayload(record, payload);
    AudioSlot& slot = slots[payload.stream & 7];
    if (!slot.file.is_open()) {
      AudioKind kind = AudioKindOf(type);
      auto chosen = ChooseOutput(ctx, ChooserPurpose::kAudioStream, kind.filter,
                                 Format(kind.default_name, {payload.stream}));
      // Cancel ends the run; files made so far keep what was written and get no WAV patch.
      if (!chosen) return;
      cursor.On();
      if (!CreateOutput(ctx, reader, cursor, slot.file, *chosen, "")) return;
      // Making the file may have dropped the reader's window: take the record again.
      record = reader.view();
      if (type == kSectorLpcm) {
        slot.count = 0;
        slot.wav = true;
        ReadLpcmParameters(record, lpcm);
        auto header = WavHeader(lpcm);
        slot.file.Write(ByteView(header.data(), header.size()));
      }
    }
    if (type == kSectorLpcm) {
      ByteRange range = PayloadBytes(record.size(), payload.start, payload.length);
      WriteSwapped(slot.file, reader, range);
      slot.count += static_cast<std::uint32_t>(range.size);
    } else {
      WriteBytes(slot.file, record, payload.start, payload.length);
    }
  }
  for (AudioSlot& slot : slots) {
    if (slot.wav && slot.file.is_open()) {
      slot.file.PatchLe32(4, slot.count - 8);
      slot.file.PatchLe32(40, slot.count - 36);
    }
    slot.file.Close();
  }
  if (reader.shrunk()) StopOnShrunkStream(ctx);
}

namespace {

// ---------------------------------------------------------------------------------------
// Video, stills and sub-pictures: phase 1 finds the first pack of the wanted type and asks
// for the file; phase 2 copies from record 0 on.

// Phase 1. Returns true when a pack of the wanted type was found; otherwise the run has
// already shown why it ends.
bool FindFirstPack(AppContext& ctx, RecordReader& reader, std::int32_t wanted) {
  for (;;) {
    if (reader.Next() == 0) {
      if (reader.shrunk()) {
        StopOnShrunkStream(ctx);
      } else {
        ctx.AddReportLine(kNothingFound);
      }
      return false;
    }
    std::int32_t type = GetSectorType(reader.view(), ctx.stream.stream_number);
    if (type == kSectorIllegal) {
      AbortOnIllegalSector(ctx, reader, type);
      return false;
    }
    if (type == wanted) return true;
  }
}

// The sequence end code scan of a still: positions p from s while p < 2048 - s.
bool HasSequenceEnd(ByteView record, std::uint32_t s) {
  for (std::uint32_t p = s; p < RecordReader::kRecordSize - s && s < RecordReader::kRecordSize;
       ++p) {
    if (record.be32(p) == 0x1B7) return true;
  }
  return false;
}

// The copy pass of the video, still and sub-picture extraction: walks the stream again from
// its start and hands every pack of the wanted type to copy_pack, which returns false when it
// ended the run itself. An illegal sector ends the run with the error dump, a type above 8 with
// its line; otherwise the output file is closed at the end of the stream, or when the stream
// shrank under the pass.
template <typename CopyPack>
void CopyPacks(AppContext& ctx, RecordReader& reader, OutputFile& out, std::int32_t wanted,
               CopyPack copy_pack) {
  reader.Rewind();
  while (reader.Next() != 0) {
    ByteView record = reader.view();
    std::int32_t type = GetSectorType(record, ctx.stream.stream_number);
    if (type == kSectorIllegal) {
      out.Close();
      AbortOnIllegalSector(ctx, reader, type);
      return;
    }
    if (type > kSectorMpegAudio) {
      ctx.AddReportLine(kUnknownSector);
      break;
    }
    if (type == wanted && !copy_pack(record)) return;
  }
  out.Close();
  if (reader.shrunk()) StopOnShrunkStream(ctx);
}

void ExtractVideoStream(AppContext& ctx, bool stills) {
  ctx.ClearReportList();
  WaitCursor cursor(ctx.ui);
  RecordReader reader(ctx.open.file_handle);
  ExpectStreamLength(ctx, reader);
  if (!FindFirstPack(ctx, reader, kSectorVideo)) return;

  auto chosen = ChooseOutput(ctx, stills ? ChooserPurpose::kStills : ChooserPurpose::kVideo,
                             "MPEG Video(*.M2V)|*.M2V|", "");
  if (!chosen) return;
  cursor.On();
  // The video goes out through a writer thread; stills are small files, made one after another.
  WriteBehind writer(OutputFile::kDefaultBufferSize + OutputFile::kCarryRoom);
  OutputFile out(stills ? nullptr : &writer);
  std::string base;
  std::int32_t counter = 0;
  if (stills) {
    base = BaseName(*chosen);
    counter = 1;
    std::string name = Format("%s%04d.m2v", {base, counter});
    counter = 2;
    if (!CreateOutput(ctx, reader, cursor, out, name, name)) return;
  } else if (!CreateOutput(ctx, reader, cursor, out, *chosen, "")) {
    return;
  }

  CopyPacks(ctx, reader, out, kSectorVideo, [&](ByteView record) {
    VideoPayload payload = LocateVideoPayload(record);
    WriteBytes(out, record, payload.start, payload.length);
    if (!stills || !HasSequenceEnd(record, payload.start)) return true;
    // The rest of this pack went to the file just closed; the next still starts with the
    // next video pack.
    out.Close();
    std::string name = Format("%s%04d.m2v", {base, counter});
    ++counter;
    return CreateOutput(ctx, reader, cursor, out, name, name);
  });
}

}  // namespace

void ExtractVideo(AppContext& ctx) {
  ExtractVideoStream(ctx, false);
}

void ExtractStills(AppContext& ctx) {
  ExtractVideoStream(ctx, true);
}

void ExtractSubPictures(AppContext& ctx) {
  ctx.ClearReportList();
  WaitCursor cursor(ctx.ui);
  RecordReader reader(ctx.open.file_handle);
  ExpectStreamLength(ctx, reader);
  if (!FindFirstPack(ctx, reader, kSectorSubPicture)) return;

  std::uint16_t stream_field = 0;  // never changed: every name carries "00"
  auto chosen = ChooseOutput(ctx, ChooserPurpose::kSubPictures, "SubPicture(*.SUP)|*.SUP|", "");
  if (!chosen) return;
  cursor.On();
  std::string base = BaseName(*chosen);
  std::uint16_t counter = 1;
  OutputFile out;
  std::string name = Format("%s%02d%04d.SUP", {base, stream_field, counter});
  counter = 2;
  if (!CreateOutput(ctx, reader, cursor, out, name, name)) return;

  bool written = false;
  CopyPacks(ctx, reader, out, kSectorSubPicture, [&](ByteView record) {
    SubPicturePayload payload = LocateSubPicturePayload(record);
    if (payload.has_pts && written) {
      // A PTS starts the next unit, in the next numbered file.
      out.Close();
      name = Format("%s%02d%04d.sup", {base, stream_field, counter});
      ++counter;
      if (!CreateOutput(ctx, reader, cursor, out, name, name)) return false;
      record = reader.view();  // making the file may have dropped the reader's window
    }
    WriteBytes(out, record, payload.start, payload.length);
    written = true;
    return true;
  });
}

}  // namespace tarvex
