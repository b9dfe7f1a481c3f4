#include "stream/listing.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "ifo/overview.h"
#include "platform/decimal.h"
#include "platform/format.h"
#include "stream/details.h"
#include "stream/hex_view.h"
#include "stream/sector_type.h"

namespace tarvex {

namespace {

constexpr std::uint32_t kPackStartCode = 0x1BA;
constexpr std::uint32_t kMaxScrExtension = 300;
constexpr std::size_t kMaxReadBlock = 1 << 20;

// Reads the open file as a sequence of seeks and reads, but fetches the bytes in large blocks.
// Every read yields exactly what the same read on the file would: the bytes up to the end of
// the file, with the rest of the caller's buffer left as it was; the file position moves the
// same way and is handed back to the file at the end.
class BlockReader {
 public:
  // planned_end: the file offset the caller expects to read up to; blocks do not go past it
  // unless a read asks for more.
  BlockReader(File& file, std::int64_t planned_end) : file_(file), planned_end_(planned_end) {}
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;
  ~BlockReader() { file_.Seek(position_); }

  void Seek(std::int64_t position) { position_ = position; }

  std::size_t Read(std::uint8_t* out, std::size_t n) {
    if (!Holds(n)) Fill(n);
    std::int64_t available = block_start_ + static_cast<std::int64_t>(block_.size()) - position_;
    std::size_t got = available <= 0 ? 0 : std::min(n, static_cast<std::size_t>(available));
    if (got > 0) {
      std::memcpy(out, block_.data() + (position_ - block_start_), got);
    }
    position_ += static_cast<std::int64_t>(got);
    return got;
  }

 private:
  // Whether the block answers a read of n bytes at the current position: it covers them, or
  // it reaches the end of the file and the position is inside it or beyond.
  bool Holds(std::size_t n) const {
    if (!filled_ || position_ < block_start_) return false;
    std::int64_t block_end = block_start_ + static_cast<std::int64_t>(block_.size());
    return position_ + static_cast<std::int64_t>(n) <= block_end || at_file_end_;
  }

  void Fill(std::size_t n) {
    std::int64_t wanted =
        std::clamp<std::int64_t>(planned_end_ - position_, static_cast<std::int64_t>(n),
                                 static_cast<std::int64_t>(kMaxReadBlock));
    block_.resize(static_cast<std::size_t>(wanted));
    block_start_ = position_;
    std::size_t got = file_.Seek(position_) < 0 ? 0 : file_.Read(block_.data(), block_.size());
    at_file_end_ = got < block_.size();
    block_.resize(got);
    filled_ = true;
  }

  File& file_;
  std::int64_t planned_end_;
  std::int64_t position_ = 0;
  std::vector<std::uint8_t> block_;
  std::int64_t block_start_ = 0;
  bool filled_ = false;
  bool at_file_end_ = false;
};

std::int64_t RecordAddress(std::uint32_t record) {
  return static_cast<std::int64_t>(record) * RECORD_SIZE;
}

// Labels of the detailed listing by sector type (padding has none).
const char* DetailedLabel(std::int32_t type) {
  switch (type) {
    case kSectorVideo:
      return " Video ";
    case kSectorNavigation:
      return " Navigations ";
    case kSectorSubPicture:
      return " Subpicture ";
    case kSectorAc3:
      return " AC-3 Audio ";
    case kSectorDts:
      return " DTS Audio ";
    case kSectorSdds:
      return " SDDS Audio ";
    case kSectorLpcm:
      return " PCM Audio ";
    case kSectorMpegAudio:
      return " MPEG Audio channel %d Pack";
    case kSectorPadding:
      return "";
    default:
      return " Illegal ";
  }
}

const char* BasicLabel(std::int32_t type) {
  switch (type) {
    case kSectorVideo:
      return " Video Pack";
    case kSectorNavigation:
      return " Navigations Pack - Start of VOBU";
    case kSectorSubPicture:
      return " Subpicture Pack";
    case kSectorAc3:
      return " AC-3 Audio Pack";
    case kSectorDts:
      return " DTS Audio Pack";
    case kSectorSdds:
      return " SDDS Audio Pack";
    case kSectorLpcm:
      return " PCM Audio Pack";
    case kSectorMpegAudio:
      return " MPEG Audio channel ?? Pack";
    case kSectorPadding:
      return " Padding Pack";
    default:
      return " Illegal sector type";
  }
}

// The state of one ListPage call: its reader, its two buffers (zeroed at the start; a short
// read leaves the previous record's bytes behind the bytes it got) and its line buffer.
struct PageLister {
  AppContext& ctx;
  BlockReader reader;
  std::array<std::uint8_t, RECORD_SIZE> record{};
  std::array<std::uint8_t, 2 * RECORD_SIZE> pair{};
  std::string line;
  std::uint32_t previous_base = 0;  // the basic listing's SCR delta starts at 0 on every page

