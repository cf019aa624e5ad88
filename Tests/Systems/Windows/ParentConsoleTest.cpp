#include "Systems/Windows/ParentConsole.h"

#include "Tests/Support/BinaryFile.h"
#include "Tests/Support/ReplacedCalls_Windows.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace Orvik::System::Processes
{
namespace
{

using testing::ElementsAre;

constexpr UINT s_oldPage = 437;
constexpr UINT s_utf8Page = 65001;

/// A standard stream as the process got it.
struct Stream
{
    DWORD type = FILE_TYPE_UNKNOWN;
    bool isConsole = false; ///< it tells those who are attached its mode
};

/// A parent, its console and the streams that it gave.
struct Parent
{
    bool hasConsole = true;
    bool isAttached = false;
    UINT page = s_oldPage;
    bool canSetPage = true;
    std::map<DWORD, Stream> streams;
    std::filesystem::path screen; ///< what stands on the console: one file for each stream
    std::vector<std::FILE*> opened;
    std::vector<std::string> calls;
};
Parent s_parent;

/// Who is attached is given the console's own streams.
HANDLE WINAPI GetStream(DWORD stream)
{
    if (s_parent.isAttached)
        return nullptr;
    return reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(static_cast<std::int32_t>(stream)));
}

Stream FindStream(HANDLE handle)
{
    return s_parent.streams[static_cast<DWORD>(reinterpret_cast<std::intptr_t>(handle))];
}

errno_t Reopen(std::FILE** opened, const char* path, const char* mode, std::FILE* stream)
{
    EXPECT_STREQ(path, "CONOUT$");
    EXPECT_STREQ(mode, "w");
    const std::string name = stream == stdout ? "output" : "error";
    s_parent.calls.push_back("reopen " + name);
    *opened = std::fopen((s_parent.screen / name).string().c_str(), "w");
    std::setvbuf(*opened, nullptr, _IONBF, 0); // as the library has it for a console
    s_parent.opened.push_back(*opened);
    return 0;
}

class ParentConsoleTest : public testing::Test
{
protected:
    ParentConsoleTest()
    {
        s_parent = {};
        s_parent.screen = m_screen.GetPath();
        Tests::ReplacedCalls& calls = m_calls;
        calls.Of<&::AttachConsole>() = [](DWORD process) -> BOOL
        {
            EXPECT_EQ(process, static_cast<DWORD>(-1)) << "the parent";
            s_parent.calls.emplace_back("attach");
            s_parent.isAttached = s_parent.hasConsole;
            return s_parent.hasConsole ? TRUE : FALSE;
        };
        calls.Of<&::FreeConsole>() = []() -> BOOL
        {
            s_parent.calls.emplace_back("free");
            s_parent.isAttached = false;
            return TRUE;
        };
        calls.Of<&::GetStdHandle>() = &GetStream;
        calls.Of<&::GetFileType>() = [](HANDLE handle) { return FindStream(handle).type; };
        calls.Of<&::GetConsoleMode>() = [](HANDLE handle, LPDWORD) -> BOOL
        { return s_parent.isAttached && FindStream(handle).isConsole ? TRUE : FALSE; };
        calls.Of<&::GetConsoleOutputCP>() = [] { return s_parent.page; };
        calls.Of<&::SetConsoleOutputCP>() = [](UINT page) -> BOOL
        {
            s_parent.calls.push_back("page " + std::to_string(page));
            if (s_parent.canSetPage)
                s_parent.page = page;
            return s_parent.canSetPage ? TRUE : FALSE;
        };
        calls.Of<&::freopen_s>() = &Reopen;
    }

    static void SetStreams(const Stream& output, const Stream& error)
    {
        s_parent.streams = {{STD_OUTPUT_HANDLE, output}, {STD_ERROR_HANDLE, error}};
    }

    const Tests::TemporaryDirectory m_screen;
    Tests::ReplacedCalls m_calls;
};

TEST_F(ParentConsoleTest, StreamsThatGoNowhereGoToItAndItIsReleasedInTheEnd)
{
    {
        const ParentConsole console(true);
        EXPECT_THAT(s_parent.calls, ElementsAre("attach", "page 65001", "reopen output", "reopen error"));
        EXPECT_EQ(s_parent.page, s_utf8Page);
    }
    EXPECT_THAT(s_parent.calls,
                ElementsAre("attach", "page 65001", "reopen output", "reopen error", "page 437", "free"));
    EXPECT_EQ(s_parent.page, s_oldPage);
    // They are closed: files that are open can't be removed.
    EXPECT_TRUE(std::filesystem::remove(m_screen.GetPath() / "output"));
    EXPECT_TRUE(std::filesystem::remove(m_screen.GetPath() / "error"));
}

TEST_F(ParentConsoleTest, StreamsThatAreOnAConsoleGoToItToo)
{
    SetStreams({FILE_TYPE_CHAR, true}, {FILE_TYPE_CHAR, true});
    const ParentConsole console(true);
    EXPECT_THAT(s_parent.calls, ElementsAre("attach", "page 65001", "reopen output", "reopen error"));
}

// The bytes of one letter have to arrive together.
TEST_F(ParentConsoleTest, WhatIsWrittenArrivesInOnePiece)
{
    {
        const ParentConsole console(true);
        ASSERT_EQ(s_parent.opened.size(), 2U);
        for (std::FILE* const stream : s_parent.opened)
            std::fputs("\xE2\x82\xAC", stream);
        EXPECT_EQ(std::filesystem::file_size(m_screen.GetPath() / "output"), 0U);
        EXPECT_EQ(std::filesystem::file_size(m_screen.GetPath() / "error"), 0U);
    }
    EXPECT_EQ(Tests::ReadText(m_screen.GetPath() / "output"), "\xE2\x82\xAC");
    EXPECT_EQ(Tests::ReadText(m_screen.GetPath() / "error"), "\xE2\x82\xAC");
}

TEST_F(ParentConsoleTest, AConsoleThatCantBeOpenedIsLeftAllTheSame)
{
    m_calls.Of<&::freopen_s>() = [](std::FILE** opened, const char*, const char*, std::FILE*) -> errno_t
    {
        *opened = nullptr;
        return ENOENT;
    };
    {
        const ParentConsole console(true);
    }
    EXPECT_THAT(s_parent.calls, ElementsAre("attach", "page 65001", "page 437", "free"));
}

TEST_F(ParentConsoleTest, StreamsThatGoElsewhereStayThere)
{
    constexpr Stream file = {FILE_TYPE_DISK, false};
    constexpr Stream pipe = {FILE_TYPE_PIPE, false};
    constexpr Stream nullDevice = {FILE_TYPE_CHAR, false};
    for (const Stream& stream : {file, pipe, nullDevice})
    {
        SCOPED_TRACE(stream.type);
        s_parent.calls.clear();
        SetStreams(stream, stream);
        {
            const ParentConsole console(true);
        }
        EXPECT_THAT(s_parent.calls, ElementsAre("attach", "free")) << "nothing is written to the console";
        s_parent.calls.clear();
        SetStreams(stream, {});
        const ParentConsole console(true);
        EXPECT_THAT(s_parent.calls, ElementsAre("attach", "page 65001", "reopen error"));
    }
}

TEST_F(ParentConsoleTest, WithoutOneNothingIsTouched)
{
    s_parent.hasConsole = false;
    {
        const ParentConsole console(true);
    }
    EXPECT_THAT(s_parent.calls, ElementsAre("attach", "free"));
}

TEST_F(ParentConsoleTest, OneThatIsNotWantedIsNotTakenAndReleasedAllTheSame)
{
    {
        const ParentConsole console(false);
    }
    EXPECT_THAT(s_parent.calls, ElementsAre("free"));
}

TEST_F(ParentConsoleTest, AnOutputPageThatIsRightOrCantBeSetIsLeft)
{
    s_parent.page = s_utf8Page;
    {
        const ParentConsole console(true);
    }
    EXPECT_THAT(s_parent.calls, ElementsAre("attach", "reopen output", "reopen error", "free"));
    s_parent.calls.clear();
    s_parent.page = s_oldPage;
    s_parent.canSetPage = false;
    {
        const ParentConsole console(true);
    }
    EXPECT_THAT(s_parent.calls, ElementsAre("attach", "page 65001", "reopen output", "reopen error", "free"));
}

} // namespace
} // namespace Orvik::System::Processes
