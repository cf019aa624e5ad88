#include "Benchmarks/FunctionRows.h"

#include "Benchmarks/OverlayRig.h"
#include "Core/Graphics/Raster/ColourScale.h"
#include "Core/Graphics/Raster/Glyph.h"
#include "Core/Graphics/Raster/Painter.h"
#include "Core/System/Multimedia/Bitmap.h"
#include "Core/System/Multimedia/PngRowFilter.h"
#include "Tests/Support/SamplePictures.h"

#include <cstdint>
#include <memory>
#include <utility>

namespace Orvik::Benchmarks
{
namespace
{

using Graphics::Raster::PackedColour;
using System::Multimedia::Bitmap;
using Work = std::function<void()>;

struct Size
{
    const char* name;
    std::uint16_t width;
    std::uint16_t height;
};

constexpr int s_shortWorkTimes = 20;
constexpr int s_frameTimes = 5;
constexpr std::uint16_t s_snipWidth = 1280;
constexpr std::uint16_t s_snipHeight = 720;

/// Keeps the compiler from leaving out what nothing asks for.
template <typename T>
void Keep(const T& value)
{
    asm volatile("" : : "r"(&value) : "memory");
}

Work PaintSurface(const Size& size)
{
    struct State
    {
        explicit State(const Size& screen)
            : rig(screen.width, screen.height, true),
              items(rig.MakeItems()),
              pixels(std::size_t{screen.width} * screen.height)
        {
        }

        OverlayRig rig;
        std::vector<Graphics::Raster::Item> items;
        std::vector<PackedColour> pixels;
    };
    const auto state = std::make_shared<State>(size);
    return [state, size]
    {
        Graphics::Raster::Painter(state->items)
            .Paint({0, 0, size.width, size.height}, {state->pixels.data(), size.width, size.width, size.height});
        Keep(state->pixels);
    };
}

/// Work on the overlay, which is made anew for it.
Work WithRig(const Size& size, bool isSelecting, void (*work)(OverlayRig&))
{
    return [rig = std::make_shared<OverlayRig>(size.width, size.height, isSelecting), work] { work(*rig); };
}

Work FindDifferences(const Size& size)
{
    using Items = std::vector<Graphics::Raster::Item>;
    const auto rig = std::make_shared<OverlayRig>(size.width, size.height, true);
    const auto before = std::make_shared<Items>(rig->MakeItems());
    rig->Move();
    const auto after = std::make_shared<Items>(rig->MakeItems());
    return [rig, before, after] { Keep(Graphics::Raster::FindDifferences(*before, *after)); };
}

/// One full row of colours after the other.
Work ScaleColours(const System::Math::Vector4& colour)
{
    const auto picture = std::make_shared<Bitmap>(Tests::MakeSamplePicture("photo", s_snipWidth, s_snipHeight));
    const auto target = std::make_shared<std::vector<PackedColour>>(s_snipWidth);
    return [picture, target, colour]
    {
        const Graphics::Raster::ColourScale scale(colour);
        const auto* const pixels = reinterpret_cast<const PackedColour*>(picture->GetPixels());
        for (std::size_t y = 0; y < s_snipHeight; ++y)
            scale.Apply(pixels + y * s_snipWidth, target->data(), s_snipWidth);
        Keep(*target);
    };
}

std::vector<std::uint8_t> MakeCoverage(std::uint32_t width, std::uint32_t rows)
{
    std::vector<std::uint8_t> coverage;
    for (std::uint32_t index = 0; index < width * rows; ++index)
        coverage.push_back(static_cast<std::uint8_t>(index * 37 % 256));
    return coverage;
}

constexpr std::uint32_t s_glyphWidth = 40;
constexpr std::uint32_t s_glyphRows = 56;

Work MakeGlyphs()
{
    return [coverage = MakeCoverage(s_glyphWidth, s_glyphRows)]
    {
        for (int count = 0; count < 100; ++count)
            Keep(Graphics::Raster::Glyph(s_glyphWidth, s_glyphRows, coverage));
    };
}

Work SumGlyph()
{
    const Graphics::Raster::Glyph glyph(s_glyphWidth, s_glyphRows, MakeCoverage(s_glyphWidth, s_glyphRows));
    return [glyph]
    {
        constexpr float step = 2.3F; // of its pixels to one of the surface
        float sum = 0.0F;
        for (int count = 0; count < 100; ++count)
        {
            for (float top = 0.0F; top < static_cast<float>(s_glyphRows); top += step)
            {
                for (float left = 0.0F; left < static_cast<float>(s_glyphWidth); left += step)
                    sum += glyph.SumCoverage(left, top, left + step, top + step);
            }
        }
        Keep(sum);
    };
}

Work Crop()
{
    const auto picture = std::make_shared<Bitmap>(MakeStripes(3840, 2160));
    return [picture] { Keep(picture->Crop(301, 207, s_snipWidth, s_snipHeight)); };
}

Work FilterRows(const char* name)
{
    const auto picture = std::make_shared<Bitmap>(Tests::MakeSamplePicture(name, s_snipWidth, s_snipHeight));
    return [picture]
    {
        System::Multimedia::PngRowFilter filter(s_snipWidth, s_snipHeight, 3);
        std::vector<std::uint8_t> target(filter.GetStoredBytes() + System::Multimedia::PngRowFilter::Overrun);
        filter.Begin(nullptr);
        for (std::size_t y = 0; y < s_snipHeight; ++y)
            filter.Filter(picture->GetPixels() + y * picture->GetStride(), target.data());
        Keep(target);
    };
}

Work Resize(System::Multimedia::ResizeMethod method)
{
    const auto picture = std::make_shared<Bitmap>(MakeStripes(1920, 1080));
    return [picture, method]
    {
        Bitmap target = picture->Crop(0, 0, picture->GetWidth(), picture->GetHeight());
        target.Resize(s_snipWidth, s_snipHeight, method);
        Keep(target);
    };
}

Work ClearOutsidePolygon()
{
    const auto picture = std::make_shared<Bitmap>(MakeStripes(s_snipWidth, s_snipHeight));
    const std::vector<System::Math::Point> ring = {{640, 5}, {1270, 360}, {900, 715}, {640, 300}, {10, 500}, {640, 5}};
    return [picture, ring] { picture->ClearOutsidePolygon(ring, false); };
}

/// What a label does while the pointer moves.
Work SetText(const Size& size)
{
    const auto rig = std::make_shared<OverlayRig>(size.width, size.height, false);
    std::uint16_t label = 0;
    rig->GetRenderer().GetTextRenderer().Create(label, "0, 0", rig->GetRenderer());
    return [rig, label]
    {
        Graphics::Renderer::TextRenderer& texts = rig->GetRenderer().GetTextRenderer();
        texts.SetText(label, "1234, 1234", rig->GetRenderer());
        texts.SetText(label, "999, 1000", rig->GetRenderer());
    };
}

void AppendOverlayRows(const Size& size, std::vector<FunctionRow>& rows)
{
    const std::string suffix = std::string("/") + size.name;
    const auto addOnRig = [&](const char* name, bool isSelecting, void (*work)(OverlayRig&),
                              int times = s_shortWorkTimes) {
        rows.push_back({name + suffix, [=] { return WithRig(size, isSelecting, work); }, times});
    };

    rows.push_back({"Paint/surface" + suffix, [size] { return PaintSurface(size); }});
    const auto moveAndRender = [](OverlayRig& rig)
    {
        rig.Move();
        rig.Render();
    };
    addOnRig("MoveAndRender/ready", false, moveAndRender, s_frameTimes);
    addOnRig("MoveAndRender/selecting", true, moveAndRender, s_frameTimes);
    addOnRig("Render/unchanged", true, [](OverlayRig& rig) { rig.Render(); });
    addOnRig("Update/move/ready", false, [](OverlayRig& rig) { rig.Move(); });
    addOnRig("Update/move/selecting", true, [](OverlayRig& rig) { rig.Move(); });
    addOnRig("Update/zoom", false, [](OverlayRig& rig) { rig.Zoom(); });
    addOnRig("UpdateMagnifier", false, [](OverlayRig& rig) { rig.GetTool().UpdateMagnifier(rig.GetRenderer()); });
}

} // namespace

std::vector<FunctionRow> MakeFunctionRows()
{
    using System::Multimedia::ResizeMethod;
    static constexpr Size s_full = {"1080p", 1920, 1080};
    static constexpr Size s_large = {"2160p", 3840, 2160};
    std::vector<FunctionRow> rows;
    AppendOverlayRows(s_full, rows);
    AppendOverlayRows(s_large, rows);
    rows.push_back({"SetText", [] { return SetText(s_full); }, s_shortWorkTimes});
    rows.push_back({"FindDifferences", [] { return FindDifferences(s_full); }, s_shortWorkTimes});
    rows.push_back({"ColourScale/even", [] { return ScaleColours({0.5F, 0.5F, 0.5F, 1.0F}); }});
    rows.push_back({"ColourScale/uneven", [] { return ScaleColours({0.3F, 0.5F, 0.7F, 1.0F}); }});
    rows.push_back({"Glyph/make", &MakeGlyphs});
    rows.push_back({"Glyph/SumCoverage", &SumGlyph});
    rows.push_back({"Crop/720p", &Crop});
    rows.push_back({"PngRowFilter/photo", [] { return FilterRows("photo"); }});
    rows.push_back({"PngRowFilter/text", [] { return FilterRows("text"); }});
    rows.push_back({"Resize/Nearest", [] { return Resize(ResizeMethod::Nearest); }});
    rows.push_back({"Resize/Bilinear", [] { return Resize(ResizeMethod::Bilinear); }});
    rows.push_back({"Resize/Box", [] { return Resize(ResizeMethod::Box); }});
    rows.push_back({"ClearOutsidePolygon", &ClearOutsidePolygon});
    return rows;
}

} // namespace Orvik::Benchmarks
