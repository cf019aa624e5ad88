#include "Core/System/Reflection/TypeRegistry.h"

#include "Tests/Support/AssertionTrap.h"

#include <array>
#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace Orvik::System::Reflection
{

namespace
{

struct First
{
    std::uint32_t number;
    char letter;
};

struct Second
{
    std::uint64_t number;
};

} // namespace

template <>
struct TypeIdentity<First>
{
    static constexpr std::uint32_t typeId = 0x11223344;
    static constexpr std::string_view typeName = "Tests::First";
};

template <>
struct TypeIdentity<Second>
{
    static constexpr std::uint32_t typeId = 9;
    static constexpr std::string_view typeName = "Tests::Second";
};

namespace
{

constexpr GUID s_guid{1, 2};

TEST(TypeRegistry, IsOneForTheProcess)
{
    EXPECT_EQ(&TypeRegistry::GetInstance(), &TypeRegistry::GetInstance());
}

TEST(TypeRegistry, AnUnknownIdYieldsNull)
{
    TypeRegistry registry;
    EXPECT_EQ(registry.GetTypeDescription(0x11223344), nullptr);
}

TEST(TypeRegistry, KeepsWhatItIsGiven)
{
    TypeRegistry registry;
    const std::vector<FieldDescription> fields = {{"letter", 5, 4}, {"number", 6, 0}};
    {
        const std::string description = "a text that goes";
        registry.RegisterType<First>("First", description, s_guid, fields);
    }
    const TypeDescription* const type = registry.GetTypeDescription(0x11223344);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->typeId, 0x11223344U);
    EXPECT_EQ(type->size, 8U);
    EXPECT_EQ(type->typeName, "Tests::First");
    EXPECT_EQ(type->name, "First");
    EXPECT_EQ(type->description, "a text that goes");
    EXPECT_EQ(type->guid, s_guid);
    EXPECT_EQ(type->fields, fields);
}

TEST(TypeRegistry, DescriptionsStayWhereTheyAre)
{
    TypeRegistry registry;
    registry.RegisterType<First>("First", "", s_guid, {});
    const TypeDescription* const first = registry.GetTypeDescription(0x11223344);
    registry.RegisterType<Second>("Second", "", s_guid, {});
    EXPECT_EQ(registry.GetTypeDescription(0x11223344), first);
    EXPECT_EQ(registry.GetTypeDescription(9)->name, "Second") << "a GUID may be there twice";
}

TEST(TypeRegistry, TheSameTypeTwiceLeavesTheFirstRecord)
{
    TypeRegistry registry;
    registry.RegisterType<First>("First", "one", s_guid, {});
    registry.RegisterType<First>("Again", "two", s_guid, {});
    EXPECT_EQ(registry.GetTypeDescription(0x11223344)->name, "First");
    EXPECT_EQ(registry.GetTypeDescription(0x11223344)->description, "one");
}

TEST(TypeRegistry, AnotherGuidUnderAKnownIdIsAConflict)
{
    TypeRegistry registry;
    registry.RegisterType<First>("First", "", s_guid, {});
    for (const GUID guid : {GUID{1, 3}, GUID{3, 2}, GUID{}})
    {
        EXPECT_ASSERTION(registry.RegisterType<First>("First", "", guid, {}),
                         "GetTypeDescription(typeId)->guid == guid", "TypeId conflict detected");
    }
    EXPECT_EQ(registry.GetTypeDescription(0x11223344)->guid, s_guid);
}

TEST(TypeRegistry, ServesSeveralThreads)
{
    TypeRegistry registry;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
    {
        threads.emplace_back(
            [&registry]
            {
                for (int round = 0; round < 100; ++round)
                    while (registry.GetTypeDescription(9) == nullptr)
                        std::this_thread::yield();
            });
    }
    registry.RegisterType<Second>("Second", "", s_guid, {});
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(registry.GetTypeDescription(9)->name, "Second");
}

/// In how many registries two threads that register a type in all of them see different records. The thread that comes
/// later finds what is entered already and catches up: both are at the same registry time and again.
std::size_t CountDoubleEntries()
{
    std::vector<TypeRegistry> registries(10'000);
    std::array<std::vector<const TypeDescription*>, 2> seen;
    const auto registerAll = [&registries](std::vector<const TypeDescription*>& records)
    {
        for (TypeRegistry& registry : registries)
        {
            registry.RegisterType<Second>("Second", "", s_guid, {});
            records.push_back(registry.GetTypeDescription(9));
        }
    };
    std::thread other(registerAll, std::ref(seen[0]));
    registerAll(seen[1]);
    other.join();
    std::size_t differences = 0;
    for (std::size_t index = 0; index < registries.size(); ++index)
        differences += seen[0][index] != seen[1][index] ? 1 : 0;
    return differences;
}

TEST(TypeRegistry, OneOfTwoThreadsEntersAType)
{
    for (int round = 0; round < 20; ++round)
        ASSERT_EQ(CountDoubleEntries(), 0U);
}

// 0xDD120E790C2512AF is the published value of the text "foob"; its first character is the id's low byte.
TEST(TypeIdHash, IsFnv1aOverTheBytesFromTheLowOne)
{
    EXPECT_EQ(TypeIdHash()(0x626F6F66), static_cast<std::size_t>(0xDD120E790C2512AF));
    EXPECT_NE(TypeIdHash()(0x666F6F62), TypeIdHash()(0x626F6F66));
}

} // namespace
} // namespace Orvik::System::Reflection
