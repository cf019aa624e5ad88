#include "Core/System/Desktop/CaptureContext.h"

#include "Core/System/Desktop/Window.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/Texts.h"

#include <array>
#include <dwmapi.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace Orvik::System::Device::Display
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> s_calls; ///< what was acquired, copied and released, in order

HDC const s_screen = reinterpret_cast<HDC>(11);
HDC const s_memory = reinterpret_cast<HDC>(12);
HBITMAP const s_bitmap = reinterpret_cast<HBITMAP>(13);
HDESK const s_inputDesktop = reinterpret_cast<HDESK>(14);
std::array<unsigned char, 2 * 3 * 4> s_bits = {};
BITMAPINFO s_info = {};

template <typename Handle>
std::string Describe(Handle handle)
{
    return std::to_string(reinterpret_cast<std::uintptr_t>(handle));
}

void AddDesktopCalls(Tests::ReplacedCalls& calls)
{
    calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int index, void* value, DWORD size, DWORD* needed) -> BOOL
    {
        EXPECT_EQ(index, 6);
        EXPECT_EQ(size, 4U);
        *static_cast<BOOL*>(value) = TRUE;
        *needed = 4;
        return TRUE;
    };
    calls.Of<&::OpenInputDesktop>() = [](DWORD flags, BOOL inherit, ACCESS_MASK access) -> HDESK
    {
        EXPECT_EQ(flags, 0U);
        EXPECT_EQ(inherit, FALSE);
        EXPECT_EQ(access, 256U);
        s_calls.emplace_back("OpenInputDesktop");
        return s_inputDesktop;
    };
    calls.Of<&::SetThreadDesktop>() = [](HDESK desktop) -> BOOL
    {
        s_calls.push_back("SetThreadDesktop " + Describe(desktop));
        return TRUE;
    };
    calls.Of<&::CloseDesktop>() = [](HDESK desktop) -> BOOL
    {
        s_calls.push_back("CloseDesktop " + Describe(desktop));
        return TRUE;
    };
}

void AddDrawingCalls(Tests::ReplacedCalls& calls)
{
    calls.Of<&::GetDC>() = [](HWND window)
    {
        EXPECT_EQ(window, nullptr);
        s_calls.emplace_back("GetDC");
        return s_screen;
    };
    calls.Of<&::ReleaseDC>() = [](HWND, HDC context)
    {
        s_calls.push_back("ReleaseDC " + Describe(context));
        return 1;
    };
    calls.Of<&::CreateDIBSection>() = [](HDC, const BITMAPINFO* info, UINT, void** bits, HANDLE, DWORD)
    {
        s_info = *info;
        *bits = s_bits.data();
        s_calls.emplace_back("CreateDIBSection");
        return s_bitmap;
    };
    calls.Of<&::CreateCompatibleDC>() = [](HDC)
    {
        s_calls.emplace_back("CreateCompatibleDC");
        return s_memory;
    };
    calls.Of<&::SelectObject>() = [](HDC, HGDIOBJ) -> HGDIOBJ
    {
        s_calls.emplace_back("SelectObject");
        return reinterpret_cast<HGDIOBJ>(15);
    };
    calls.Of<&::BitBlt>() = [](HDC, int, int, int, int, HDC, int left, int top, DWORD operation) -> BOOL
    {
        EXPECT_EQ(operation, 0xCC0020U);
        s_calls.push_back("BitBlt from " + std::to_string(left) + " " + std::to_string(top));
        return TRUE;
    };
    calls.Of<&::DeleteObject>() = [](HGDIOBJ object) -> BOOL
    {
        s_calls.push_back("DeleteObject " + Describe(object));
        return TRUE;
    };
    calls.Of<&::DeleteDC>() = [](HDC context) -> BOOL
    {
        s_calls.push_back("DeleteDC " + Describe(context));
        return TRUE;
    };
}

