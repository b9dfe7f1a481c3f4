// The coding headers of elementary streams, on header bytes written out by hand and on the
// sample's title VOB, whose streams samples/README.md describes.
#include "stream/coding_headers.h"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "support/test_support.h"

namespace tarvex {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(CodingHeaders, SequenceHeaderAndExtension) {
  // 0x2D0 x 0x1E0, aspect ratio code 2, frame rate code 4, bit rate 0x2710 (4 Mbit/s).
  Bytes header = {0x00, 0x00, 0x01, 0xB3, 0x2D, 0x01, 0xE0, 0x24, 0x09, 0xC4, 0x23, 0x80};
  SequenceHeader h = ReadSequenceHeader(ByteView(header));
  EXPECT_EQ(h.width, 720u);
  EXPECT_EQ(h.height, 480u);
  EXPECT_EQ(h.aspect_ratio, 2u);
  EXPECT_EQ(h.frame_rate, 4u);
  EXPECT_EQ(h.bit_rate, 10000u);
  EXPECT_EQ(h.vbv_buffer, 112u);
  Bytes extension = {0x00, 0x00, 0x01, 0xB5, 0x14, 0x8A};
  auto e = ReadSequenceExtension(ByteView(extension));
  ASSERT_TRUE(e);
  EXPECT_EQ(e->profile, 4);
  EXPECT_EQ(e->level_byte >> 4, 8);
  EXPECT_TRUE(e->progressive);
  extension[4] = 0x84;  // a picture coding extension (identifier 8)
  EXPECT_FALSE(ReadSequenceExtension(ByteView(extension)));
}

TEST(CodingHeaders, Ac3ChannelsFromAcmodAndLfeon) {
  // Byte 6 on: acmod, then cmixlev (acmod 3, 5, 7), surmixlev (acmod 4-7), dsurmod (acmod 2),
  // then lfeon.
  struct Case {
    std::uint8_t byte6;
    std::uint32_t channels;
    bool lfe;
  };
  for (Case c : {Case{0xE9, 6, true},    // 111 01 00 1: 3/2 with LFE
                 Case{0x40, 2, false},   // 010 00 0: 2/0
                 Case{0x44, 3, true},    // 010 00 1: 2/0 with LFE
                 Case{0x30, 2, true},    // 001 1: 1/0 with LFE
                 Case{0x64, 4, true},    // 011 00 1: 3/0 with LFE
                 Case{0x00, 2, false}})  // 000 0: 1+1 (dual mono)
  {
    Bytes frame = {0x0B, 0x77, 0x12, 0x34, 0x4C, 0x40, c.byte6, 0x00};
    Ac3Frame f = ReadAc3Frame(ByteView(frame));
    EXPECT_TRUE(f.sync);
    EXPECT_EQ(f.fscod, 1);  // 0x4C: fscod 01, frmsizecod 0x0C
    EXPECT_EQ(f.frequency(), 44100u);
    EXPECT_EQ(f.frmsizecod, 0x0C);
    EXPECT_EQ(f.bsid, 8);
    EXPECT_EQ(f.channels(), c.channels) << int{c.byte6};
    EXPECT_EQ(f.lfe, c.lfe) << int{c.byte6};
  }
  EXPECT_FALSE(ReadAc3Frame(ByteView(Bytes{0x0B, 0x78})).sync);
}

TEST(CodingHeaders, LpcmPrivateHeader) {
  // 0xC5: emphasis, mute, frame 5; 0x91: 24 bits, 96 kHz, 2 channels.
  LpcmHeader h = ReadLpcmHeader(ByteView(Bytes{0xA0, 0x01, 0x00, 0x04, 0xC5, 0x91, 0x80}));
  EXPECT_EQ(h.emphasis, 1);
  EXPECT_EQ(h.mute, 1);
  EXPECT_EQ(h.frame_number, 5);
  EXPECT_EQ(h.bits(), 24u);
  EXPECT_EQ(h.frequency(), 96000u);
  EXPECT_EQ(h.channels(), 2u);
  EXPECT_EQ(h.dynamic_range, 0x80);
  // 0x45: 20 bits, 48 kHz, 6 channels; 0xF0: the reserved quantization and frequency codes.
  h = ReadLpcmHeader(ByteView(Bytes{0xA0, 0x01, 0x00, 0x04, 0x00, 0x45, 0x00}));
  EXPECT_EQ(h.bits(), 20u);
  EXPECT_EQ(h.frequency(), 48000u);
  EXPECT_EQ(h.channels(), 6u);
  h = ReadLpcmHeader(ByteView(Bytes{0xA0, 0x01, 0x00, 0x04, 0x00, 0xF0, 0x00}));
  EXPECT_EQ(h.bits(), 0u);
  EXPECT_EQ(h.frequency(), 0u);
}

TEST(CodingHeaders, MpegAudioFrameHeader) {
  // FD: MPEG-1, layer code 2 (layer II), no CRC; 44: bit rate index 4, 48 kHz; C0: mono.
  MpegAudioHeader h = ReadMpegAudioHeader(ByteView(Bytes{0xFF, 0xFD, 0x44, 0xC0}));
  EXPECT_TRUE(h.sync);
  EXPECT_EQ(h.id, 1);
  EXPECT_EQ(h.layer, 2);
  EXPECT_EQ(h.protection, 1);
  EXPECT_EQ(h.bitrate_index, 4);
  EXPECT_EQ(h.frequency(), 48000u);
  EXPECT_EQ(h.channels(), 1u);
  // F5: MPEG-2 at half the rates; 04: 24 kHz; 00: stereo.
  h = ReadMpegAudioHeader(ByteView(Bytes{0xFF, 0xF5, 0x04, 0x00}));
  EXPECT_EQ(h.frequency(), 24000u);
  EXPECT_EQ(h.channels(), 2u);
  EXPECT_FALSE(ReadMpegAudioHeader(ByteView(Bytes{0xFF, 0xE5})).sync);
}

TEST(CodingHeaders, DtsFrameHeader) {
  // After the sync word: FTYPE 1, SHORT 31, CPF 0, NBLKS 15, FSIZE 2012, AMODE 9 (5
  // channels), SFREQ 13 (48 kHz), RATE 15, five flags 0, EXT_AUDIO_ID 0, EXT_AUDIO 0, ASPF 1,
  // LFF 1.
  Bytes frame = {0x7F, 0xFE, 0x80, 0x01, 0xFC, 0x3C, 0x7D, 0xC2, 0x75, 0xE0, 0x0A};
  DtsFrame f = ReadDtsFrame(ByteView(frame));
  EXPECT_TRUE(f.sync);
  EXPECT_EQ(f.amode, 9);
  EXPECT_EQ(f.sfreq, 13);
  EXPECT_EQ(f.lff, 1);
  EXPECT_EQ(f.frequency(), 48000u);
  EXPECT_EQ(f.channels(), 6u);
}

// A pack of one PES packet holding payload (no PES header data), padded to 2048 bytes.
Bytes Pack(std::uint8_t stream, const Bytes& payload) {
  Bytes pack(2048, 0xFF);
  Bytes header = {0x00, 0x00, 0x01, 0xBA, 0x44, 0, 0x04, 0, 0x04, 0x01, 0x01, 0x89, 0xC3, 0xF8};
  std::copy(header.begin(), header.end(), pack.begin());
  std::size_t length = 3 + payload.size();
  Bytes pes = {0x00,
               0x00,
               0x01,
               stream,
               static_cast<std::uint8_t>(length >> 8),
               static_cast<std::uint8_t>(length),
               0x81,
               0x00,
               0x00};
  std::copy(pes.begin(), pes.end(), pack.begin() + 14);
  std::copy(payload.begin(), payload.end(), pack.begin() + 23);
  return pack;
}

TEST(CodingHeaders, FindStreamCodingNeedsACompleteHeader) {
  Bytes header = {0x00, 0x00, 0x01, 0xB3, 0x2D, 0x02, 0x40, 0x33, 0x09, 0xC4, 0x23, 0x80};
  Bytes video = header;
  video.insert(video.end(), {0x00, 0x00, 0x01, 0xB8, 0x00});  // a GOP header: MPEG-1
  auto c = FindStreamCoding(ByteView(Pack(0xE0, video)));
  ASSERT_TRUE(c);
  EXPECT_EQ(c->kind, StreamCoding::Kind::kVideo);
  EXPECT_EQ(c->stream, 0xE0);
  EXPECT_FALSE(c->mpeg2);
  EXPECT_EQ(c->sequence.height, 576u);
  EXPECT_EQ(c->sequence.frame_rate, 3u);
  // Without the start code after it the header may go on in the next pack.
  EXPECT_FALSE(FindStreamCoding(ByteView(Pack(0xE0, header))));
  // An AC-3 pack whose first access unit pointer names bytes beyond the packet.
  EXPECT_FALSE(FindStreamCoding(ByteView(Pack(0xBD, {0x80, 0x01, 0x07, 0xF0}))));
  // An AC-3 frame right after the private header (pointer 1).
  c = FindStreamCoding(ByteView(
      Pack(0xBD, {0x81, 0x01, 0x00, 0x01, 0x0B, 0x77, 0x00, 0x00, 0x1C, 0x40, 0xE9, 0x00})));
  ASSERT_TRUE(c);
  EXPECT_EQ(c->kind, StreamCoding::Kind::kAc3);
  EXPECT_EQ(c->stream, 0x81);
  EXPECT_EQ(c->frequency, 48000u);
  EXPECT_EQ(c->channels, 6u);
  // One MPEG audio frame header and no second one to confirm it.
  EXPECT_FALSE(FindStreamCoding(ByteView(Pack(0xC0, {0xFF, 0xFD, 0x44, 0xC0}))));
  c = FindStreamCoding(
      ByteView(Pack(0xC1, {0xFF, 0xFD, 0x44, 0xC0, 1, 2, 0xFF, 0xFD, 0x46, 0xC4})));
  ASSERT_TRUE(c);
  EXPECT_EQ(c->kind, StreamCoding::Kind::kMpegAudio);
  EXPECT_EQ(c->channels, 1u);
  EXPECT_FALSE(FindStreamCoding(ByteView(Bytes(2048, 0))));
  EXPECT_FALSE(FindStreamCoding(ByteView(Bytes{})));
}

// The sample's title streams (samples/README.md): MPEG-2 video 720x480 at 29.97 frames/s,
// 4:3; AC-3 stereo 48 kHz as 0x80; LPCM 16-bit 48 kHz stereo as 0xA1; MPEG-1 layer II stereo
// 48 kHz as 0xC2.
TEST(CodingHeaders, SampleTitleStreams) {
  Bytes vob =
      test::ReadFileBytes(std::string(TARVEX_SOURCE_DIR) + "/samples/disc/VIDEO_TS/VTS_01_1.VOB");
  std::map<std::uint8_t, StreamCoding> found;
  for (std::size_t at = 0; at + 2048 <= vob.size(); at += 2048) {
    auto c = FindStreamCoding(ByteView(vob.data() + at, 2048));
    if (c && found.count(c->stream) == 0) found[c->stream] = *c;
  }
  ASSERT_EQ(found.size(), 4u);
  const StreamCoding& video = found.at(0xE0);
  EXPECT_TRUE(video.mpeg2);
  EXPECT_EQ(video.sequence.width, 720u);
  EXPECT_EQ(video.sequence.height, 480u);
  EXPECT_EQ(video.sequence.frame_rate, 4u);
  EXPECT_EQ(video.sequence.aspect_ratio, 2u);
  for (std::uint8_t id : {0x80, 0xA1, 0xC2}) {
    EXPECT_EQ(found.at(id).frequency, 48000u) << int{id};
    EXPECT_EQ(found.at(id).channels, 2u) << int{id};
  }
  EXPECT_EQ(found.at(0x80).kind, StreamCoding::Kind::kAc3);
  EXPECT_EQ(found.at(0xA1).kind, StreamCoding::Kind::kLpcm);
  EXPECT_EQ(found.at(0xA1).bits, 16u);
  EXPECT_EQ(found.at(0xC2).kind, StreamCoding::Kind::kMpegAudio);
}

}  // namespace
}  // namespace tarvex
