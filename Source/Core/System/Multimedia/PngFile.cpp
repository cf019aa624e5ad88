// PNG files through libpng, which no other unit uses. The compressed rows of a written file are made elsewhere.

#include "Core/System/Multimedia/Bitmap.h"

#include "Core/System/Multimedia/PngData.h"
#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"

#include <csetjmp>
#include <new>
#include <png.h>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

namespace Orvik::System::Multimedia
{
namespace
{

// libpng compares the first two numbers with its own and refuses to work with another release.
constexpr const char* s_libraryVersion = "1.6.46";

// libpng must not get control back from here.
[[noreturn]] void ReturnToStep(png_structp png, png_const_charp /*message*/)
{
    png_longjmp(png, 1);
}

// A picture that can be read in spite of a flaw is good enough, and the text on standard error wouldn't be read.
void IgnoreWarning(png_structp /*png*/, png_const_charp /*message*/)
{
}

void WriteBytes(png_structp png, png_bytep data, std::size_t bytes)
{
    if (!Text::Write(*static_cast<std::FILE*>(png_get_io_ptr(png)), data, bytes))
        png_error(png, "Write Error");
}

// Runs calls of libpng. False if one of them failed. After a failure libpng jumps back to here without calling
// destructors, so objects with a destructor must be outside of the step.
template <typename Step>
[[nodiscard]] bool RunStep(png_structp png, const Step& step)
{
    static_assert(std::is_trivially_destructible_v<Step>);
    if (setjmp(png_jmpbuf(png)) != 0)
        return false;
    step();
    return true;
}

class Reader
{
public:
    Reader()
        : m_png(png_create_read_struct(s_libraryVersion, nullptr, &ReturnToStep, &IgnoreWarning)),
          m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr)
    {
    }
    ~Reader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    [[nodiscard]] bool IsReady() const { return m_info != nullptr; }
    [[nodiscard]] std::uint32_t GetWidth() const { return png_get_image_width(m_png, m_info); }
    [[nodiscard]] std::uint32_t GetHeight() const { return png_get_image_height(m_png, m_info); }

    [[nodiscard]] bool ReadHeader(std::FILE* file) const;
    [[nodiscard]] bool RequestBgra() const;
    [[nodiscard]] bool ReadRows(std::uint8_t* pixels, std::size_t pixelBytes) const;

private:
    void RequestTransformations() const;