/// A system whose functions work, and write down what is asked of them.
void AddCalls(Tests::ReplacedCalls& calls)
{
    AddDesktopCalls(calls);
    AddDrawingCalls(calls);
}

/// What a failed initialisation has done, and then what its destruction has.
std::vector<std::string> FailToInitialize()
{
    CaptureContext context;
    EXPECT_FALSE(context.Initialize(1, {0, 0, 2, 3}));
    return std::exchange(s_calls, {});
}

class CaptureWithRefusals : public testing::Test
{
protected:
    CaptureWithRefusals()
    {
        s_calls.clear();
        AddCalls(m_calls);
    }

    Tests::ReplacedCalls m_calls;
};

TEST_F(CaptureWithRefusals, AllIsAcquiredOnceAndReleasedOnce)
{
    {
        CaptureContext context;
        ASSERT_TRUE(context.Initialize(1, {-10, -20, -8, -17}));
        EXPECT_THAT(s_calls, ElementsAre("GetDC", "CreateDIBSection", "CreateCompatibleDC", "SelectObject"));
        s_calls.clear();
    }
    EXPECT_THAT(s_calls, ElementsAre("ReleaseDC 11", "DeleteObject 13", "DeleteDC 12"));
    EXPECT_EQ(s_info.bmiHeader.biSize, 40U);
    EXPECT_EQ(s_info.bmiHeader.biWidth, 2);
    EXPECT_EQ(s_info.bmiHeader.biHeight, -3);
    EXPECT_EQ(s_info.bmiHeader.biPlanes, 1);
    EXPECT_EQ(s_info.bmiHeader.biBitCount, 32);
    EXPECT_EQ(s_info.bmiHeader.biCompression, 0U);
    EXPECT_EQ(s_info.bmiHeader.biSizeImage, 24U);
}

TEST_F(CaptureWithRefusals, ACopyComesFromTheRegionsPlaceAndIsTightlyPacked)
{
    CaptureContext context;
    ASSERT_TRUE(context.Initialize(1, {-10, -20, -8, -17}));
    for (std::size_t index = 0; index < s_bits.size(); ++index)
        s_bits[index] = static_cast<unsigned char>(index);
    std::vector<unsigned char> pixels;
    s_calls.clear();
    EXPECT_TRUE(context.Capture(
        [&](std::uint16_t width, std::uint16_t height, std::uint64_t bytes)
        {
            EXPECT_EQ(width, 2);
            EXPECT_EQ(height, 3);
            pixels.resize(bytes);
            return Types::Buffer<unsigned char>{pixels.data(), pixels.size()};
        }));
    EXPECT_THAT(s_calls, ElementsAre("BitBlt from -10 -20"));
    EXPECT_EQ(pixels, std::vector<unsigned char>(s_bits.begin(), s_bits.end()));
}

TEST_F(CaptureWithRefusals, ARefusedCopyIsLoggedAndCallsNoOne)
{
    const Tests::LogRecorder recorder;
    m_calls.Of<&::BitBlt>() = [](HDC, int, int, int, int, HDC, int, int, DWORD) -> BOOL
    {
        SetLastError(ERROR_CANCELLED);
        return FALSE;
    };
    CaptureContext context;
    ASSERT_TRUE(context.Initialize(1, {0, 0, 2, 3}));
    EXPECT_FALSE(context.Capture(
        [](std::uint16_t, std::uint16_t, std::uint64_t)
        {
            ADD_FAILURE();
            return Types::Buffer<unsigned char>();
        }));
    EXPECT_THAT(recorder.GetLines(),
                ElementsAre(Tests::MatchesPattern("System Error: Capture failed: .* \\(4C7\\)\\.")));
}

TEST_F(CaptureWithRefusals, WithoutAScreenThereIsNothingToRelease)
{
    m_calls.Of<&::GetDC>() = [](HWND) -> HDC { return nullptr; };
    EXPECT_THAT(FailToInitialize(), IsEmpty());
    EXPECT_THAT(s_calls, IsEmpty());
}

