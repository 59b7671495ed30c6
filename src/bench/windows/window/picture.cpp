#include "bench/windows/window/picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string_view>
#include <vector>

#include "config/text.h"
#include "files/paths.h"
#include "text/joined.h"
#include "text/usage_error.h"
#include "win32/unique_handle.h"

namespace zolvane {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Picture {
  std::uint32_t Width = 0;
  std::uint32_t Height = 0;
  std::vector<std::uint32_t> Pixels;  // from the top left, 0x00RRGGBB
};

using UniqueBitmap = UniqueHandle<HBITMAP, DeleteObject>;
using UniqueContext = UniqueHandle<HDC, DeleteDC>;

BITMAPINFOHEADER HeaderOf(std::uint32_t width, std::int32_t rows) {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof(header);
  header.biWidth = static_cast<LONG>(width);
  header.biHeight = rows;
  header.biPlanes = 1;
  header.biBitCount = 32;
  header.biCompression = BI_RGB;
  return header;
}

// Taken from the window itself, so it works even where nothing is drawn on a screen.
Picture PictureOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  Picture picture{.Width = static_cast<std::uint32_t>(place.right - place.left),
                  .Height = static_cast<std::uint32_t>(place.bottom - place.top),
                  .Pixels = {}};
  BITMAPINFO info{};
  info.bmiHeader = HeaderOf(picture.Width, -static_cast<std::int32_t>(picture.Height));
  void* bits = nullptr;
  const HDC source = GetWindowDC(window);
  const UniqueContext target{CreateCompatibleDC(source)};
  const UniqueBitmap bitmap{CreateDIBSection(source, &info, DIB_RGB_COLORS, &bits, nullptr, 0)};
  const HGDIOBJ before = SelectObject(target.Get(), bitmap.Get());
  BitBlt(target.Get(), 0, 0, static_cast<int>(picture.Width), static_cast<int>(picture.Height), source, 0, 0,
         SRCCOPY);
  GdiFlush();
  const auto* const pixels = static_cast<const std::uint32_t*>(bits);
  picture.Pixels.assign(pixels, pixels + std::size_t{picture.Width} * picture.Height);
  SelectObject(target.Get(), before);
  ReleaseDC(window, source);
  return picture;
}

// ---- BMP

template <class Header>
void Append(Bytes& bytes, const Header& header) {
  const auto* const first = reinterpret_cast<const std::uint8_t*>(&header);
  bytes.insert(bytes.end(), first, first + sizeof(header));
}

Bytes BmpOf(const Picture& picture) {
  BITMAPFILEHEADER file{};
  file.bfType = 0x4D42;  // "BM"
  file.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
  file.bfSize = static_cast<DWORD>(file.bfOffBits + picture.Pixels.size() * sizeof(std::uint32_t));
  Bytes bytes;
  Append(bytes, file);
  Append(bytes, HeaderOf(picture.Width, -static_cast<std::int32_t>(picture.Height)));
  for (const auto pixel : picture.Pixels) {
    Append(bytes, pixel);
  }
  return bytes;
}

// ---- PNG, with its data not compressed: pictures of windows are small

void AppendNumber(Bytes& bytes, std::uint32_t number) {
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
}

std::uint32_t Checksum(const std::uint8_t* first, const std::uint8_t* last) {
  constexpr std::uint32_t polynomial = 0xEDB88320;
  std::uint32_t sum = 0xFFFFFFFF;
  for (; first != last; ++first) {
    sum ^= *first;
    for (int bit = 0; bit < 8; ++bit) {
      sum = (sum >> 1) ^ ((sum & 1) != 0 ? polynomial : 0);
    }
  }
  return ~sum;
}

void AppendChunk(Bytes& png, std::string_view name, const Bytes& content) {
  AppendNumber(png, static_cast<std::uint32_t>(content.size()));
  const auto begin = png.size();
  png.insert(png.end(), name.begin(), name.end());
  png.insert(png.end(), content.begin(), content.end());
  AppendNumber(png, Checksum(png.data() + begin, png.data() + png.size()));
}

// A row is the number of its filter, 0 for none, followed by its pixels.
Bytes RowsOf(const Picture& picture) {
  Bytes rows;
  for (std::size_t at = 0; at < picture.Pixels.size(); ++at) {
    if (at % picture.Width == 0) {
      rows.push_back(0);
    }
    for (const unsigned shift : {16U, 8U, 0U}) {
      rows.push_back(static_cast<std::uint8_t>(picture.Pixels[at] >> shift));
    }
  }
  return rows;
}

std::uint32_t AdlerSum(const Bytes& bytes) {
  constexpr std::uint32_t base = 65521;
  std::uint32_t low = 1;
  std::uint32_t high = 0;
  for (const auto byte : bytes) {
    low = (low + byte) % base;
    high = (high + low) % base;
  }
  return (high << 16) | low;
}

// Stored blocks, each with its length and the length's complement.
Bytes Stored(const Bytes& content) {
  constexpr std::size_t largestBlock = 65535;
  Bytes stream{0x78, 0x01};
  for (std::size_t at = 0; at < content.size(); at += largestBlock) {
    const std::size_t length = std::min(largestBlock, content.size() - at);
    stream.push_back(at + length == content.size() ? 1 : 0);
    for (const std::size_t number : {length, ~length}) {
      stream.push_back(static_cast<std::uint8_t>(number));
      stream.push_back(static_cast<std::uint8_t>(number >> 8));
    }
    const auto first = content.begin() + static_cast<std::ptrdiff_t>(at);
    stream.insert(stream.end(), first, first + static_cast<std::ptrdiff_t>(length));
  }
  AppendNumber(stream, AdlerSum(content));
  return stream;
}

Bytes PngOf(const Picture& picture) {
  constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  constexpr std::array<std::uint8_t, 5> eightBitColours{8, 2, 0, 0, 0};
  Bytes header;
  AppendNumber(header, picture.Width);
  AppendNumber(header, picture.Height);
  header.insert(header.end(), eightBitColours.begin(), eightBitColours.end());
  Bytes png{signature.begin(), signature.end()};
  AppendChunk(png, "IHDR", header);
  AppendChunk(png, "IDAT", Stored(RowsOf(picture)));
  AppendChunk(png, "IEND", {});
  return png;
}

bool IsBmp(std::string_view file) {
  constexpr std::string_view ending = ".bmp";
  return file.size() >= ending.size() && EqualIgnoringCase(file.substr(file.size() - ending.size()), ending);
}

}  // namespace

void SavePicture(HWND window, const std::string& file) {
  const Picture picture = PictureOf(window);
  const Bytes bytes = IsBmp(file) ? BmpOf(picture) : PngOf(picture);
  std::ofstream stream{PathOf(file), std::ios::binary};
  stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!stream.flush()) {
    throw UsageError{Joined("the picture ", file, " cannot be written")};
  }
}

}  // namespace zolvane
