#include "picture/png_file.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace tarvex::picture {

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};

// libpng reports errors through a long jump out of png_write_*: kept in this one function.
bool Encode(std::FILE* file, std::uint32_t width, std::uint32_t height, int channels,
            const std::uint8_t* pixels) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png ? png_create_info_struct(png) : nullptr;
  if (!info) {
    png_destroy_write_struct(&png, nullptr);
    return false;
  }
  if (setjmp(png_jmpbuf(png))) {  // NOLINT: libpng's error path
    png_destroy_write_struct(&png, &info);
    return false;
  }
  png_init_io(png, file);
  // Fastest settings: sub-pictures and menus are flat areas that deflate well unfiltered.
  png_set_compression_level(png, 1);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_set_IHDR(png, info, width, height, 8,
               channels == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  for (std::uint32_t y = 0; y < height; ++y) {
    png_write_row(png, pixels + std::size_t{y} * width * channels);
  }
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  return true;
}

}  // namespace

bool WritePng(const std::string& path, std::uint32_t width, std::uint32_t height, int channels,
              const std::vector<std::uint8_t>& pixels, std::string& error) {
  std::vector<std::uint8_t> empty(4, 0);
  const std::uint8_t* data = pixels.data();
  if (width == 0 || height == 0 || pixels.size() < std::size_t{width} * height * channels) {
    width = height = 1;
    data = empty.data();
  }
  std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wb"));
  if (!file) {
    error = path + ": " + std::strerror(errno);
    return false;
  }
  if (!Encode(file.get(), width, height, channels, data)) {
    error = path + ": the PNG could not be written";
    return false;
  }
  return true;
}

}  // namespace tarvex::picture