TEST_F(CaptureWithRefusals, WithoutABitmapTheScreenIsReleasedAndAgainAtTheEnd)
{
    m_calls.Of<&::CreateDIBSection>() = [](HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) -> HBITMAP
    { return nullptr; };
    {
        CaptureContext context;
        EXPECT_FALSE(context.Initialize(1, {0, 0, 2, 3}));
        EXPECT_THAT(s_calls, ElementsAre("GetDC", "ReleaseDC 11"));
        s_calls.clear();
    }
    EXPECT_THAT(s_calls, ElementsAre("ReleaseDC 11"));
}

TEST_F(CaptureWithRefusals, WithoutAMemoryContextScreenAndBitmapAreReleased)
{
    m_calls.Of<&::CreateCompatibleDC>() = [](HDC) -> HDC { return nullptr; };
    CaptureContext context;
    EXPECT_FALSE(context.Initialize(1, {0, 0, 2, 3}));
    EXPECT_THAT(s_calls, ElementsAre("GetDC", "CreateDIBSection", "ReleaseDC 11", "DeleteObject 13"));
}

TEST_F(CaptureWithRefusals, ABitmapThatCannotBeSelectedReleasesAllThree)
{
    m_calls.Of<&::SelectObject>() = [](HDC, HGDIOBJ) -> HGDIOBJ { return nullptr; };
    {
        CaptureContext context;
        EXPECT_FALSE(context.Initialize(1, {0, 0, 2, 3}));
        EXPECT_THAT(s_calls, ElementsAre("GetDC", "CreateDIBSection", "CreateCompatibleDC", "ReleaseDC 11",
                                         "DeleteObject 13", "DeleteDC 12"));
        s_calls.clear();
    }
    EXPECT_THAT(s_calls, ElementsAre("ReleaseDC 11", "DeleteObject 13", "DeleteDC 12"));
}

TEST_F(CaptureWithRefusals, AThreadOnAnotherDesktopMovesToTheOneWithTheInput)
{
    m_calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int, void*, DWORD, DWORD*) -> BOOL { return TRUE; };
    CaptureContext context;
    EXPECT_TRUE(context.Initialize(1, {0, 0, 2, 3}));
    EXPECT_THAT(s_calls, ElementsAre("OpenInputDesktop", "SetThreadDesktop 14", "CloseDesktop 14", "GetDC",
                                     "CreateDIBSection", "CreateCompatibleDC", "SelectObject"));
}

TEST_F(CaptureWithRefusals, ADesktopThatRefusesTheThreadIsClosedAllTheSame)
{
    m_calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int, void*, DWORD, DWORD*) -> BOOL { return TRUE; };
    m_calls.Of<&::SetThreadDesktop>() = [](HDESK) -> BOOL { return FALSE; };
    EXPECT_THAT(FailToInitialize(), ElementsAre("OpenInputDesktop", "CloseDesktop 14"));
}

TEST_F(CaptureWithRefusals, AnInputDesktopThatCannotBeOpenedEndsIt)
{
    m_calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int, void*, DWORD, DWORD*) -> BOOL { return TRUE; };
    m_calls.Of<&::OpenInputDesktop>() = [](DWORD, BOOL, ACCESS_MASK) -> HDESK { return nullptr; };
    EXPECT_THAT(FailToInitialize(), IsEmpty());
}

TEST_F(CaptureWithRefusals, ADesktopThatIsNotKnownEndsItUnlessTheSystemDoesNotKnowTheQuestion)
{
    m_calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int, void*, DWORD, DWORD*) -> BOOL
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    };
    EXPECT_THAT(FailToInitialize(), IsEmpty());
    m_calls.Of<&::GetUserObjectInformationW>() = [](HANDLE, int, void*, DWORD, DWORD*) -> BOOL
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    };
    CaptureContext context;
    EXPECT_TRUE(context.Initialize(1, {0, 0, 2, 3}));
}

