// Files of the option `File` that can't be shown: the run ends before anything else comes up.
#include "Tests/EndToEnd/ProgramTest.h"
#include "Tests/Support/Desktop/Picture.h"

#include <sys/stat.h>

namespace Orvik::Tests
{
namespace
{

constexpr int s_loadFileFailed = 254; // -2 in the low byte

class InputFile : public ProgramTest
{
protected:
    void ExpectRefused(const std::string& name) const
    {
        SCOPED_TRACE(name);
        ExpectOutput(Run({"-s", "true", "-f", name}), s_loadFileFailed, Answer::LoadFileFailed);
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_installation.GetHome()))
            EXPECT_TRUE(entry.is_directory()) << entry.path();
    }

    void ExpectTextRefused(const std::string& name, const std::string& text) const
    {
        WriteText(m_installation.GetWork() / name, text);
        ExpectRefused(name);
    }

    /// A small, good PNG file.
    [[nodiscard]] std::string MakePng() const
    {
        const std::filesystem::path file = m_installation.GetHome() / "good.png";
        SavePng(MakeTestPicture(40, 30), file);
        const std::string text = ReadText(file);
        std::filesystem::remove(file);
        return text;
    }
};

void PutNumber(std::string& text, std::size_t offset, std::uint32_t value, bool isBigEndian)
{
    for (std::size_t i = 0; i < 4; ++i)
        text[offset + i] = static_cast<char>(value >> 8 * (isBigEndian ? 3 - i : i));
}

/// The check sum of a PNG chunk.
std::uint32_t GetCrc(std::string_view bytes)
{
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : bytes)
    {
        crc ^= static_cast<std::uint8_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0);
    }
    return ~crc;
}

/// Another size in the header of a PNG file; its pixels stay.
std::string ResizePng(std::string png, std::uint32_t width, std::uint32_t height)
{
    PutNumber(png, 16, width, true);
    PutNumber(png, 20, height, true);
    PutNumber(png, 29, GetCrc(std::string_view(png).substr(12, 17)), true);
    return png;
}

struct BmpHeader
{
    std::int32_t width = 4;
    std::int32_t height = -4;
    std::uint16_t bitsPerPixel = 32;
    std::uint32_t compression = 0;
};

std::string MakeBmp(const BmpHeader& header)
{
    std::string text(54, '\0');
    text[0] = 'B';
    text[1] = 'M';
    PutNumber(text, 2, 54 + 64, false);
    PutNumber(text, 10, 54, false);
    PutNumber(text, 14, 40, false);
    PutNumber(text, 18, static_cast<std::uint32_t>(header.width), false);
    PutNumber(text, 22, static_cast<std::uint32_t>(header.height), false);
    PutNumber(text, 26, 1U | std::uint32_t{header.bitsPerPixel} << 16, false);
    PutNumber(text, 30, header.compression, false);
    return text + std::string(64, '\x40');
}

TEST_F(InputFile, AMissingFile)
{
    ExpectRefused("missing.png");
    ExpectRefused("missing.bmp");
    ExpectRefused("no/such/directory/picture.png");
    ExpectRefused("missing");
}

TEST_F(InputFile, ADirectory)
{
    std::filesystem::create_directory(m_installation.GetWork() / "directory.png");
    std::filesystem::create_directory(m_installation.GetWork() / "directory.bmp");
    ExpectRefused("directory.png");
    ExpectRefused("directory.bmp");
    ExpectRefused(".");
    ExpectRefused("/");
}

TEST_F(InputFile, AnEmptyFile)
{
    ExpectTextRefused("empty.png", "");
    ExpectTextRefused("empty.bmp", "");
}

TEST_F(InputFile, AForeignFile)
{
    ExpectTextRefused("text.png", "This is no picture.\n");
    ExpectTextRefused("text.bmp", "This is no picture, however long its text may go on and on and on and on.\n");
    ExpectTextRefused("jpeg.png", "\xFF\xD8\xFF\xE0 JFIF");
    ExpectTextRefused("png.bmp", MakePng());
    ExpectTextRefused("bmp.png", MakeBmp({}));
}

