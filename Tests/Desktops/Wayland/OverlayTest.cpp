// What the overlay shows on a display, by reading the display back.
#include "Tests/Desktops/Wayland/CompositorFixture.h"

#include "Desktops/OpenGL.h"

namespace Orvik::Tests
{
namespace
{

using System::Desktop::WindowEventType;
using System::Device::Display::DisplayDescriptor;

struct DisplayCase
{
    std::string name;
    std::string configuration; ///< of the output
    int width;                 ///< pixels, as the user sees them
    int height;
    double scale;
};

void PrintTo(const DisplayCase& value, std::ostream* stream)
{
    *stream << value.name;
}

class OverlayOnWayland : public testing::TestWithParam<DisplayCase>
{
protected:
    void SetUp() override
    {
        if (const auto reason = FindReasonToSkip(CompositorKind::HeadlessSway))
            GTEST_SKIP() << *reason;
        m_desktop.emplace(CompositorOptions{.kind = CompositorKind::HeadlessSway,
                                            .width = 640,
                                            .height = 360,
                                            .configuration = "output HEADLESS-1 " + GetParam().configuration});
    }

    std::optional<CompositorDesktop> m_desktop;
};

TEST_P(OverlayOnWayland, HasAPixelOfItsOwnForEachOfTheDisplay)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    EXPECT_EQ(display.width, GetParam().width);
    EXPECT_EQ(display.height, GetParam().height);
    EXPECT_EQ(display.scaleX, GetParam().scale);
    TestOverlay overlay(display);
    ASSERT_TRUE(overlay.Open());
    const auto noise = MakeNoise(std::size_t{display.width} * display.height, 1);
    ASSERT_TRUE(overlay.Draw(noise, overlay.GetArea()));
    EXPECT_EQ(Capture(m_desktop->Get(), display), noise);
}

TEST_P(OverlayOnWayland, ShowsWhatHasChangedAndKeepsTheRest)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    TestOverlay overlay(display);
    ASSERT_TRUE(overlay.Open());
    auto shown = MakeNoise(std::size_t{display.width} * display.height, 1);
    ASSERT_TRUE(overlay.Draw(shown, overlay.GetArea()));
    for (unsigned frame = 0; frame < 6; ++frame)
    {
        const auto other = MakeNoise(shown.size(), 2 + frame);
        const auto offset = static_cast<std::int32_t>(17 * frame);
        const System::Math::Rectangle area{3 + offset, 5 + offset, 90 + offset, 40 + offset};
        for (std::int32_t row = area.top; row < area.bottom; ++row)
        {
            const auto first = static_cast<std::ptrdiff_t>(row) * display.width + area.left;
            std::copy_n(other.begin() + first, area.right - area.left, shown.begin() + first);
        }
        ASSERT_TRUE(overlay.Draw(other, area));
        ASSERT_EQ(Capture(m_desktop->Get(), display), shown) << frame;
    }
}

TEST_P(OverlayOnWayland, LeavesNothingOnTheDisplay)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    const auto before = Capture(m_desktop->Get(), display);
    ASSERT_FALSE(before.empty());
    const auto noise = MakeNoise(before.size(), 1);
    {
        TestOverlay overlay(display);
        ASSERT_TRUE(overlay.Open());
        EXPECT_EQ(Capture(m_desktop->Get(), display), before) << "It is seen before there is a picture.";
        ASSERT_TRUE(overlay.Draw(noise, overlay.GetArea()));
        ASSERT_EQ(Capture(m_desktop->Get(), display), noise);
        overlay.GetWindow().Hide(overlay.GetWindow().Lock());
        EXPECT_EQ(Capture(m_desktop->Get(), display), before) << "It is seen while it is hidden.";
        overlay.GetWindow().Show(overlay.GetWindow().Lock());
        ASSERT_TRUE(overlay.UpdateUntil([&] { return !overlay.Get(WindowEventType::Resized).empty(); }));
        ASSERT_TRUE(overlay.Draw(noise, overlay.GetArea()));
        EXPECT_EQ(Capture(m_desktop->Get(), display), noise) << "It isn't seen again.";
    }
    EXPECT_EQ(Capture(m_desktop->Get(), display), before);
}

