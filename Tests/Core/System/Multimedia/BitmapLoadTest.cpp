#include "Core/System/Multimedia/Bitmap.h"

#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>

namespace Orvik::System::Multimedia
{
namespace
{

// A picture that loads under any name that is accepted.
class BitmapLoad : public testing::Test
{
protected:
    [[nodiscard]] std::string WritePicture(const std::string& name) const
    {
        const std::filesystem::path path = m_directory.GetPath() / name;
        std::filesystem::create_directories(path.parent_path());
        Tests::WriteBytes(path, Tests::MakePng({}, {0, 1, 2, 3, 4}));
        return path.string();
    }

    const Tests::TemporaryDirectory m_directory;
    Bitmap m_bitmap;
};

// Names without a directory start in the working directory.
class WorkingDirectory
{
public:
    explicit WorkingDirectory(const std::filesystem::path& path) : m_previous(std::filesystem::current_path())
    {
        std::filesystem::current_path(path);
    }
    ~WorkingDirectory()
    {
        std::error_code ignored;
        std::filesystem::current_path(m_previous, ignored);
    }
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

private:
    std::filesystem::path m_previous;
};

TEST_F(BitmapLoad, TheExtensionIsWhatFollowsTheLastDot)
{
    EXPECT_TRUE(m_bitmap.Load(WritePicture("a.bmp.png")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.png.bak")));
}

TEST_F(BitmapLoad, WithoutAnExtensionIsRefused)
{
    EXPECT_FALSE(m_bitmap.Load(WritePicture("picture")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("folder.png/picture")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("picture.")));
    EXPECT_FALSE(m_bitmap.Load(""));

    const WorkingDirectory inside(m_directory.GetPath());
    EXPECT_FALSE(m_bitmap.Load("picture")) << "no dot at all";
}

TEST_F(BitmapLoad, APathThatBeginsWithItsOnlyDotIsRefused)
{
    (void)WritePicture(".png");
    const WorkingDirectory inside(m_directory.GetPath());
    EXPECT_FALSE(m_bitmap.Load(".png"));
    EXPECT_TRUE(m_bitmap.Load("./.png"));
}

TEST_F(BitmapLoad, AnExtensionInCapitalsIsRefused)
{
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.PNG")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.Png")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.BMP")));
}

TEST_F(BitmapLoad, AnotherExtensionIsRefused)
{
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.jpg")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.pngx")));
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.bm")));
}

TEST_F(BitmapLoad, TheExtensionAndNotTheContentChoosesTheFormat)
{
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.bmp")));
}

TEST_F(BitmapLoad, ANameInUtf8IsFound)
{
    EXPECT_TRUE(m_bitmap.Load(WritePicture("\xE7\x94\xBB\xE5\x83\x8F.png")));
}

TEST_F(BitmapLoad, ADirectoryIsRefused)
{
    for (const char* name : {"folder.png", "folder.bmp"})
    {
        std::filesystem::create_directory(m_directory.GetPath() / name);
        EXPECT_FALSE(m_bitmap.Load((m_directory.GetPath() / name).string()));
    }
}

TEST_F(BitmapLoad, ALinkToAPictureIsFollowed)
{
    const std::string target = WritePicture("a.png");
    const std::filesystem::path link = m_directory.GetPath() / "link.png";
    std::error_code error;
    std::filesystem::create_symlink(target, link, error);
    if (error)
        GTEST_SKIP() << "There are no links here.";
    EXPECT_TRUE(m_bitmap.Load(link.string()));
}

TEST_F(BitmapLoad, ARefusedFileLeavesTheBitmapUnchanged)
{
    ASSERT_TRUE(m_bitmap.Load(WritePicture("a.png")));
    const std::uint8_t* pixels = m_bitmap.GetPixels();
    EXPECT_FALSE(m_bitmap.Load(WritePicture("a.jpg")));
    EXPECT_FALSE(m_bitmap.Load((m_directory.GetPath() / "missing.png").string()));
    EXPECT_EQ(m_bitmap.GetPixels(), pixels);
    EXPECT_EQ(m_bitmap.GetSize(), 4);
}

} // namespace
} // namespace Orvik::System::Multimedia
