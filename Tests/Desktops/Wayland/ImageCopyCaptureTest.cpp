// Pictures by ext-image-copy-capture, from a server of the test's own.
#include "Core/System/Time/MonotonicClock.h"
#include "Desktops/Wayland/WaylandDesktop.h"
#include "Tests/Support/EnvironmentVariable.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Wayland/CaptureServer.h"

#include <gtest/gtest.h>
#include <optional>
#include <wayland-client-protocol.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using System::Device::Display::DisplayDescriptor;
using Tests::CaptureServerOptions;
using Tests::FrameAnswer;
using Tests::Picture;

class ImageCopyCaptureTest : public testing::Test
{
protected:
    void Serve(const CaptureServerOptions& options)
    {
        m_server.emplace(m_directory.GetPath().string(), options);
        m_variable.emplace("WAYLAND_DISPLAY", m_server->GetSocket().c_str());
        m_desktop.emplace();
        m_display = m_desktop->ListDisplays().displays.at(0);
        m_context = m_desktop->MakeCaptureContext();
        const DisplayDescriptor& display = m_display;
        ASSERT_TRUE(
            m_context->Initialize({display.x, display.y, display.x + display.width, display.y + display.height}));
    }

    /// What was copied last, without the byte that has no meaning.
    [[nodiscard]] Picture GetPicture() const
    {
        const auto bytes = m_context->GetPixels();
        const auto* const first = reinterpret_cast<const std::uint32_t*>(bytes.data);
        Picture picture{m_display.width, m_display.height, {first, first + bytes.GetSize() / 4}};
        for (std::uint32_t& pixel : picture.pixels)
            pixel |= 0xFF000000U;
        return picture;
    }

