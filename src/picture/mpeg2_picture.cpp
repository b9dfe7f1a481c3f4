#include "picture/mpeg2_picture.h"

#include <memory>

#include "picture/colour.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

namespace tarvex::picture {

namespace {

struct ContextFree {
  void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct ParserFree {
  void operator()(AVCodecParserContext* p) const { av_parser_close(p); }
};
struct FrameFree {
  void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct PacketFree {
  void operator()(AVPacket* p) const { av_packet_free(&p); }
};

// A planar 4:2:0 frame (the MPEG-2 of DVD-Video) in RGB; each chroma sample serves 2 x 2 pixels.
RgbImage ToRgb(const AVFrame& f) {
  RgbImage image{static_cast<std::uint32_t>(f.width), static_cast<std::uint32_t>(f.height), {}};
  image.rgb.resize(std::size_t{image.width} * image.height * 3);
  for (int y = 0; y < f.height; ++y) {
    const std::uint8_t* luma = f.data[0] + std::ptrdiff_t{y} * f.linesize[0];
    const std::uint8_t* cb = f.data[1] + std::ptrdiff_t{y / 2} * f.linesize[1];
    const std::uint8_t* cr = f.data[2] + std::ptrdiff_t{y / 2} * f.linesize[2];
    for (int x = 0; x < f.width; ++x) {
      Rgb c = YCrCbToRgb(luma[x], cr[x / 2], cb[x / 2]);
      std::uint8_t* out = image.rgb.data() + (std::size_t(y) * image.width + x) * 3;
      out[0] = c.r;
      out[1] = c.g;
      out[2] = c.b;
    }
  }
  return image;
}

// Sends one packet (nullptr: the end) and takes the first frame out, if one is ready.
std::optional<RgbImage> Step(AVCodecContext* ctx, AVPacket* packet, AVFrame* frame) {
  if (avcodec_send_packet(ctx, packet) < 0 && packet) return std::nullopt;
  if (avcodec_receive_frame(ctx, frame) != 0) return std::nullopt;
  if (frame->format != AV_PIX_FMT_YUV420P || frame->width <= 0 || frame->height <= 0)
    return std::nullopt;
  return ToRgb(*frame);
}

}  // namespace

std::optional<RgbImage> DecodeFirstPicture(ByteView es) {
  const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_MPEG2VIDEO);
  if (!codec) return std::nullopt;
  std::unique_ptr<AVCodecContext, ContextFree> ctx(avcodec_alloc_context3(codec));
  std::unique_ptr<AVCodecParserContext, ParserFree> parser(av_parser_init(AV_CODEC_ID_MPEG2VIDEO));
  std::unique_ptr<AVFrame, FrameFree> frame(av_frame_alloc());
  std::unique_ptr<AVPacket, PacketFree> packet(av_packet_alloc());
  if (!ctx || !parser || !frame || !packet || avcodec_open2(ctx.get(), codec, nullptr) < 0)
    return std::nullopt;
  // The parser wants padding after its input: the stream is copied into a padded buffer.
  std::vector<std::uint8_t> input(es.data(), es.data() + es.size());
  input.resize(es.size() + AV_INPUT_BUFFER_PADDING_SIZE, 0);
  std::size_t at = 0;
  while (at <= es.size()) {
    std::uint8_t* out = nullptr;
    int out_size = 0;
    int used =
        av_parser_parse2(parser.get(), ctx.get(), &out, &out_size, input.data() + at,
                         static_cast<int>(es.size() - at), AV_NOPTS_VALUE, AV_NOPTS_VALUE, 0);
    if (used < 0) break;
    at += static_cast<std::size_t>(used);
    if (out_size > 0) {
      packet->data = out;
      packet->size = out_size;
      if (auto image = Step(ctx.get(), packet.get(), frame.get())) return image;
    }
    if (at == es.size() && out_size == 0) break;
  }
  return Step(ctx.get(), nullptr, frame.get());
}

}  // namespace tarvex::picture
