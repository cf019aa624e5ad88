// The tool against a model that states its rules once more: the same random input drives both, and they agree in every
// field after every step.
#include "Tests/Core/Graphics/Tools/ToolFixture.h"
#include "Tests/Support/ToolModel.h"
#include "Tests/Support/ToolPerson.h"

#include <algorithm>
#include <cstring>
#include <iomanip>
#include <iostream>

namespace Orvik::Graphics::Tools
{
namespace
{

using System::Device::Display::DisplayDescriptor;
using Tests::ToolModel;
using Tests::ToolPerson;

constexpr int s_seeds = 20;
constexpr int s_steps = 5000; ///< with each of them

Vector4 MakePoint(double x, double y, double w = 1.0)
{
    return {static_cast<float>(x), static_cast<float>(y), 0.0F, static_cast<float>(w)};
}

Point ToPoint(Tests::Position position)
{
    return {position.x, position.y};
}

std::vector<Point> ToPoints(const std::vector<Tests::Position>& positions)
{
    std::vector<Point> points;
    for (const Tests::Position& position : positions)
        points.push_back(ToPoint(position));
    return points;
}

/// The characters of a text that are drawn: all but its blanks.
std::string WithoutBlanks(std::string text)
{
    std::erase(text, ' ');
    return text;
}

class SnipBenchModel : public ToolFixture
{
protected:
    SnipBenchModel()
    {
        m_tool.findDisplay = [this](std::uint16_t id) -> const DisplayDescriptor*
        {
            const auto display = m_displays.find(id);
            return display != m_displays.end() ? &display->second : nullptr;
        };
    }

    /// Another person, at other displays. What the tool keeps from one run to the next stays.
    void Seed(int seed)
    {
        m_person = ToolPerson(static_cast<std::uint32_t>(seed));
        m_displays.clear();
        m_model.displays = m_person.MakeDisplays();
        for (const auto& [id, display] : m_model.displays)
        {
            DisplayDescriptor& descriptor = m_displays[id];
            descriptor.id = static_cast<std::uint16_t>(id);
            descriptor.x = static_cast<std::int16_t>(display.x);
            descriptor.y = static_cast<std::int16_t>(display.y);
            if (display.host >= 0)
                descriptor.hostDisplayId = static_cast<std::uint16_t>(display.host);
        }
    }

    void StartAnew()
    {
        const ToolModel::Beginning beginning = m_person.MakeBeginning();
        OpenWindow(beginning.windowWidth, beginning.windowHeight);
        const auto bits = static_cast<std::uint8_t>(m_person.IsOnce(2) ? 24 : 32);
        m_picture = MakePicture(static_cast<std::uint16_t>(beginning.captureWidth),
                                static_cast<std::uint16_t>(beginning.captureHeight), bits);
        Start(m_picture.Crop(0, 0, m_picture.GetWidth(), m_picture.GetHeight()), beginning.context, beginning.crops);
        m_model.Start(beginning);
        EXPECT_TRUE(m_tool.SetMode(beginning.isPolygon ? SnipMode::Polygon : SnipMode::Rectangle));
        m_startTime = m_probe.GetStartTime();
    }

    void SetReceiver(ToolModel::Receiver receiver)
    {
        m_deliveries.clear();
        Receive(receiver == ToolModel::Receiver::GoesOn);
        if (receiver == ToolModel::Receiver::None)
            m_tool.onResult = nullptr;
    }

    void Step()
    {
        const ToolModel::Receiver receiver = m_person.MakeReceiver();
        ToolContext context = m_person.MakeInput(m_model);
        std::vector<Point>& moves = Tests::NullDesktop::GetInstance().cursorMoves;
        moves.clear();
        SetReceiver(receiver);
        m_model.Update(context, receiver);
        m_tool.Update(context, m_renderer);

        const bool isMoved = m_model.pointerMove.has_value();
        ASSERT_EQ(moves.size(), isMoved ? 1U : 0U);
        if (isMoved)
        {
            EXPECT_EQ(moves.front(), ToPoint(*m_model.pointerMove));
        }
        CompareDelivery();
    }

