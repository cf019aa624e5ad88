#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

struct FT_LibraryRec_;
struct FT_FaceRec_;

namespace Orvik::Graphics::Renderer
{

/// A character as FreeType draws it. Pixels, except `advance`.
struct GlyphBitmap
{
    std::uint32_t width = 0;
    std::uint32_t rows = 0;
    std::int32_t left = 0;              ///< from the pen to the bitmap's left edge
    std::int32_t top = 0;               ///< from the pen's line up to the bitmap's top edge
    std::uint32_t advance = 0;          ///< 1/64 pixel
    std::vector<std::uint8_t> coverage; ///< `rows` rows from the top, without padding
};

/// An open font. No other unit uses FreeType.
class FontFile
{
public:
    /// Starts FreeType. False if that fails; nothing is logged.
    [[nodiscard]] bool InitializeLibrary();

    /// Opens the first face of a file. False if it can't be read, is longer than 16 MiB or isn't a font; nothing is
    /// logged, and an open face stays. `path` is UTF-8. Needs the library.
    [[nodiscard]] bool Open(const std::filesystem::path& path, std::uint32_t pixelSize);

    /// Empty if the font can't give that character as a picture of coverages. Needs an open face.
    [[nodiscard]] std::optional<GlyphBitmap> Render(std::uint32_t character) const;

private:
    struct LibraryDeleter
    {
        void operator()(FT_LibraryRec_* library) const;
    };
    struct FaceDeleter
    {
        void operator()(FT_FaceRec_* face) const;
    };

    std::unique_ptr<FT_LibraryRec_, LibraryDeleter> m_library;
    std::vector<std::uint8_t> m_bytes;                ///< the file's, which the face reads from
    std::unique_ptr<FT_FaceRec_, FaceDeleter> m_face; ///< goes before the library and the bytes
};

} // namespace Orvik::Graphics::Renderer
