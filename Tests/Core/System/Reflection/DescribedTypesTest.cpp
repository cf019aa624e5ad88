// The types that are there without anybody having asked for them.
#include "Core/System/Reflection/TypeRegistry.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace Orvik::System::Reflection
{
namespace
{

struct ExpectedType
{
    const char* name;
    const char* typeName;
    std::uint32_t typeId;
    std::uint32_t size;
    const char* guid;
    const char* description;
    std::vector<FieldDescription> fields;
};

const std::vector<ExpectedType> s_expectedTypes = {
    {"StringArray",
     "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::PodString>",
     0xFB30A0D3,
     8,
     "{4F723C6F-B0AE-4AC7-94A5-6A92D5DBD05E}",
     "",
     {}},
    {"Int64Array",
     "Orvik::System::Runtime::Execution::PodArray<int64_t>",
     0x94384FC2,
     8,
     "{401B7BA5-5B1F-41A1-9B38-D13E7F59AC53}",
     "",
     {}},
    {"Size2Array",
     "Orvik::System::Runtime::Execution::PodArray<Orvik::System::Runtime::Execution::Size2>",
     0x5C86DD72,
     8,
     "{867529E6-31A4-4A2D-BC5F-5507257B039C}",
     "",
     {}},
    {"TargetOperatingSystem",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetOperatingSystem>",
     0x71E646EC,
     8,
     "{1A322CD4-EFA6-41DD-8C1C-F4E8466BAB09}",
     "",
     {}},
    {"CapabilityClassType",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityClassType>",
     0x17364D25,
     8,
     "{F790FED1-FD0F-4F86-8252-2C871749FB95}",
     "",
     {}},
    {"CapabilityState",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Device::CapabilityState>",
     0x51394894,
     8,
     "{F25F9B05-4972-44D3-944A-746F47706E5C}",
     "",
     {}},
    {"CommandValueType",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::CommandValueType>",
     0x8C021B1E,
     8,
     "{2F15CD33-BA36-42C5-A7F0-41CBA07C3093}",
     "",
     {}},
    {"FundamentalValueType",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::Execution::FundamentalValueType>",
     0x1542118E,
     8,
     "{8A548819-423B-41BF-ACCD-289756A58ECE}",
     "",
     {}},
    {"String",
     "Orvik::System::Runtime::Execution::PodString",
     0x0701FC22,
     8,
     "{5762230B-B392-4B55-863B-7A06542152EB}",
     "A runtime string",
     {}},
    {"Bytes",
     "Orvik::System::Runtime::Execution::PodBytes",
     0x078672CD,
     8,
     "{8173529C-095D-42CF-9605-4A176497C9DB}",
     "A runtime byte array",
     {}},
    {"TargetClass",
     "Orvik::System::Types::EnumValue<Orvik::System::Runtime::AutomationTarget::TargetClass>",
     0xCE43AF47,
     8,
     "{DE2D38A9-517C-42A9-8270-54CCA0E4E62A}",
     "",
     {}},
    {"Image",
     "Orvik::System::Runtime::Execution::Image",
     0x3EFC0506,
     32,
     "{10C2B4D2-BE1D-4CD6-863E-890F32BA5557}",
     "",
     {{"bytes", 0x078672CD, 24},
      {"bitsPerPixel", 0xD800F115, 16},
      {"height", 0xD800F115, 8},
      {"width", 0xD800F115, 0}}},
    {"Guid",
     "Orvik::System::GUID",
     0x6F294F69,
     16,
     "{601D319D-5E22-4C9E-9F84-3492796DE067}",
     "A 128-bit guid",
     {{"m_lowPart", 0x1E599FAF, 8}, {"m_highPart", 0x1E599FAF, 0}}},
    {"Coordinate2",
     "Orvik::System::Runtime::Execution::Coordinate2",
     0xF84CC2AD,
     16,
     "{164B6651-C16C-46A5-AE1C-2A75C90F93D3}",
     "A 2-dimensional coordinate",
     {{"y", 0xD800F115, 8}, {"x", 0xD800F115, 0}}},
    {"Size2",
     "Orvik::System::Runtime::Execution::Size2",
     0x4C84F736,
     16,
     "{5120C7DF-1455-4954-A331-C1B3E57BC7D8}",
     "A 2-dimensional size",
     {{"height", 0xD800F115, 8}, {"width", 0xD800F115, 0}}},
    {"Int64", "int64_t", 0xD800F115, 8, "{164B6651-C16C-46A5-AE1C-2A75C90F93D3}", "A 64-bit integer", {}},
    {"Double", "double", 0xE4296A73, 8, "{F1047C74-8099-42FE-9330-5F2879DA7E5E}", "A 64-bit floating point", {}},
};

TEST(DescribedTypes, AreAllRegisteredBeforeMain)
{
    ASSERT_EQ(s_expectedTypes.size(), 17U);
    for (const ExpectedType& expected : s_expectedTypes)
    {
        SCOPED_TRACE(expected.name);
        const TypeDescription* const type = TypeRegistry::GetInstance().GetTypeDescription(expected.typeId);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->typeId, expected.typeId);
        EXPECT_EQ(type->size, expected.size);
        EXPECT_EQ(type->typeName, expected.typeName);
        EXPECT_EQ(type->name, expected.name);
        EXPECT_EQ(type->guid.ToString(), expected.guid);
        EXPECT_EQ(type->description, expected.description);
        EXPECT_EQ(type->fields, expected.fields);
    }
}

TEST(DescribedTypes, OnlyTheGuidOfCoordinatesAndIntegersIsThereTwice)
{
    std::multiset<std::string> guids;
    for (const ExpectedType& type : s_expectedTypes)
        guids.insert(type.guid);
    for (const std::string& guid : guids)
        EXPECT_EQ(guids.count(guid), guid == "{164B6651-C16C-46A5-AE1C-2A75C90F93D3}" ? 2U : 1U) << guid;
}

TEST(DescribedTypes, HaveNoDescriptionOfAGuidsHalves)
{
    EXPECT_EQ(TypeRegistry::GetInstance().GetTypeDescription(0x1E599FAF), nullptr);
}

} // namespace
} // namespace Orvik::System::Reflection
