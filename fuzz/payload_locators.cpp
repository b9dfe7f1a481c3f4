// Fuzzes the payload locators and the LPCM parameter reader on arbitrary records: every
// payload they report must lie inside the record once clamped, whatever the header says.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "extract/payload.h"
#include "stream/sector_type.h"

using namespace tarvex;  // NOLINT

namespace {

void Check(ByteView record, std::uint32_t start, std::int32_t length) {
  ByteRange range = PayloadBytes(record.size(), start, length);
  if (range.offset > record.size() || range.size > record.size() - range.offset) std::abort();
  // Touch every byte of the range so that the sanitizers see any read outside.
  volatile std::uint8_t sink = 0;
  for (std::size_t i = 0; i < range.size; ++i) sink = sink ^ record.data()[range.offset + i];
  (void)sink;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Exactly the bytes given (any size) and the same bytes as a 2048-byte record.
  std::vector<std::uint8_t> exact(data, data + size);
  std::vector<std::uint8_t> record(2048, 0);
  for (std::size_t i = 0; i < size && i < record.size(); ++i) record[i] = data[i];
  for (const auto* bytes : {&exact, &record}) {
    ByteView view(bytes->data(), bytes->size());
    AudioPayload audio;
    LocateAudioPayload(view, audio);
    Check(view, audio.start, audio.length);
    if (audio.stream > 7) std::abort();
    LpcmParameters lpcm;
    ReadLpcmParameters(view, lpcm);
    if (lpcm.channels > 8) std::abort();
    VideoPayload video = LocateVideoPayload(view);
    Check(view, video.start, video.length);
    SubPicturePayload sub = LocateSubPicturePayload(view);
    Check(view, sub.start, sub.length);
    std::uint32_t stream_number = 0;
    if (GetSectorType(view, stream_number) > 9) std::abort();
  }
  return 0;
}