TEST_F(CaptureWithRefusals, ARegionWhoseBytesTakeMoreThan32BitsIsRefused)
{
    CaptureContext context;
    EXPECT_FALSE(context.Initialize(1, {0, 0, 65535, 16385}));
    EXPECT_THAT(s_calls, IsEmpty());
    EXPECT_TRUE(context.Initialize(1, {0, 0, 65535, 16384}));
    EXPECT_EQ(s_info.bmiHeader.biSizeImage, 65535U * 16384 * 4);
}

bool s_isOverlayVisible = false; ///< during a copy

/// An overlay that is shown, and a system whose copies look at it.
class CaptureBehindAnOverlay : public CaptureWithRefusals
{
protected:
    CaptureBehindAnOverlay()
    {
        s_overlay = std::make_unique<Desktop::Window>(nullptr, "Orvik::Overlay", Math::Point{0, 0},
                                                      Desktop::WindowSize{400, 300}, Desktop::WindowType::Overlay);
        EXPECT_TRUE(s_overlay->Create());
        s_overlay->Show(s_overlay->Lock());
        m_calls.Of<&::BitBlt>() = [](HDC, int, int, int, int, HDC, int, int, DWORD) -> BOOL
        {
            s_isOverlayVisible = IsWindowVisible(GetHandle()) != FALSE;
            return TRUE;
        };
        m_calls.Of<&::DwmIsCompositionEnabled>() = [](BOOL* isEnabled) -> HRESULT
        {
            *isEnabled = TRUE;
            return S_OK;
        };
        m_calls.Of<&::GetProcAddress>() = [](HMODULE, LPCSTR) -> FARPROC { return nullptr; };
    }
    ~CaptureBehindAnOverlay() override { s_overlay.reset(); }

    static HWND GetHandle() { return reinterpret_cast<HWND>(s_overlay->GetNativeWindow()); }

    /// Whether the overlay is on the screen while the copy is made. It is there afterwards in any case.
    static bool IsVisibleDuringCapture()
    {
        CaptureContext context;
        EXPECT_TRUE(context.Initialize(1, {0, 0, 2, 3}));
        s_isOverlayVisible = false;
        std::array<unsigned char, sizeof(s_bits)> pixels = {};
        EXPECT_TRUE(context.Capture(
            [&pixels](std::uint16_t, std::uint16_t, std::uint64_t) {
                return Types::Buffer<unsigned char>{pixels.data(), pixels.size()};
            }));
        EXPECT_TRUE(IsWindowVisible(GetHandle()));
        return s_isOverlayVisible;
    }

    static inline std::unique_ptr<Desktop::Window> s_overlay;
};

TEST_F(CaptureBehindAnOverlay, AComposedDesktopLeavesItWhereItIs)
{
    EXPECT_TRUE(IsVisibleDuringCapture());
}

TEST_F(CaptureBehindAnOverlay, ADesktopWithoutCompositionTakesItOff)
{
    m_calls.Of<&::DwmIsCompositionEnabled>() = [](BOOL* isEnabled) -> HRESULT
    {
        *isEnabled = FALSE;
        return S_OK;
    };
    EXPECT_FALSE(IsVisibleDuringCapture());
    m_calls.Of<&::DwmIsCompositionEnabled>() = [](BOOL*) -> HRESULT { return E_NOTIMPL; };
    EXPECT_FALSE(IsVisibleDuringCapture());
}

TEST_F(CaptureBehindAnOverlay, WineTakesItOffWhateverItSaysOfItsComposition)
{
    m_calls.Of<&::GetProcAddress>() = [](HMODULE module, LPCSTR name) -> FARPROC
    {
        EXPECT_EQ(module, GetModuleHandleW(L"ntdll.dll"));
        EXPECT_STREQ(name, "wine_get_version");
        return []() -> INT_PTR { return 0; };
    };
    EXPECT_FALSE(IsVisibleDuringCapture());
}

} // namespace
} // namespace Orvik::System::Device::Display