  void ListDetailed(std::uint32_t r) {
    ByteView rec(record.data(), record.size());
    VideoScan scan;  // frame number, frame type and GOP flag start at -1
    std::uint32_t pts = 0, dts = 0;
    const std::int32_t type = GetSectorType(rec, ctx.stream.stream_number);
    if (type == kSectorMpegAudio) {
      AppendFormat(line, DetailedLabel(type), {type - kSectorMpegAudio});  // always 0
    } else {
      line += DetailedLabel(type);
    }
    if (type == kSectorVideo) {
      // This record and the next, for the picture header that may straddle them.
      reader.Seek(RecordAddress(r));
      reader.Read(pair.data(), pair.size());
      reader.Seek(RecordAddress(r) + RECORD_SIZE);
      ScanVideoHeaders(ByteView(pair.data(), pair.size()), scan);
    }
    if (type >= kSectorVideo && type <= kSectorMpegAudio && type != kSectorNavigation) {
      pts = PesPts(rec);
      dts = PesDts(rec);
    }
    const std::uint32_t base = ScrBase(rec.sub(4));
    const std::uint32_t ext = ScrExtension(rec.sub(4));
    if (ext > kMaxScrExtension) {
      ctx.AddReportLine("****** SCR Clock Error on next, SCR remainder error!");
    }
    if (pts == 0) {
      AppendFormat(line, " SCR %ld.%03ld", {base, ext});
    } else if (dts == 0) {
      AppendFormat(line, " SCR %ld.%03ld PTS %ld", {base, ext, pts});
    } else {
      AppendFormat(line, " SCR %ld.%03ld PTS %ld DTS %ld", {base, ext, pts, dts});
    }
    ctx.AddReportLine(line);

    line.clear();
    if (scan.frame_number != -1) {
      AppendFormat(line, " -> Video: Frame number %d Frame type %d",
                   {scan.frame_number, scan.frame_type});
    }
    if (scan.gop_found != -1) line += " GOP";
    if (!line.empty()) ctx.AddReportLine(line);
  }

  void ListBasic() {
    ByteView rec(record.data(), record.size());
    const std::uint32_t base = ScrBase(rec.sub(4));
    const std::uint32_t ext = ScrExtension(rec.sub(4));
    AppendFormat(line, " SCR = %08ld.%03ld SCR Delta = %03ld", {base, ext, base - previous_base});
    previous_base = base;
    line += BasicLabel(GetSectorType(rec, ctx.stream.stream_number));
    ctx.AddReportLine(line);
  }

