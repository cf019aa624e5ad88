// Pictures from real compositors, by the message bus.
#include "Desktops/Wayland/BusCapture.h"
#include "Desktops/Wayland/Session.h"
#include "Tests/Support/Desktop/NestedCompositor.h"
#include "Tests/Support/ForkedProcess.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using Tests::CompositorKind;
using Tests::NestedCompositor;
using Tests::Picture;

constexpr int s_width = 800;
constexpr int s_height = 600;
constexpr int s_barHeight = 40; ///< GNOME's, at most

/// Becomes a program of that session, and of its user: KWin looks who asks.
void Join(const NestedCompositor& compositor)
{
    for (const auto& [name, value] : compositor.GetEnvironment())
        setenv(name.c_str(), value.c_str(), 1);
    const auto user = compositor.GetUser();
    if (!user)
        return;
    if (setgroups(0, nullptr) != 0 || setresgid(user->group, user->group, user->group) != 0 ||
        setresuid(user->user, user->user, user->user) != 0)
        throw std::runtime_error("The user can't be changed.");
    prctl(PR_SET_DUMPABLE, 1); // which a change of the user takes, and with it the sight of the program's path
}

/// Takes pictures of the only output until one satisfies, twenty seconds at the most. The last failure, or nothing.
Failure TakePictures(const std::function<bool(const Picture&)>& isEnough)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::string failure;
    std::shared_ptr<WaylandConnection> connection;
    // A compositor that has just started may take longer than a program waits for it.
    while ((connection = WaylandConnection::Open(failure)) == nullptr)
        if (std::chrono::steady_clock::now() > end)
            return failure;
    Session session(connection);
    if (session.globals.GetOutputs().empty())
        return "no output";
    const Output& output = *session.globals.GetOutputs().front();
    BusCapture capture(session, nullptr);
    SharedMemory memory;
    CaptureTarget target{memory, s_width, s_height};
    if (!memory.Create(target.GetStride() * s_height))
        return "no memory";
    Failure last;
    while (std::chrono::steady_clock::now() < end)
    {
        last = capture.Read(output, target);
        Picture picture{s_width, s_height, std::vector<std::uint32_t>(std::size_t{s_width} * s_height)};
        std::memcpy(picture.pixels.data(), memory.GetBytes(), memory.GetSize());
        for (std::uint32_t& pixel : picture.pixels)
            pixel |= 0xFF000000U;
        if (last || isEnough(picture))
            return last;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return "another picture";
}

/// In a process of its own.
std::string TakePicturesIn(const NestedCompositor& compositor, const std::function<bool(const Picture&)>& isEnough)
{
    const Tests::ForkedResult result = Tests::RunForked(
        [&]
        {
            Join(compositor);
            const Failure failure = TakePictures(isEnough);
            std::cout << failure.value_or("taken") << std::flush;
            return 0;
        });
    return result.output + result.error;
}

std::string MakeDesktopEntry()
{
    return "[Desktop Entry]\nType=Application\nName=Test\nNoDisplay=true\nExec=" +
           std::filesystem::read_symlink("/proc/self/exe").string() +
           "\nX-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2\n";
}

class KWinSession : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = Tests::FindReasonToSkip(CompositorKind::VirtualKWin))
            GTEST_SKIP() << *reason;
        m_compositor.emplace(Tests::CompositorOptions{CompositorKind::VirtualKWin, s_width, s_height, {}});
    }

    std::optional<NestedCompositor> m_compositor;
};

TEST_F(KWinSession, GivesEveryPixelToAProgramWithADesktopEntry)
{
    m_compositor->AddDesktopEntry("test.desktop", MakeDesktopEntry());
    const Picture ground = m_compositor->ShowGround(Tests::MakeTestPicture(s_width, s_height));
    EXPECT_EQ(TakePicturesIn(*m_compositor, [&ground](const Picture& picture) { return picture == ground; }), "taken");
}

TEST_F(KWinSession, GivesNothingToOthersAndThereIsNoPortal)
{
    const std::string answer = TakePicturesIn(*m_compositor, [](const Picture&) { return true; });
    EXPECT_NE(answer.find("KWin gives this program no pictures: install its desktop entry"), std::string::npos)
        << answer;
}

class GnomeSession : public testing::Test
{
protected:
    void SetUp() override
    {
        if (const auto reason = Tests::FindReasonToSkip(CompositorKind::Gnome))
            GTEST_SKIP() << *reason;
        m_compositor.emplace(Tests::CompositorOptions{CompositorKind::Gnome, s_width, s_height, {}});
        m_shown = m_compositor->ShowGround(Tests::MakeTestPicture(s_width, s_height));
    }

    /// What the portal has left in the user's folders.
    [[nodiscard]] std::size_t CountPictures() const
    {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_compositor->GetDirectory() / "home"))
            count += entry.path().extension() == ".png" ? 1 : 0;
        return count;
    }

    std::optional<NestedCompositor> m_compositor;
    Picture m_shown;
};

TEST_F(GnomeSession, GivesEveryPixelWhereTheUserHasAllowedItAndNoFileStays)
{
    m_compositor->AnswerPortal("yes");
    // The bar has a clock, and the screen the desktop's pointer, in its corner.
    const Tests::Area below{0, s_barHeight, s_width, s_height - s_barHeight};
    EXPECT_EQ(TakePicturesIn(*m_compositor,
                             [&](const Picture& picture) { return picture.Crop(below) == m_shown.Crop(below); }),
              "taken");
    EXPECT_EQ(CountPictures(), 0U);
}

TEST_F(GnomeSession, GivesNothingWhereTheUserHasRefusedIt)
{
    m_compositor->AnswerPortal("no");
    const std::string answer = TakePicturesIn(*m_compositor, [](const Picture&) { return true; });
    EXPECT_NE(answer.find("the desktop's portal"), std::string::npos) << answer;
    EXPECT_NE(answer.find("flatpak permission-remove"), std::string::npos) << answer;
}

} // namespace
} // namespace Orvik::Desktops::Wayland