TEST_P(OverlayOnWayland, HidesWhatIsBelowItsPixelsHoweverTheyWereBlended)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    const auto below = Capture(m_desktop->Get(), display);
    TestOverlay overlay(display);
    ASSERT_TRUE(overlay.Open());
    auto drawn = MakeNoise(below.size(), 1);
    auto expected = drawn;
    for (std::size_t index = 0; index < drawn.size(); index += 3)
        drawn[index] = (drawn[index] & 0xFFFFFFU) | 0xC0000000U;
    drawn[5] = 0; // where there is nothing, it shows what is below
    expected[5] = below[5];
    ASSERT_TRUE(overlay.Draw(drawn, overlay.GetArea()));
    EXPECT_EQ(Capture(m_desktop->Get(), display), expected);
}

INSTANTIATE_TEST_SUITE_P(Displays, OverlayOnWayland,
                         testing::Values(DisplayCase{"Plain", "scale 1", 640, 360, 1.0},
                                         DisplayCase{"Quarter", "scale 1.25", 640, 360, 1.25},
                                         DisplayCase{"Half", "scale 1.5", 640, 360, 1.5},
                                         DisplayCase{"ThreeQuarters", "scale 1.75", 640, 360, 1.75},
                                         DisplayCase{"Double", "scale 2", 640, 360, 2.0},
                                         DisplayCase{"Turned", "scale 1 transform 90", 360, 640, 1.0},
                                         DisplayCase{"TurnedBack", "scale 1 transform 270", 360, 640, 1.0},
                                         DisplayCase{"OverHead", "scale 1 transform 180", 640, 360, 1.0},
                                         DisplayCase{"Mirrored", "scale 1 transform flipped", 640, 360, 1.0},
                                         DisplayCase{"MirroredTurned", "scale 1.5 transform flipped-90", 360, 640,
                                                     1.5}),
                         [](const auto& parameter) { return parameter.param.name; });

class OpenGLOnWayland : public OverlayOnWayland
{
};

TEST_P(OpenGLOnWayland, DrawsAPixelForEachOfTheDisplay)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    System::Desktop::Window window(nullptr, "Orvik::Test", {display.x, display.y - 1},
                                   {display.width, display.height + 1U}, System::Desktop::WindowType::Overlay);
    ASSERT_TRUE(window.Create());
    const auto surface = m_desktop->Get().MakeOpenGLSurface();
    const Desktops::OpenGLCreation creation = surface->Create(window.GetNativeWindow(), "Orvik::Test");
    ASSERT_EQ(creation.failure, nullptr);
    EXPECT_FALSE(creation.version.empty());
    window.Show(window.Lock());

    // One corner in another colour, at OpenGL's origin, which is the lower left.
    glClearColor(0.0F, 0.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    const auto setScissor =
        reinterpret_cast<void (*)(GLint, GLint, GLsizei, GLsizei)>(surface->FindFunction("glScissor"));
    ASSERT_NE(setScissor, nullptr);
    setScissor(0, 0, 33, 21);
    glEnable(GL_SCISSOR_TEST);
    glClearColor(1.0F, 0.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    surface->SwapBuffers(window.GetNativeWindow());

    std::vector<std::uint32_t> expected(std::size_t{display.width} * display.height, 0xFF0000FFU);
    for (std::size_t row = display.height - 21U; row < display.height; ++row)
        std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(row * display.width), 33, 0xFFFF0000U);
    EXPECT_EQ(Capture(m_desktop->Get(), display), expected);
    surface->Destroy(window.GetNativeWindow());
}

