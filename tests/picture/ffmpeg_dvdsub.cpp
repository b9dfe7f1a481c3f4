#include "picture/ffmpeg_dvdsub.h"

#include <png.h>

#include <cstdio>
#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/dict.h>
#include <libavutil/mem.h>
}

namespace tarvex::test {

std::optional<DecodedRect> DecodeWithFfmpeg(const std::vector<std::uint8_t>& unit,
                                            const std::string& palette) {
  const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_DVD_SUBTITLE);
  AVCodecContext* ctx = avcodec_alloc_context3(codec);
  AVDictionary* options = nullptr;
  av_dict_set(&options, "palette", palette.c_str(), 0);
  std::optional<DecodedRect> result;
  if (avcodec_open2(ctx, codec, &options) == 0) {
    AVPacket* packet = av_packet_alloc();
    av_new_packet(packet, static_cast<int>(unit.size()));
    std::memcpy(packet->data, unit.data(), unit.size());
    AVSubtitle sub{};
    int got = 0;
    if (avcodec_decode_subtitle2(ctx, &sub, &got, packet) >= 0 && got && sub.num_rects > 0) {
      const AVSubtitleRect* r = sub.rects[0];
      DecodedRect d{r->x, r->y, r->w, r->h, {}, {}};
      const auto* colours = reinterpret_cast<const std::uint32_t*>(r->data[1]);
      for (int y = 0; y < r->h; ++y) {
        for (int x = 0; x < r->w; ++x) {
          std::uint8_t value = r->data[0][y * r->linesize[0] + x];
          d.index.push_back(value);
          std::uint32_t argb = colours[value];
          d.rgba.insert(
              d.rgba.end(),
              {static_cast<std::uint8_t>(argb >> 16), static_cast<std::uint8_t>(argb >> 8),
               static_cast<std::uint8_t>(argb), static_cast<std::uint8_t>(argb >> 24)});
        }
      }
      result = std::move(d);
    }
    if (got) avsubtitle_free(&sub);
    av_packet_free(&packet);
  }
  av_dict_free(&options);
  avcodec_free_context(&ctx);
  return result;
}

PngImage ReadPng(const std::string& path) {
  PngImage image;
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_file(&png, path.c_str())) return image;
  bool alpha = (png.format & PNG_FORMAT_FLAG_ALPHA) != 0;
  png.format = alpha ? PNG_FORMAT_RGBA : PNG_FORMAT_RGB;
  image.width = png.width;
  image.height = png.height;
  image.channels = alpha ? 4 : 3;
  image.pixels.resize(PNG_IMAGE_SIZE(png));
  if (!png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr)) image = {};
  return image;
}

void WriteBoxesPng(const std::string& path, int width, int height, const std::vector<Box>& boxes) {
  std::vector<std::uint8_t> pixels(std::size_t(width) * height * 4, 0);
  for (const Box& b : boxes) {
    for (int y = b.y; y < b.y + b.h && y < height; ++y) {
      for (int x = b.x; x < b.x + b.w && x < width; ++x) {
        std::uint8_t* p = pixels.data() + (std::size_t(y) * width + x) * 4;
        p[0] = b.r;
        p[1] = b.g;
        p[2] = b.b;
        p[3] = b.a;
      }
    }
  }
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(width);
  png.height = static_cast<png_uint_32>(height);
  png.format = PNG_FORMAT_RGBA;
  png_image_write_to_file(&png, path.c_str(), 0, pixels.data(), 0, nullptr);
}

std::vector<std::vector<std::uint8_t>> SplitUnits(const std::vector<std::uint8_t>& bytes) {
  std::vector<std::vector<std::uint8_t>> units;
  std::size_t at = 0;
  while (at + 2 <= bytes.size()) {
    std::size_t size = (std::size_t{bytes[at]} << 8) | bytes[at + 1];
    if (size < 4 || at + size > bytes.size()) break;
    units.emplace_back(bytes.begin() + static_cast<std::ptrdiff_t>(at),
                       bytes.begin() + static_cast<std::ptrdiff_t>(at + size));
    at += size;
  }
  return units;
}

}  // namespace tarvex::test
