#include "stream/audio_details.h"

#include <array>
#include <cstddef>

#include "platform/format.h"
#include "stream/coding_headers.h"
#include "stream/pack_header.h"
#include "stream/pes_header.h"

namespace tarvex {

namespace {

constexpr std::int32_t kNoRate = -1;      // "none" entries of the MPEG bit-rate tables
constexpr std::int32_t kBadIndex = -2;    // index 15, printed as a rate
constexpr std::size_t kRecordEnd = 2048;  // the frame-sync search stops here

// MPEG audio bit rates in kbit/s by index, one table per layer code (code 1 takes the first
// table, 2 the second, 3 the third; code 0 has none). This crossing of codes and tables is the
// tool's settled mapping.
constexpr std::array<std::int32_t, 16> kRatesLayerI = {
    kNoRate, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, kBadIndex};
constexpr std::array<std::int32_t, 16> kRatesLayerII = {
    kNoRate, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, kBadIndex};
constexpr std::array<std::int32_t, 16> kRatesLayerIII = {
    kNoRate, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, kBadIndex};

std::int32_t MpegBitRate(std::uint32_t layer_code, std::uint32_t index) {
  switch (layer_code) {
    case 1:
      return kRatesLayerI[index & 15];
    case 2:
      return kRatesLayerII[index & 15];
    case 3:
      return kRatesLayerIII[index & 15];
    default:
      return kNoRate;
  }
}

// AC-3 bit rates in kbit/s for frame-size codes 0..37 taken in pairs; codes above give 0.
constexpr std::array<std::int32_t, 19> kAc3Rates = {
    32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 448, 512, 576, 640};

std::int32_t Ac3BitRate(std::uint32_t frame_size_code) {
  std::size_t pair = frame_size_code / 2;
  return pair < kAc3Rates.size() ? kAc3Rates[pair] : 0;
}

std::int32_t Ac3SampleRate(std::uint32_t code) {
  switch (code) {
    case 0:
      return 48;
    case 1:
      return 44;
    case 2:
      return 32;
    default:
      return static_cast<std::int32_t>(code);  // shown as the raw code
  }
}

// The three lines AC-3 and LPCM packs share; returns first_access_unit_pointer.
std::uint32_t ShowPrivateAudioHeader(AppContext& ctx, ByteView record, std::size_t p,
                                     std::int64_t file_address) {
  const std::uint32_t pointer = record.be16(p + 2);
  ctx.AddReportLine(
      Format("    stream_id %x sub_stream_id %x", {ctx.stream.stream_number, record.u8(p)}));
  ctx.AddReportLine(Format("    number_of_frame_headers %d", {record.u8(p + 1)}));
  ctx.AddReportLine(Format("    first_access_unit_pointer %ld At %ld",
                           {pointer, file_address + static_cast<std::int64_t>(p) + 2 + pointer}));
  return pointer;
}

void ShowAc3(AppContext& ctx, ByteView record, std::size_t p, std::int64_t file_address) {
  const std::uint32_t pointer = ShowPrivateAudioHeader(ctx, record, p, file_address);
  if (pointer != 0) {
    CheckAc3Sync(ctx, record.sub(p + 3 + pointer));
  } else {
    ctx.AddReportLine("**** Illegal audio sector offset size of 0");
  }
  ctx.AddReportLine(" ");
}

const char* QuantizationLine(std::uint32_t code) {
  switch (code) {
    case 0:
      return "    quantization_word_length %d, 16 bits";
    case 1:
      return "    quantization_word_length %d, 20 bits";
    case 2:
      return "    quantization_word_length %d, 24 bits";
    default:
      return "    quantization_word_length %d, Illegal";
  }
}

const char* FrequencyLine(std::uint32_t code) {
  switch (code) {
    case 0:
      return "    audio_sameple_frequency %d, 48kHz";
    case 1:
      return "    audio_sameple_frequency %d, 96kHz";
    default:
      return "    audio_sameple_frequency %d, Illegal";
  }
}

const char* ChannelsLine(std::uint32_t code) {
  static constexpr std::array<const char*, 8> kLines = {
      "    number_of_audio_channels %d, 1 channel Mono",
      "    number_of_audio_channels %d, 2 channel Stereo",
      "    number_of_audio_channels %d, 3 channel Multi",
      "    number_of_audio_channels %d, 4 channel Multi",
      "    number_of_audio_channels %d, 5 channel Multi",
      "    number_of_audio_channels %d, 6 channel Multi",
      "    number_of_audio_channels %d, 7 channel Multi",
      "    number_of_audio_channels %d, 8 channel Multi"};
  return kLines[code & 7];
}

void ShowLpcm(AppContext& ctx, ByteView record, std::size_t p, std::int64_t file_address) {
  ShowPrivateAudioHeader(ctx, record, p, file_address);
  const LpcmHeader h = ReadLpcmHeader(record.sub(p));
  ctx.AddReportLine(Format("    audio_emphasis_flag %x", {h.emphasis}));
  ctx.AddReportLine(Format("    audio_mute_flag %x", {h.mute}));
  ctx.AddReportLine(Format("    audio_frame_number %d", {h.frame_number}));
  ctx.AddReportLine(Format(QuantizationLine(h.quantization), {h.quantization}));
  ctx.AddReportLine(Format(FrequencyLine(h.frequency_code), {h.frequency_code}));
  ctx.AddReportLine(Format(ChannelsLine(h.channels_code), {h.channels_code}));
  ctx.AddReportLine(Format("    dynamic_range %d", {h.dynamic_range}));
  ctx.AddReportLine(
      Format("    first sample: %02x%02x %02x%02x",
             {record.u8(p + 7), record.u8(p + 8), record.u8(p + 9), record.u8(p + 10)}));
  ctx.AddReportLine(" ");
}

const char* SampleFrequencyLine(std::uint32_t selector) {
  switch (selector) {
    case 0:
      return "    sample_frequency 44.1K";
    case 1:
      return "    sample_frequency 48K";
    case 2:
      return "    sample_frequency 32K";
    default:
      return "    Illegal sample_frequency selection";
  }
}

void ShowMpegAudio(AppContext& ctx, ByteView record, std::size_t p) {
  ctx.AddReportLine(Format("    stream_id %x ", {ctx.stream.stream_number}));
  // Frame sync: 0xFF and a byte with its upper four bits set. The search stops at the end of
  // the record; the header is then read from there on, where every byte reads as 0.
  std::size_t at = p;
  while (at < kRecordEnd && !(record.u8(at) == 0xFF && (record.u8(at + 1) & 0xF0) == 0xF0)) ++at;
  const MpegAudioHeader h = ReadMpegAudioHeader(record.sub(at));
  ctx.AddReportLine(Format("    ID %x ", {h.id}));
  ctx.AddReportLine(Format("    Layer %x ", {h.layer}));
  ctx.AddReportLine(Format("    Protection bit %x ", {h.protection}));
  ctx.AddReportLine(Format("    Bitrate index %d ", {h.bitrate_index}));
  const std::int32_t rate = MpegBitRate(h.layer, h.bitrate_index);
  if (rate == kNoRate) {
    ctx.AddReportLine("    Illegal audio bit rate index value");
  } else {
    ctx.AddReportLine(Format("    Bitrate %dK", {rate}));
  }
  ctx.AddReportLine(Format("    sample_frequency selector %d ", {h.frequency_index}));
  ctx.AddReportLine(SampleFrequencyLine(h.frequency_index));
  ctx.AddReportLine(" ");
}

}  // namespace

void CheckAc3Sync(AppContext& ctx, ByteView frame) {
  const Ac3Frame f = ReadAc3Frame(frame);
  if (!f.sync) ctx.AddReportLine("**** No Sync Word at offset location in sector");
  ctx.AddReportLine(Format("    Sample rate %dK, Bit rate %dK",
                           {Ac3SampleRate(f.fscod), Ac3BitRate(f.frmsizecod)}));
}

void ShowAudioPackDetails(AppContext& ctx, ByteView record, std::int64_t file_address) {
  ShowPackHeaderLines(ctx, record);
  const std::size_t p = ShowPesHeaderLines(ctx, record, PesMember::kAudio);
  ctx.AddReportLine(" ");
  const std::uint8_t sub_stream = record.u8(p);
  const std::uint32_t stream = ctx.stream.stream_number;
  if (sub_stream >= 0x80 && sub_stream <= 0x87) {
    ShowAc3(ctx, record, p, file_address);
  } else if (sub_stream >= 0xA0 && sub_stream <= 0xA7) {
    ShowLpcm(ctx, record, p, file_address);
  } else if (stream >= 0xC0 && stream <= 0xC7) {
    ShowMpegAudio(ctx, record, p);
  }
}

}  // namespace tarvex