/// Covers all that is drawn on in white with an alpha of 0.6, by a program of shaders.
void DrawPaleWhite(const Desktops::OpenGLSurface& surface)
{
    const auto find = [&surface](auto& function, const char* name)
    { function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(surface.FindFunction(name)); };
    PFNGLCREATESHADERPROC create = nullptr;
    PFNGLSHADERSOURCEPROC setSource = nullptr;
    PFNGLCOMPILESHADERPROC compile = nullptr;
    PFNGLCREATEPROGRAMPROC createProgram = nullptr;
    PFNGLATTACHSHADERPROC attach = nullptr;
    PFNGLLINKPROGRAMPROC link = nullptr;
    PFNGLUSEPROGRAMPROC use = nullptr;
    PFNGLGENVERTEXARRAYSPROC makeArrays = nullptr;
    PFNGLBINDVERTEXARRAYPROC bindArray = nullptr;
    find(create, "glCreateShader");
    find(setSource, "glShaderSource");
    find(compile, "glCompileShader");
    find(createProgram, "glCreateProgram");
    find(attach, "glAttachShader");
    find(link, "glLinkProgram");
    find(use, "glUseProgram");
    find(makeArrays, "glGenVertexArrays");
    find(bindArray, "glBindVertexArray");

    const std::string corners = "#version 330 core\nvoid main() { gl_Position = vec4(gl_VertexID == 1 ? 3.0 : -1.0,"
                                " gl_VertexID == 2 ? 3.0 : -1.0, 0.0, 1.0); }";
    const std::string white = "#version 330 core\nout vec4 color; void main() { color = vec4(1.0, 1.0, 1.0, 0.6); }";
    const GLuint program = createProgram();
    for (const auto& [kind, text] : {std::pair(GL_VERTEX_SHADER, &corners), std::pair(GL_FRAGMENT_SHADER, &white)})
    {
        const GLuint shader = create(static_cast<GLenum>(kind));
        const char* const source = text->c_str();
        setSource(shader, 1, &source, nullptr);
        compile(shader);
        attach(program, shader);
    }
    link(program);
    use(program);
    GLuint array = 0;
    makeArrays(1, &array);
    bindArray(array);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

TEST_P(OpenGLOnWayland, NothingShinesThroughWhatIsBlendedOverAnOpaquePicture)
{
    const DisplayDescriptor display = m_desktop->GetDisplay(0);
    System::Desktop::Window window(nullptr, "Orvik::Test", {display.x, display.y - 1},
                                   {display.width, display.height + 1U}, System::Desktop::WindowType::Overlay);
    ASSERT_TRUE(window.Create());
    const auto surface = m_desktop->Get().MakeOpenGLSurface();
    ASSERT_EQ(surface->Create(window.GetNativeWindow(), "Orvik::Test").failure, nullptr);
    window.Show(window.Lock());

    // As the program's contexts set it up: the functions are the ones that the surface finds.
    const auto setBlending = reinterpret_cast<PFNGLBLENDFUNCPROC>(surface->FindFunction("glBlendFunc"));
    ASSERT_NE(setBlending, nullptr);
    glEnable(GL_BLEND);
    setBlending(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glClearColor(0.0F, 0.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    DrawPaleWhite(*surface); // 153 of 255
    surface->SwapBuffers(window.GetNativeWindow());

    const std::vector<std::uint32_t> expected(std::size_t{display.width} * display.height, 0xFF9999FFU);
    EXPECT_EQ(Capture(m_desktop->Get(), display), expected);
    surface->Destroy(window.GetNativeWindow());
}

INSTANTIATE_TEST_SUITE_P(Displays, OpenGLOnWayland,
                         testing::Values(DisplayCase{"Plain", "scale 1", 640, 360, 1.0},
                                         DisplayCase{"Half", "scale 1.5", 640, 360, 1.5},
                                         DisplayCase{"Turned", "scale 1 transform 90", 360, 640, 1.0}),
                         [](const auto& parameter) { return parameter.param.name; });

} // namespace
} // namespace Orvik::Tests
