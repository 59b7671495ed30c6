#include "rooms/rooms_picture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "rooms/room_list.h"
#include "support/golden.h"

namespace zolvane {
namespace {

const std::filesystem::path documents = std::filesystem::path{ZOLVANE_SOURCE_PATH} / "docs";

TEST(RoomsPicture, ShowsTheRoomsOfTheList) {
  ExpectKept(documents / "architecture.svg", RoomsPicture(Rooms()));
}

TEST(RoomsTable, StandsInTheDocument) {
  constexpr std::string_view begin = "<!-- rooms -->\n";
  constexpr std::string_view end = "<!-- end of rooms -->";
  auto text = BytesOf(documents / "architecture.md");
  const auto first = text.find(begin);
  const auto last = text.find(end);
  ASSERT_TRUE(first != std::string::npos && last != std::string::npos);
  text.replace(first + begin.size(), last - first - begin.size(), RoomsTable(Rooms()));
  ExpectKept(documents / "architecture.md", text);
}

}  // namespace
}  // namespace zolvane
