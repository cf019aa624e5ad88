#include "Core/System/Runtime/ApplicationConfigCache.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{
namespace
{

TEST(ApplicationConfigCache, ASchemaNameThatTheSystemRefusesIsThrown)
{
    const ApplicationConfigCache cache;
    std::filesystem::path path;
    try
    {
        (void)cache.FindSchemaFile(std::string(5000, 'x'), path);
        FAIL();
    }
    catch (const std::filesystem::filesystem_error& error)
    {
        EXPECT_THAT(error.what(), testing::HasSubstr("exists"));
    }
}

} // namespace
} // namespace Orvik::System::Runtime