    void RunSteps(int seed)
    {
        for (int step = 0; step < s_steps && !HasFailure(); ++step)
        {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            if (m_model.state == ToolModel::State::Inactive && !m_person.IsOnce(4))
                StartAnew();
            Step();
            // A line has no more points than 62, the cursor's included.
            if (m_person.IsOnce(250) || m_model.vertices.size() > 30)
                EndBoth();
            Compare();
            if (step % 100 == 0)
            {
                ComparePixels();
                Tests::GLRecorder::GetInstance().ClearCalls();
            }
        }
    }

    void EndBoth()
    {
        m_model.End();
        m_tool.End(m_renderer);
    }

    void Compare()
    {
        EXPECT_EQ(static_cast<int>(m_tool.GetState()), static_cast<int>(m_model.state));
        EXPECT_EQ(m_tool.GetMode() == SnipMode::Polygon, m_model.isPolygon);
        EXPECT_EQ(m_probe.GetControlFlag(), m_model.controlFlag);
        EXPECT_EQ(m_probe.IsCropping(), m_model.crops);
        EXPECT_EQ(m_probe.GetWindowWidth(), m_model.windowWidth);
        EXPECT_EQ(m_probe.GetWindowHeight(), m_model.windowHeight);
        EXPECT_EQ(m_probe.GetMagnification(), m_model.zoom);
        EXPECT_EQ(m_probe.GetMagnifierSize().width, m_model.side);
        EXPECT_EQ(m_probe.GetMagnifierSize().height, m_model.side);
        EXPECT_EQ(m_probe.GetRegionWidth(), m_model.region);
        EXPECT_EQ(m_probe.GetRegionHeight(), m_model.region);
        EXPECT_EQ(m_probe.GetStartTime(), m_startTime);
        EXPECT_EQ(m_probe.GetCapture().GetWidth(), m_model.captureWidth);
        EXPECT_EQ(m_probe.GetCapture().GetHeight(), m_model.captureHeight);
        EXPECT_EQ(m_probe.GetScale(), 1.0F / static_cast<float>(m_model.shrink));
        EXPECT_EQ(m_probe.GetCursor(), ToPoint(m_model.cursor));
        EXPECT_EQ(m_probe.GetPoints(), ToPoints(m_model.vertices));

        const RectangleModeData& drag = m_probe.GetRectangle();
        EXPECT_EQ((Point{drag.anchorX, drag.anchorY}), ToPoint(m_model.drag.anchor));
        EXPECT_EQ((Point{drag.x, drag.y}), ToPoint(m_model.drag.corner));
        EXPECT_EQ(drag.width, m_model.drag.width);
        EXPECT_EQ(drag.height, m_model.drag.height);

        const bool isActive = m_model.state != ToolModel::State::Inactive;
        for (const std::uint16_t id : m_probe.GetIds())
            EXPECT_EQ(id != 0, isActive);
        EXPECT_EQ(m_probe.GetSizeLabel().GetId(), 0);
        EXPECT_EQ(CountObjects(), isActive ? (std::array<std::size_t, 3>{2, 5, 2}) : (std::array<std::size_t, 3>{}));
        if (isActive)
            CompareObjects();
    }

    void ComparePixels()
    {
        const Bitmap& capture = m_probe.GetCapture();
        ASSERT_EQ(capture.GetSize(), m_picture.GetSize());
        EXPECT_EQ(std::memcmp(capture.GetPixels(), m_picture.GetPixels(), static_cast<std::size_t>(capture.GetSize())),
                  0);
    }