    Tests::EnvironmentVariable m_bus{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"};
    Tests::TemporaryDirectory m_directory;
    std::optional<Tests::CaptureServer> m_server;
    std::optional<Tests::EnvironmentVariable> m_variable;
    std::optional<WaylandDesktop> m_desktop;
    DisplayDescriptor m_display;
    std::unique_ptr<PlatformCaptureContext> m_context;
};

struct FormatCase
{
    const char* name;
    std::uint32_t format;
};

class FormatsOfImageCopy : public ImageCopyCaptureTest, public testing::WithParamInterface<FormatCase>
{
};

TEST_P(FormatsOfImageCopy, GivesEachPixel)
{
    Serve({.kinds = {{GetParam().format}}});
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(GetPicture(), m_server->MakePicture(1));
}

INSTANTIATE_TEST_SUITE_P(
    All, FormatsOfImageCopy,
    testing::Values(FormatCase{"XRGB8888", WL_SHM_FORMAT_XRGB8888}, FormatCase{"ARGB8888", WL_SHM_FORMAT_ARGB8888},
                    FormatCase{"XBGR8888", WL_SHM_FORMAT_XBGR8888}, FormatCase{"ABGR8888", WL_SHM_FORMAT_ABGR8888},
                    FormatCase{"RGBX8888", WL_SHM_FORMAT_RGBX8888}, FormatCase{"BGRX8888", WL_SHM_FORMAT_BGRX8888},
                    FormatCase{"XRGB2101010", WL_SHM_FORMAT_XRGB2101010},
                    FormatCase{"XBGR2101010", WL_SHM_FORMAT_XBGR2101010},
                    FormatCase{"ARGB2101010", WL_SHM_FORMAT_ARGB2101010},
                    FormatCase{"ABGR2101010", WL_SHM_FORMAT_ABGR2101010}, FormatCase{"RGB888", WL_SHM_FORMAT_RGB888},
                    FormatCase{"BGR888", WL_SHM_FORMAT_BGR888}),
    [](const auto& parameter) { return parameter.param.name; });

class TransformsOfImageCopy : public ImageCopyCaptureTest, public testing::WithParamInterface<std::uint32_t>
{
};

TEST_P(TransformsOfImageCopy, AreUndone)
{
    Serve({.transform = GetParam()});
    EXPECT_EQ(m_display.width, 64);
    EXPECT_EQ(m_display.height, 48);
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(GetPicture(), m_server->MakePicture(1));
}

INSTANTIATE_TEST_SUITE_P(All, TransformsOfImageCopy, testing::Range(0U, 8U));

TEST_F(ImageCopyCaptureTest, EachPictureIsANewOne)
{
    Serve({});
    for (unsigned count = 1; count <= 3; ++count)
    {
        ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
        EXPECT_EQ(GetPicture(), m_server->MakePicture(count));
    }
}

TEST_F(ImageCopyCaptureTest, OfSeveralFormatsOneThatCanBeReadIsTaken)
{
    Serve({.kinds = {{WL_SHM_FORMAT_C8, WL_SHM_FORMAT_BGR888, WL_SHM_FORMAT_XRGB8888}}});
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(GetPicture(), m_server->MakePicture(1));
}

TEST_F(ImageCopyCaptureTest, FormatsThatCanNotBeReadAreSaid)
{
    Serve({.kinds = {{WL_SHM_FORMAT_C8, WL_SHM_FORMAT_NV12}}});
    EXPECT_EQ(m_context->CopyScreen(), "the compositor makes pictures of no kind that can be read");
}

TEST_F(ImageCopyCaptureTest, ABufferOfAnotherKindIsMadeAnewAsTheCompositorNowWantsIt)
{
    Serve({.kinds = {{WL_SHM_FORMAT_XBGR2101010}, {WL_SHM_FORMAT_XRGB8888}, {WL_SHM_FORMAT_RGB888}},
           .answers = {FrameAnswer::Changed, FrameAnswer::Changed, FrameAnswer::Ready}});
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(GetPicture(), m_server->MakePicture(1));
}

TEST_F(ImageCopyCaptureTest, ACompositorThatChangesItsMindForEverIsGivenUp)
{
    Serve({.kinds = {{WL_SHM_FORMAT_XRGB8888}, {WL_SHM_FORMAT_ARGB8888}}, .answers = {FrameAnswer::Changed}});
    EXPECT_EQ(m_context->CopyScreen(), "the compositor can't make a picture of the display");
}

TEST_F(ImageCopyCaptureTest, ABufferThatIsRefusedWithoutAWordIsAFailure)
{
    Serve({.answers = {FrameAnswer::Outdated, FrameAnswer::Ready}});
    const std::int64_t begin = System::Time::GetMonotonicNanoseconds();
    EXPECT_EQ(m_context->CopyScreen(), "the compositor can't make a picture of the display");
    EXPECT_LT(System::Time::GetMonotonicNanoseconds() - begin, 2'000'000'000);
}

struct FailureCase
{
    const char* name;
    FrameAnswer answer;
    const char* reason;
};

class FailuresOfImageCopy : public ImageCopyCaptureTest, public testing::WithParamInterface<FailureCase>
{
};

TEST_P(FailuresOfImageCopy, AreSaidAndTheNextPictureIsANewOne)
{
    Serve({.answers = {FrameAnswer::Ready, GetParam().answer, FrameAnswer::Ready}});
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(m_context->CopyScreen(), GetParam().reason);
    ASSERT_EQ(m_context->CopyScreen(), std::nullopt);
    EXPECT_EQ(GetPicture(), m_server->MakePicture(2));
}

INSTANTIATE_TEST_SUITE_P(
    All, FailuresOfImageCopy,
    testing::Values(FailureCase{"Stopped", FrameAnswer::Stopped,
                                "the compositor has ended the capture of the display; it may be unplugged"},
                    FailureCase{"StoppedSession", FrameAnswer::StoppedSession,
                                "the compositor has ended the capture of the display; it may be unplugged"},
                    FailureCase{"Unknown", FrameAnswer::Unknown, "the compositor can't make a picture of the display"},
                    FailureCase{"None", FrameAnswer::None,
                                "the compositor makes no picture of the display; it may be switched off"}),
    [](const auto& parameter) { return parameter.param.name; });

TEST_F(ImageCopyCaptureTest, ARefusedSessionIsAFailure)
{
    Serve({.refusesSessions = true});
    EXPECT_EQ(m_context->CopyScreen(), "the compositor refuses the picture of the display");
}

TEST_F(ImageCopyCaptureTest, ASilentSessionIsGivenUp)
{
    Serve({.answersSessions = false});
    EXPECT_EQ(m_context->CopyScreen(), "the compositor doesn't answer");
}

TEST_F(ImageCopyCaptureTest, APictureOfAnotherSizeIsRefused)
{
    Serve({.frameWidth = 60});
    EXPECT_EQ(m_context->CopyScreen(), "the picture has 60 x 48 pixels, the display 64 x 48");
}

TEST_F(ImageCopyCaptureTest, WithoutSourcesOfOutputsTheWayIsNotThere)
{
    Serve({.hasSources = false});
    EXPECT_EQ(m_context->CopyScreen(), "The compositor offers no way to take a picture of a display");
}

} // namespace
} // namespace Orvik::Desktops::Wayland
