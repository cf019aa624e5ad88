#include "Desktops/Wayland/FileUri.h"

#include <gtest/gtest.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

TEST(FileUri, NamesAFile)
{
    EXPECT_EQ(FindFileOfUri("file:///home/a/Screenshot.png"), "/home/a/Screenshot.png");
    EXPECT_EQ(FindFileOfUri("file://localhost/home/a.png"), "/home/a.png");
    EXPECT_EQ(FindFileOfUri("file:///a%20b/%C3%BC%25.png"), "/a b/\xC3\xBC%.png");
    EXPECT_EQ(FindFileOfUri("file:///a%2fb"), "/a/b");
}

TEST(FileUri, OfAnythingElseIsNone)
{
    for (const char* uri :
         {"", "file://", "file:", "/home/a.png", "http://a/b.png", "file:a.png", "file://other/a.png", "FILE:///a.png",
          "file:///a%", "file:///a%4", "file:///a%4g", "file:///a%-1", "file:///a%00b", "file:///a?b", "file:///a#b"})
        EXPECT_EQ(FindFileOfUri(uri), std::nullopt) << uri;
    EXPECT_EQ(FindFileOfUri(std::string_view("file:///a\0b", 11)), std::nullopt);
}

} // namespace
} // namespace Orvik::Desktops::Wayland