    ToolModel m_model;

private:
    void CompareDelivery()
    {
        ASSERT_EQ(m_deliveries.size(), m_model.delivery.has_value() ? 1U : 0U);
        if (m_deliveries.empty())
            return;
        const Delivery& made = m_deliveries.front();
        const ToolModel::Delivery& wanted = *m_model.delivery;
        EXPECT_EQ(made.startTime, m_startTime);
        EXPECT_EQ(made.capture, &m_probe.GetCapture());
        EXPECT_EQ(made.bounds, (System::Math::Rectangle{wanted.left, wanted.top, wanted.right, wanted.bottom}));
        ASSERT_EQ(made.polygon.has_value(), wanted.ring.has_value());
        if (made.polygon)
        {
            EXPECT_EQ(*made.polygon, ToPoints(*wanted.ring));
        }
        EXPECT_EQ(made.snipWidth, m_model.crops ? wanted.right - wanted.left : 0);
        EXPECT_EQ(made.snipHeight, m_model.crops ? wanted.bottom - wanted.top : 0);
        if (m_model.crops)
        {
            EXPECT_EQ(made.snipPixels, CutPicture(wanted));
        }
    }

    /// 0 beyond the picture's edges.
    [[nodiscard]] std::vector<std::uint8_t> CutPicture(const ToolModel::Delivery& bounds) const
    {
        const std::size_t pixelBytes = m_picture.GetBitsPerPixel() / 8U;
        const auto width = static_cast<std::size_t>(bounds.right - bounds.left);
        const auto height = static_cast<std::size_t>(bounds.bottom - bounds.top);
        std::vector<std::uint8_t> cut(width * height * pixelBytes);
        const auto left = static_cast<std::size_t>(bounds.left);
        const std::size_t inside =
            std::min(width, m_picture.GetWidth() - std::min<std::size_t>(left, m_picture.GetWidth()));
        for (std::size_t row = 0; row < height; ++row)
        {
            const std::size_t y = static_cast<std::size_t>(bounds.top) + row;
            if (y < m_picture.GetHeight())
                std::memcpy(cut.data() + row * width * pixelBytes,
                            m_picture.GetPixels() + y * m_picture.GetStride() + left * pixelBytes, inside * pixelBytes);
        }
        return cut;
    }

    void CompareObjects()
    {
        const auto height = static_cast<float>(m_model.windowHeight);
        const auto width = static_cast<float>(m_model.windowWidth);
        const auto side = static_cast<float>(m_model.side);
        const auto left = static_cast<float>(m_model.magnifier.x);
        const float top = height - static_cast<float>(m_model.magnifier.y);
        const float reduced = 1.0F / static_cast<float>(m_model.shrink);

        const Renderer::Texture& capture = GetTexture(m_probe.GetCaptureTexture());
        EXPECT_EQ(capture.model, Matrix4::ScaleAndTranslation(static_cast<float>(m_model.captureWidth) * reduced,
                                                              static_cast<float>(m_model.captureHeight) * reduced, 1.0F,
                                                              width * 0.5F, height * 0.5F, 0.1F));
        EXPECT_EQ(capture.color, (Vector4{0.5F, 0.5F, 0.5F, 1.0F}));
        const Renderer::Texture& magnifier = GetTexture(m_probe.GetMagnifierTexture());
        EXPECT_EQ(magnifier.model, Matrix4::ScaleAndTranslation(side, side, 1.0F, side * 0.5F + left,
                                                                height - (side * 0.5F + (height - top)), 0.2F));
        EXPECT_EQ(magnifier.color, (Vector4{0.75F, 0.75F, 0.75F, 1.0F}));

        CompareLine(m_probe.GetDividers()[0], {left, top, 0.3F}, {MakePoint(0, -side / 2), MakePoint(side, -side / 2)});
        CompareLine(m_probe.GetDividers()[1], {left, top, 0.3F}, {MakePoint(side / 2, 0), MakePoint(side / 2, -side)});
        const auto cursorX = static_cast<float>(m_model.cursor.x);
        const float cursorY = height - static_cast<float>(m_model.cursor.y);
        CompareLine(m_probe.GetCrosshair()[0], {0, cursorY, 0.4F}, {MakePoint(0, -1), MakePoint(width, -1, 0.4)});
        CompareLine(m_probe.GetCrosshair()[1], {cursorX, 0, 0.4F}, {MakePoint(1, 0), MakePoint(1, height, 0.4)});
        CompareOutline();
        CompareLabels(left, top);
    }

