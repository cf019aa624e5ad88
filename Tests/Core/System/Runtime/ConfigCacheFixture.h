#pragma once

#include "Core/System/Runtime/ApplicationConfigCache.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime
{

/// The test program lies in no directory "Binaries", so that the working directory decides about the schema.
class ConfigCacheFixture : public testing::Test
{
protected:
    ConfigCacheFixture() { std::filesystem::current_path(m_directory.GetPath()); }
    ~ConfigCacheFixture() override { std::filesystem::current_path(m_previous); }

    void WriteFile(const std::filesystem::path& path, const std::string& text)
    {
        if (path.has_parent_path())
            std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << text;
    }

    /// Initialises the cache with that schema and forgets what was logged.
    void UseSchema(const std::string& schema)
    {
        WriteFile("Resources/Schemas/Zentrov-Configuration-2501.json", schema);
        EXPECT_TRUE(m_cache.Initialize(nullptr));
        m_log.Clear();
    }

    /// The schema that comes with the program.
    void UseOwnSchema()
    {
        std::filesystem::create_directories("Resources/Schemas");
        std::filesystem::copy_file(m_previous / "Resources/Schemas/Zentrov-Configuration-2501.json",
                                   "Resources/Schemas/Zentrov-Configuration-2501.json");
        EXPECT_TRUE(m_cache.Initialize(nullptr));
        EXPECT_THAT(m_log.GetLines(), testing::IsEmpty());
    }

    std::filesystem::path m_previous = std::filesystem::current_path();
    Tests::TemporaryDirectory m_directory;
    Tests::LogRecorder m_log;
    ApplicationConfigCache m_cache;
};

} // namespace Orvik::System::Runtime