TEST_F(InputFile, AnExtensionThatIsNotKnown)
{
    ExpectTextRefused("picture.PNG", MakePng());
    ExpectTextRefused("picture.Png", MakePng());
    ExpectTextRefused("picture.gif", MakePng());
    ExpectTextRefused("picture", MakePng());
    ExpectTextRefused("picture.png.", MakePng());
    ExpectTextRefused(".png", MakePng());
    ExpectTextRefused("picture.BMP", MakeBmp({}));
}

TEST_F(InputFile, ATruncatedPng)
{
    const std::string png = MakePng();
    for (const std::size_t size : {std::size_t{7}, std::size_t{8}, std::size_t{20}, std::size_t{33}, png.size() / 2})
        ExpectTextRefused("truncated.png", png.substr(0, size));
}

TEST_F(InputFile, ADamagedPng)
{
    std::string header = MakePng();
    header[16] = '\x7F';
    ExpectTextRefused("header.png", header);

    std::string pixels = MakePng();
    pixels[pixels.size() / 2] = static_cast<char>(pixels[pixels.size() / 2] ^ 0x55);
    ExpectTextRefused("pixels.png", pixels);
}

TEST_F(InputFile, APngThatClaimsMorePixelsThanCanBe)
{
    ExpectTextRefused("empty.png", ResizePng(MakePng(), 0, 30));
    ExpectTextRefused("wide.png", ResizePng(MakePng(), 16384, 1)); // a row of 65,536 bytes
    ExpectTextRefused("high.png", ResizePng(MakePng(), 1, 65536));
    ExpectTextRefused("large.png", ResizePng(MakePng(), 16383, 65535));
    ExpectTextRefused("larger.png", ResizePng(MakePng(), 0x7FFFFFFF, 0x7FFFFFFF));
}

TEST_F(InputFile, ABmpThatClaimsMorePixelsThanCanBe)
{
    ExpectTextRefused("wide.bmp", MakeBmp({16384, -4}));
    ExpectTextRefused("wider.bmp", MakeBmp({0x7FFFFFFF, -4}));
    ExpectTextRefused("negative.bmp", MakeBmp({-4, -4}));
    ExpectTextRefused("high.bmp", MakeBmp({4, 65536}));
    ExpectTextRefused("higher.bmp", MakeBmp({4, 0x7FFFFFFF}));
    ExpectTextRefused("lowest.bmp", MakeBmp({4, std::numeric_limits<std::int32_t>::min()}));
}

TEST_F(InputFile, ABmpWithoutPixelsToShow)
{
    ExpectTextRefused("narrow.bmp", MakeBmp({0, -4}));
    ExpectTextRefused("low.bmp", MakeBmp({4, 0}));
    for (const std::uint16_t bits : {std::uint16_t{0}, std::uint16_t{1}, std::uint16_t{8}, std::uint16_t{16},
                                     std::uint16_t{48}, std::uint16_t{65535}})
        ExpectTextRefused("bits.bmp", MakeBmp({4, -4, bits}));
    ExpectTextRefused("compressed.bmp", MakeBmp({4, -4, 32, 1}));
    ExpectTextRefused("short.bmp", MakeBmp({}).substr(0, 53));
}

TEST_F(InputFile, ADeviceThatNeverEnds)
{
    std::filesystem::create_symlink("/dev/zero", m_installation.GetWork() / "zero.png");
    std::filesystem::create_symlink("/dev/zero", m_installation.GetWork() / "zero.bmp");
    ExpectRefused("zero.png");
    ExpectRefused("zero.bmp");
}

TEST_F(InputFile, APipeThatIsNotWrittenTo)
{
    ASSERT_EQ(mkfifo((m_installation.GetWork() / "pipe.png").c_str(), 0600), 0);
    ASSERT_EQ(mkfifo((m_installation.GetWork() / "pipe.bmp").c_str(), 0600), 0);
    ExpectRefused("pipe.png");
    ExpectRefused("pipe.bmp");
}

} // namespace
} // namespace Orvik::Tests