    void CompareLine(std::uint16_t id, std::array<float, 3> place, const std::vector<Vector4>& points)
    {
        const Renderer::Line& line = GetLine(id);
        EXPECT_EQ(line.model, Matrix4::Translation(place[0], place[1], place[2]));
        EXPECT_EQ(line.color, (Vector4{1.0F, 1.0F, 1.0F, 1.0F}));
        EXPECT_EQ(GetPoints(line), points);
    }

    void CompareOutline()
    {
        const Renderer::Line& line = GetOutline();
        Matrix4 place = Matrix4::Translation(static_cast<float>(m_model.outline.place.x),
                                             static_cast<float>(m_model.outline.place.y),
                                             static_cast<float>(m_model.outline.depth));
        if (m_model.outline.isHidden)
            place = Matrix4{{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}};
        EXPECT_EQ(line.model, place);
        EXPECT_EQ(line.color, (Vector4{141 / 255.0F, 65 / 255.0F, 184 / 255.0F, 1.0F}));
        EXPECT_EQ(line.thickness, 1.0F);
        std::vector<Vector4> points;
        for (const auto& [x, y] : m_model.outline.points)
            points.push_back(MakePoint(x, y));
        EXPECT_EQ(GetPoints(line), points);
    }

    void CompareLabels(float left, float top)
    {
        const float size = std::max(static_cast<float>(m_model.margin) * 0.75F, 16.0F);
        const float scale = size / 96.0F;
        const std::uint16_t place = m_probe.GetCoordinatesLabel();
        const std::uint16_t zoom = m_probe.GetZoomLabel();
        EXPECT_EQ(GetDrawnText(place), WithoutBlanks(std::to_string(m_model.shownPosition.x) + "," +
                                                     std::to_string(m_model.shownPosition.y)));
        EXPECT_EQ(GetDrawnText(zoom), "x" + std::to_string(m_model.zoom));
        EXPECT_EQ(GetText(place).model, Matrix4::ScaleAndTranslation(scale, scale, 0.0F, left, top, 1.0F));
        const float width = static_cast<float>(GetText(zoom).width) * scale;
        const float zoomLeft = left + static_cast<float>(m_model.side) - width;
        EXPECT_EQ(GetText(zoom).model, Matrix4::ScaleAndTranslation(scale, scale, 0.0F, zoomLeft, top, 1.0F));
    }

protected:
    ToolPerson m_person{0};

private:
    std::map<int, DisplayDescriptor> m_displays;
    Bitmap m_picture;
    std::int64_t m_startTime = 0;
};

/// `names` one to a line, each with how often it was met.
void PrintVisits(const std::vector<std::string>& names, const std::map<std::string, int>& visits)
{
    for (const std::string& name : names)
    {
        const auto visit = visits.find(name);
        const int count = visit != visits.end() ? visit->second : 0;
        std::cout << std::setw(8) << count << "  " << name << '\n';
        EXPECT_GT(count, 0) << name;
    }
}

TEST_F(SnipBenchModel, TheToolDoesWhatTheModelDoes)
{
    const Tests::AssertionTrap trap;
    for (int seed = 1; seed <= s_seeds && !HasFailure(); ++seed)
    {
        EndBoth();
        Seed(seed);
        StartAnew();
        RunSteps(seed);
    }
    std::cout << s_seeds << " seeds from 1 on, " << s_steps << " steps each. How often it was met:\n";
    PrintVisits(ToolModel::GetTransitions(), m_model.visits);
    PrintVisits(ToolModel::GetEdges(), m_model.visits);
    const std::size_t known = ToolModel::GetTransitions().size() + ToolModel::GetEdges().size();
    EXPECT_EQ(m_model.visits.size(), known) << "The model met something that isn't among the names.";
}

} // namespace
} // namespace Orvik::Graphics::Tools
