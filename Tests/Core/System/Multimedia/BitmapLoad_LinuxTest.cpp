#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>

namespace Orvik::System::Multimedia
{
namespace
{

class BitmapLoadLinux : public testing::Test
{
protected:
    const Tests::TemporaryDirectory m_directory;
    Bitmap m_bitmap;
};

// The process can open no file while this lives, whatever its rights.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        getrlimit(RLIMIT_NOFILE, &m_previous);
        rlimit none = m_previous;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { setrlimit(RLIMIT_NOFILE, &m_previous); }
    NoMoreFiles(const NoMoreFiles&) = delete;
    NoMoreFiles& operator=(const NoMoreFiles&) = delete;

private:
    rlimit m_previous{};
};

TEST_F(BitmapLoadLinux, AFileThatCanNotBeOpenedIsRefused)
{
    const std::string png = (m_directory.GetPath() / "a.png").string();
    Tests::WriteBytes(png, Tests::MakePng({}, {0, 1, 2, 3, 4}));
    const std::string bmp = (m_directory.GetPath() / "a.bmp").string();
    ASSERT_TRUE(Bitmap(1, 1, 32).SaveBmp(bmp));
    ASSERT_TRUE(m_bitmap.Load(png));
    ASSERT_TRUE(m_bitmap.Load(bmp));

    const NoMoreFiles limit;
    EXPECT_FALSE(m_bitmap.Load(png));
    EXPECT_FALSE(m_bitmap.Load(bmp));
}

TEST_F(BitmapLoadLinux, APipeThatIsNotWrittenToIsRefusedAtOnce)
{
    const std::string path = (m_directory.GetPath() / "pipe.png").string();
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(m_bitmap.Load(path));
}

} // namespace
} // namespace Orvik::System::Multimedia