  void ListRecord(std::uint32_t r) {
    reader.Read(record.data(), record.size());
    line.clear();
    AppendFormat(line, "%06d", {r});
    const std::uint32_t code = ByteView(record.data(), record.size()).be32(0);
    if (code != kPackStartCode) {
      AppendFormat(line, "Illegal pack_start_code %lx", {code});
      ctx.AddReportLine(line);
    } else if (ctx.stream.listing_mode == 1) {
      ListDetailed(r);
    } else {
      ListBasic();
    }
  }
};

// "Show" after a scroll step: the hex view or the details of page_end, or the page before it;
// the scroll position then follows scroll_page (the window reads it from there).
void ShowCurrentView(AppContext& ctx) {
  if (ctx.stream.hex_mode == 1) {
    ShowRecordHex(ctx, false);
  } else if (ctx.stream.details_mode == 1) {
    ShowRecordDetails(ctx);
  } else {
    ListPage(ctx, ctx.open.page_end - PAGE_RECORDS, ctx.open.page_end);
  }
}

std::uint32_t PageEndOf(std::int32_t scroll_page) {
  return static_cast<std::uint32_t>(scroll_page) * PAGE_RECORDS;
}

}  // namespace

void ListPage(AppContext& ctx, std::uint32_t first, std::uint32_t end) {
  File& file = ctx.open.file_handle;
  if (ctx.open.file_type == kFileIfo) {
    file.Seek(0);
    ctx.ClearReportList();
    if (first < end) ShowIfoOverview(ctx);
    return;
  }
  // Records first .. end-1, and also record_count itself when it lies in that range.
  const std::uint64_t last_listed =
      std::min<std::uint64_t>(end, std::uint64_t{ctx.open.record_count} + 1);
  const std::int64_t planned_end =
      static_cast<std::int64_t>(std::max<std::uint64_t>(last_listed, first) + 1) * RECORD_SIZE;
  PageLister lister{ctx, BlockReader(file, planned_end), {}, {}, {}, 0};
  lister.reader.Seek(RecordAddress(first));
  ctx.ClearReportList();
  for (std::uint64_t r = first; r < last_listed; ++r) {
    lister.ListRecord(static_cast<std::uint32_t>(r));
  }
}

void ScrollLineDown(AppContext& ctx, std::int32_t current_position) {
  OpenFileState& open = ctx.open;
  if (open.page_end >= open.record_count) return;
  open.scroll_page = current_position;
  open.page_end += 1;
  if (open.page_end % PAGE_RECORDS == 0) open.scroll_page += 1;
  ShowCurrentView(ctx);
}

void ScrollLineUp(AppContext& ctx, std::int32_t current_position) {
  OpenFileState& open = ctx.open;
  if (open.page_end <= PAGE_RECORDS) return;
  open.scroll_page = current_position;
  open.page_end -= 1;
  if (open.page_end % PAGE_RECORDS == 0) open.scroll_page -= 1;
  ShowCurrentView(ctx);
}

void ScrollPageDown(AppContext& ctx, std::int32_t current_position) {
  OpenFileState& open = ctx.open;
  if (std::uint64_t{open.page_end} + PAGE_RECORDS >= open.record_count) return;
  open.scroll_page = current_position + 1;
  open.page_end = PageEndOf(open.scroll_page);
  ShowCurrentView(ctx);
}

void ScrollPageUp(AppContext& ctx, std::int32_t current_position) {
  OpenFileState& open = ctx.open;
  if (open.page_end <= PAGE_RECORDS) return;
  open.scroll_page = current_position - 1;
  open.page_end = PageEndOf(open.scroll_page);
  ShowCurrentView(ctx);
}

void ScrollThumbReleased(AppContext& ctx, std::int32_t position) {
  ctx.open.scroll_page = position;
  ctx.stream.thumb_moved = 1;
}

void ScrollEnded(AppContext& ctx) {
  if (!ctx.stream.thumb_moved) return;
  ctx.stream.thumb_moved = 0;
  OpenFileState& open = ctx.open;
  if (ctx.stream.hex_mode == 1) {
    open.page_end = PageEndOf(open.scroll_page);
    ShowRecordHex(ctx, false);
    return;
  }
  // The threshold is 16 pages, not 1.
  open.page_end = open.scroll_page > 16 ? PageEndOf(open.scroll_page) : PAGE_RECORDS;
  ListPage(ctx, open.page_end - PAGE_RECORDS, open.page_end);
}

void ListPageAfterView(AppContext& ctx) {
  OpenFileState& open = ctx.open;
  if (open.page_end >= PAGE_RECORDS) {
    open.page_end += 1;
    ListPage(ctx, open.page_end - PAGE_RECORDS, open.page_end);
  } else {
    open.page_end = PAGE_RECORDS;
    ListPage(ctx, 0, PAGE_RECORDS);
  }
}

std::uint32_t RecordNumberOfLine(std::string_view line) {
  constexpr std::size_t kRecordNumberWidth = 6;
  return ParseDecimal(line.substr(0, kRecordNumberWidth));
}

void SelectRecordForHex(AppContext& ctx) {
  OpenFileState& open = ctx.open;
  if (ctx.stream.details_mode == 1) return;
  if (ctx.stream.hex_mode != 0) {
    ctx.stream.hex_mode = 0;
    if (open.file_type == kFileVob) ListPageAfterView(ctx);
    return;
  }
  std::optional<std::string> text = ctx.report.SelectedText();
  if (!text) return;
  open.page_end = RecordNumberOfLine(*text);
  ShowRecordHex(ctx, false);
  ctx.stream.hex_mode = 1;
}

}  // namespace tarvex
