// The pictures that HestrionBench takes of its window.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "windows/bench/hestrion_windows.h"
#include "windows/support/program_folder.h"

namespace zolvane {
namespace {

using HestrionPicture = HestrionWindows;

struct Bitmap {
  int Width = 0;
  int Height = 0;
  std::vector<std::uint32_t> Pixels;

  std::uint32_t At(int x, int y) const {
    return Pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(Width) +
                     static_cast<std::size_t>(x)) &
           0xFFFFFF;
  }

  std::size_t ColoursIn(const RECT& area) const {
    std::set<std::uint32_t> colours;
    for (int y = area.top; y < area.bottom; ++y) {
      for (int x = area.left; x < area.right; ++x) {
        colours.insert(At(x, y));
      }
    }
    return colours.size();
  }
};

// A picture says in its header how long it is.
bool IsWholeBitmap(const std::string& bytes) {
  BITMAPFILEHEADER file{};
  if (bytes.size() < sizeof(file)) {
    return false;
  }
  std::memcpy(&file, bytes.data(), sizeof(file));
  return bytes.size() == file.bfSize;
}

// As the program writes them: 32 bits, from the top.
Bitmap BitmapIn(const std::string& bytes) {
  Bitmap bitmap;
  BITMAPFILEHEADER file{};
  BITMAPINFOHEADER header{};
  if (bytes.size() < sizeof(file) + sizeof(header)) {
    return bitmap;
  }
  std::memcpy(&file, bytes.data(), sizeof(file));
  std::memcpy(&header, bytes.data() + sizeof(file), sizeof(header));
  bitmap.Width = header.biWidth;
  bitmap.Height = -header.biHeight;
  bitmap.Pixels.resize((bytes.size() - file.bfOffBits) / sizeof(std::uint32_t));
  std::memcpy(bitmap.Pixels.data(), bytes.data() + file.bfOffBits,
              bitmap.Pixels.size() * sizeof(std::uint32_t));
  return bitmap;
}

TEST_F(HestrionPicture, APictureShowsTheWindowWithThePageAsItIs) {
  Start({"--screenshot", folder_.File("picture.bmp")}, false);
  const auto file = folder_.File("picture.bmp");
  ASSERT_TRUE(Eventually([&] { return IsWholeBitmap(ContentOf(file)); }));
  const auto picture = BitmapIn(ContentOf(file));
  RECT window{};
  GetWindowRect(Main(), &window);
  ASSERT_EQ(picture.Width, window.right - window.left);
  ASSERT_EQ(picture.Height, window.bottom - window.top);
  ASSERT_EQ(picture.Pixels.size(), static_cast<std::size_t>(picture.Width * picture.Height));
  for (const auto& row : PageLayout()) {
    RECT area{};
    GetWindowRect(Control(row.Id), &area);
    OffsetRect(&area, -window.left, -window.top);
    EXPECT_GE(picture.ColoursIn(area), 2U) << row.Id << ": text on its background";
    if (row.Kind == ControlKind::List) {
      const COLORREF white = GetSysColor(COLOR_WINDOW);
      EXPECT_EQ(picture.At(area.right - 40, (area.top + area.bottom) / 2),
                static_cast<std::uint32_t>(RGB(GetBValue(white), GetGValue(white), GetRValue(white))))
          << row.Id;
    }
  }
}

std::uint32_t BigEndian(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t byte = 0; byte < 4; ++byte) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(at + byte));
  }
  return number;
}

TEST_F(HestrionPicture, APictureWithAnotherNameIsAPngOfTheSameSize) {
  const auto result = RunToItsEnd(HestrionBenchPath(), {"--folder", folder_.Text(), "--screenshot",
                                                        folder_.File("picture.bmp"), "--quit"});
  EXPECT_EQ(result.Status, 0) << result.Errors;
  EXPECT_EQ(RunToItsEnd(HestrionBenchPath(),
                        {"--folder", folder_.Text(), "--screenshot", folder_.File("picture.png"), "--quit"})
                .Status,
            0);
  const auto bitmap = BitmapIn(folder_.Content("picture.bmp"));
  const auto png = folder_.Content("picture.png");
  ASSERT_EQ(png.substr(1, 3), "PNG");
  EXPECT_EQ(BigEndian(png, 16), static_cast<std::uint32_t>(bitmap.Width));
  EXPECT_EQ(BigEndian(png, 20), static_cast<std::uint32_t>(bitmap.Height));
}

}  // namespace
}  // namespace zolvane
