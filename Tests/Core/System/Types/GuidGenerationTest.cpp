#include "Core/System/Types/GuidGeneration.h"
#include "Tests/Support/Texts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace Orvik::System
{
namespace
{

TEST(GuidGeneration, IdentifiersAreDifferentRandomUuids)
{
    constexpr std::size_t count = 300;
    std::set<std::string> texts;
    for (std::size_t index = 0; index < count; ++index)
    {
        const std::string text = GenerateGuid().ToString();
        EXPECT_EQ(text.size(), 38U);
        EXPECT_THAT(text, Tests::MatchesPattern("\\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                                                "[0-9A-F]{12}\\}"));
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), count);
}

TEST(GuidGeneration, TheTextOfOneIsReadAsThatOne)
{
    const GUID guid = GenerateGuid();
    EXPECT_EQ(ParseGuid(guid.ToString()), guid);
    EXPECT_NE(guid, GUID());
}

} // namespace
} // namespace Orvik::System
