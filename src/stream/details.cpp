#include "stream/details.h"

#include <array>

#include "platform/format.h"
#include "stream/audio_details.h"
#include "stream/hex_view.h"
#include "stream/nav_pack.h"
#include "stream/pes_header.h"
#include "stream/sector_type.h"

namespace tarvex {

void ShowRecordDetails(AppContext& ctx) {
  std::array<std::uint8_t, RECORD_SIZE> buf{};
  const std::uint32_t record_number = ctx.open.page_end;
  const std::int64_t address = RecordFileOffset(ctx, record_number);
  File& file = ctx.open.file_handle;
  file.Seek(address);
  file.Read(buf.data(), buf.size());  // a short read leaves zeros behind the bytes it got
  ctx.ClearReportList();
  ctx.AddReportLine(
      Format("Details display of record %ld at file address %ld", {record_number, address}));

  const ByteView record(buf.data(), buf.size());
  const std::int32_t type = GetSectorType(record, ctx.stream.stream_number);
  switch (type) {
    case kSectorIllegal:
      ShowErrorDump(ctx, "Illegal sector type, no details available!", file.Tell(), type);
      return;
    case kSectorVideo:
      ctx.AddReportLine("  VOB Video Pack Details");
      ctx.AddReportLine(" ");
      ShowVideoPackDetails(ctx, record);
      return;
    case kSectorNavigation:
      ctx.AddReportLine("  VOB Navigations Pack Details");
      ctx.AddReportLine(" ");
      ShowNavPackDetails(ctx, record);
      return;
    case kSectorSubPicture:
      ctx.AddReportLine("  VOB Sub-Picture Pack Details");
      ctx.AddReportLine(" ");
      ShowSubPictureDetails(ctx, record);
      return;
    case kSectorAc3:
      ctx.AddReportLine("  VOB AC3 Audio Pack Details");
      ctx.AddReportLine(" ");
      ShowAudioPackDetails(ctx, record, address);
      return;
    case kSectorDts:
      ctx.AddReportLine("  VOB DTS Audio Pack Details ** NOT SUPPORTED");
      ctx.AddReportLine(" ");
      return;
    case kSectorSdds:
      ctx.AddReportLine("  VOB SDDS Audio Pack Details ** NOT SUPPORTED");
      ctx.AddReportLine(" ");
      return;
    case kSectorLpcm:
      ctx.AddReportLine("  VOB PCM Audio Pack Details");
      ctx.AddReportLine(" ");
      ShowAudioPackDetails(ctx, record, address);
      return;
    case kSectorMpegAudio:
      ctx.AddReportLine("  VOB MPEG Audio Pack Details");
      ctx.AddReportLine(" ");
      ShowAudioPackDetails(ctx, record, address);
      return;
    default:
      return;  // padding (a code above 8): nothing follows the first line
  }
}

}  // namespace tarvex