    png_structp m_png;
    png_infop m_info;
};

bool Reader::ReadHeader(std::FILE* file) const
{
    return RunStep(m_png,
                   [this, file]
                   {
                       // Nothing reads chunks beside those of the picture and its transparency, so they are skipped:
                       // libpng clears as much memory as each claims to have, or unpacks it. -1 means all of them.
                       png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
                       png_init_io(m_png, file);
                       png_read_info(m_png, m_info);
                   });
}

bool Reader::RequestBgra() const
{
    return RunStep(m_png, [this] { RequestTransformations(); });
}

// Everything becomes blue, green, red, alpha with 8 bits, except a palette without transparency: it gets no alpha and
// stays at three bytes per pixel.
void Reader::RequestTransformations() const
{
    const png_byte colourType = png_get_color_type(m_png, m_info);
    const png_byte bitDepth = png_get_bit_depth(m_png, m_info);
    if (bitDepth == 16)
        png_set_strip_16(m_png);
    if (colourType == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(m_png);
    if (colourType == PNG_COLOR_TYPE_GRAY && bitDepth < 8)
        png_set_expand_gray_1_2_4_to_8(m_png);
    if (png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0)
        png_set_tRNS_to_alpha(m_png);
    if (colourType == PNG_COLOR_TYPE_GRAY || colourType == PNG_COLOR_TYPE_RGB)
        png_set_filler(m_png, 255, PNG_FILLER_AFTER);
    if (colourType == PNG_COLOR_TYPE_GRAY || colourType == PNG_COLOR_TYPE_GRAY_ALPHA)
        png_set_gray_to_rgb(m_png);
    png_set_bgr(m_png);
    png_set_interlace_handling(m_png);
    png_read_update_info(m_png, m_info);
}

// The rows are stored one after the other in libpng's size of a row, which for a palette without transparency is
// smaller than the bitmap's.
bool Reader::ReadRows(std::uint8_t* pixels, std::size_t pixelBytes) const
{
    const std::size_t rowBytes = png_get_rowbytes(m_png, m_info);
    std::vector<png_bytep> rows(GetHeight());
    if (rowBytes * rows.size() > pixelBytes)
        return false;
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = pixels + row * rowBytes;
    return RunStep(m_png, [this, &rows] { png_read_image(m_png, rows.data()); });
}

class Writer
{
public:
    Writer()
        : m_png(png_create_write_struct(s_libraryVersion, nullptr, &ReturnToStep, &IgnoreWarning)),
          m_info(m_png != nullptr ? png_create_info_struct(m_png) : nullptr)
    {
    }
    ~Writer() { png_destroy_write_struct(&m_png, &m_info); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    [[nodiscard]] bool IsReady() const { return m_info != nullptr; }
    [[nodiscard]] bool Write(std::FILE* file, const Bitmap& bitmap, std::size_t pixelBytes) const;

private:
    [[nodiscard]] bool WriteHeader(std::FILE* file, const Bitmap& bitmap, int colourType) const;
    [[nodiscard]] bool WriteChunk(const char* type, std::span<const std::uint8_t> data) const;

    png_structp m_png;
    png_infop m_info;
};

// Only the rows are compressed in another way, because libpng's takes most of the time of saving a picture.
bool Writer::Write(std::FILE* file, const Bitmap& bitmap, std::size_t pixelBytes) const
{
    if (!WriteHeader(file, bitmap, pixelBytes == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA))
        return false;
    const auto writeData = [this](std::span<const std::uint8_t> data) { return WriteChunk("IDAT", data); };
    return MakePngData(bitmap, pixelBytes, writeData) && WriteChunk("IEND", {});
}

bool Writer::WriteHeader(std::FILE* file, const Bitmap& bitmap, int colourType) const
{
    constexpr int bitDepth = 8;
    return RunStep(m_png,
                   [this, file, &bitmap, colourType]
                   {
                       png_set_write_fn(m_png, file, &WriteBytes, nullptr);
                       png_set_IHDR(m_png, m_info, bitmap.GetWidth(), bitmap.GetHeight(), bitDepth, colourType,
                                    PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
                       png_write_info(m_png, m_info);
                   });
}

bool Writer::WriteChunk(const char* type, std::span<const std::uint8_t> data) const
{
    return RunStep(m_png,
                   [this, type, data]
                   {
                       const auto* const name = reinterpret_cast<png_const_bytep>(type);
                       png_write_chunk(m_png, name, data.data(), data.size());
                   });
}

} // namespace

bool Bitmap::LoadPng(const std::string& path)
{
    const Text::File file = Text::OpenFile(Text::PathFromUtf8(path), "rb");
    if (file == nullptr)
        return false;
    const Reader reader;
    if (!reader.IsReady() || !reader.ReadHeader(file.get()))
        return false;
    constexpr std::uint8_t bitsPerPixel = 32;
    std::optional<Bitmap> picture = MakeForFile(reader.GetWidth(), reader.GetHeight(), bitsPerPixel);
    if (!picture || !reader.RequestBgra())
        return false;
    if (!reader.ReadRows(picture->GetPixels(), static_cast<std::size_t>(picture->GetSize())))
        return false;

    *this = std::move(*picture);
    return true;
}

bool Bitmap::SavePng(const std::string& path) const
{
    const bool isRgb = m_bytesPerPixel == 3;
    const std::size_t writtenRowBytes = std::size_t{m_width} * (isRgb ? 3 : 4);
    if (m_stride < writtenRowBytes)
        return false;

    Text::File file = Text::OpenFile(Text::PathFromUtf8(path), "wb");
    if (file == nullptr)
        return false;
    const Writer writer;
    if (!writer.IsReady())
        return false;
    bool isWritten = false;
    try
    {
        isWritten = writer.Write(file.get(), *this, isRgb ? 3 : 4);
    }
    catch (const std::bad_alloc&) // what was written until then stays
    {
    }
    const bool isClosed = Text::Close(std::move(file));
    return isWritten && isClosed;
}

} // namespace Orvik::System::Multimedia
