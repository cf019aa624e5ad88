// What becomes of files when there is no memory for them.
#include "Application/SnipFiles.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <vector>

namespace
{

/// The thread gets no piece of memory of this size or more.
thread_local std::size_t s_refusedSize = std::numeric_limits<std::size_t>::max();

} // namespace

// The whole test program's.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return size < s_refusedSize ? std::malloc(size) : nullptr;
}

void* operator new(std::size_t size)
{
    void* const memory = operator new(size, std::nothrow);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}

namespace Orvik::SnipBench
{
namespace
{

TEST(SnipFilesMemory, ATextThatDoesNotFitIsLoggedAndTheRunGoesOn)
{
    const Tests::TemporaryDirectory directory;
    const Tests::LogRecorder log;
    const SnipFileSettings settings = {directory.GetPath(), "png", true, {}};
    System::Multimedia::Bitmap snip(4, 3, 32);
    System::Math::Rectangle bounds = {0, 0, 4, 3};
    // Each vertex takes some forty characters.
    std::vector<System::Math::Point> polygon(10'000);
    Graphics::Tools::SnipBench::Result result = {0, nullptr, &snip, &bounds, &polygon};
    s_refusedSize = 300'000;
    EXPECT_NO_THROW(SaveSnip(result, settings));
    s_refusedSize = std::numeric_limits<std::size_t>::max();

    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory.GetPath()))
        files.push_back(entry.path());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].extension(), ".png");
    EXPECT_THAT(log.GetLines(),
                testing::ElementsAre(testing::AllOf(testing::StartsWith("SnipBench Error: Failed to save meta file: "),
                                                    testing::EndsWith(files[0].stem().string() + ".json\""))));
}

} // namespace
} // namespace Orvik::SnipBench
