#include "Core/System/Multimedia/Bitmap.h"
#include "Tests/Support/ForkedProcess.h"
#include "Tests/Support/PngBuilder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <vector>
#include <zlib.h>

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

/// The most memory that the process has had at once, beyond what it has when this is made.
class Peak
{
public:
    Peak()
    {
        std::ofstream("/proc/self/clear_refs") << "5"; // forgets the peak so far, which may be another test's
        m_before = Read();
    }
    [[nodiscard]] long GetMegabytes() const { return (Read() - m_before) / 1024; }

private:
    [[nodiscard]] static long Read()
    {
        const std::string status = Tests::ReadText("/proc/self/status");
        return std::stol(status.substr(status.find("VmHWM:") + 6));
    }

    long m_before = 0; ///< kilobytes
};

// A few kilobytes unpack to megabytes, each time, and are no part of the picture.
TEST_F(BitmapLoadLinux, TextsOfAPngTakeNoMemory)
{
    constexpr std::size_t unpacked = 7'000'000;
    std::vector<std::uint8_t> letters(unpacked, 'a');
    uLongf packedBytes = compressBound(unpacked);
    Tests::Bytes packed(packedBytes);
    ASSERT_EQ(compress(packed.data(), &packedBytes, letters.data(), letters.size()), Z_OK);
    packed.resize(packedBytes);
    letters = {};
    const Tests::Bytes text =
        Tests::MakePngChunk("zTXt", Tests::Concatenate({{'T', 'i', 't', 'l', 'e', 0, 0}, packed}));
    Tests::Bytes texts;
    for (int count = 0; count < 60; ++count)
        texts.insert(texts.end(), text.begin(), text.end());
    const std::string path = (m_directory.GetPath() / "texts.png").string();
    Tests::WriteBytes(path, Tests::MakePng({}, {0, 1, 2, 3, 4}, texts));

    const Tests::ForkedResult result = Tests::RunForked(
        [&path]
        {
            const Peak peak;
            Bitmap picture;
            if (!picture.Load(path) || picture.GetSize() != 4)
                return 1;
            std::cout << peak.GetMegabytes();
            std::cout.flush();
            return 0;
        });
    ASSERT_EQ(result.exitCode, 0);
    EXPECT_LT(std::stol(result.output), 20) << "megabytes";
}

// A chunk that a fuzzer found: the file ends long before it.
TEST_F(BitmapLoadLinux, AChunkThatClaimsAGigabyteTakesNoMemory)
{
    for (const char* const type : {"zTXt", "iTXt", "pCAL", "sCAL", "eXIf", "iCCP", "sPLT", "abCd"})
    {
        const std::string name(type);
        Tests::Bytes chunk = Tests::MakePngChunk(name, {1, 0, 0, 1, 2, 3});
        chunk[0] = 0x44;
        const std::string path = (m_directory.GetPath() / "chunk.png").string();
        Tests::WriteBytes(path, Tests::MakePng({}, {0, 1, 2, 3, 4}, chunk));
        const Tests::ForkedResult result = Tests::RunForked(
            [&path]
            {
                const Peak peak;
                Bitmap picture;
                const bool isLoaded = picture.Load(path);
                return isLoaded || peak.GetMegabytes() > 20 ? 1 : 0;
            });
        EXPECT_EQ(result.exitCode, 0) << type;
    }
}

TEST_F(BitmapLoadLinux, APipeThatIsNotWrittenToIsRefusedAtOnce)
{
    const std::string path = (m_directory.GetPath() / "pipe.png").string();
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_FALSE(m_bitmap.Load(path));
}

} // namespace
} // namespace Orvik::System::Multimedia
