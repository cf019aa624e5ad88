#include "Core/System/Runtime/CommandRegistry.h"

#include "Tests/Support/AssertionTrap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace Orvik::System::Runtime::Execution
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

class NamedCapability : public CapabilityBase
{
public:
    explicit NamedCapability(std::string_view name) : m_name(name) {}
    [[nodiscard]] std::string_view GetClassName() const override { return m_name; }
    [[nodiscard]] std::span<const CommandDescription> GetCommandDescriptions() const override { return {}; }

private:
    std::string_view m_name;
};

constexpr int s_command = 0;

TEST(CommandRegistry, IsEmptyAtFirst)
{
    const CommandRegistry registry;
    EXPECT_THAT(registry.GetCommands(), IsEmpty());
    EXPECT_THAT(registry.GetCommandsByName(), IsEmpty());
    EXPECT_THAT(registry.GetCommandsByCapability(), IsEmpty());
    EXPECT_GE(registry.GetCommandsByName().bucket_count(), 8U);
    EXPECT_FLOAT_EQ(registry.GetCommandsByName().max_load_factor(), 1.0F);
    EXPECT_FLOAT_EQ(registry.GetCommandsByCapability().max_load_factor(), 1.0F);
}

TEST(CommandRegistry, CommandIsFoundByNameAndByCapability)
{
    CommandRegistry registry;
    const NamedCapability capability("Touch");
    const CommandDescription tap{&s_command, "Tap"};
    EXPECT_TRUE(registry.Register(capability, tap));
    EXPECT_THAT(registry.GetCommands(), ElementsAre(&tap));
    EXPECT_EQ(registry.GetCommandsByName().at("Tap"), &tap);
    EXPECT_THAT(registry.GetCommandsByCapability().at("Touch"), ElementsAre(&tap));
}

TEST(CommandRegistry, LastCommandOfANameWinsWhileAllAreKept)
{
    CommandRegistry registry;
    const NamedCapability capability("Touch");
    const CommandDescription first{&s_command, "Tap"};
    const CommandDescription second{&s_command, "Tap"};
    EXPECT_TRUE(registry.Register(capability, first));
    EXPECT_TRUE(registry.Register(capability, second));
    EXPECT_THAT(registry.GetCommands(), ElementsAre(&first, &second));
    EXPECT_EQ(registry.GetCommandsByName().size(), 1U);
    EXPECT_EQ(registry.GetCommandsByName().at("Tap"), &second);
    EXPECT_THAT(registry.GetCommandsByCapability().at("Touch"), ElementsAre(&first, &second));
}

TEST(CommandRegistry, CapabilitiesOfOneClassShareTheirCommands)
{
    CommandRegistry registry;
    const NamedCapability first("Touch");
    const NamedCapability second("Touch");
    const NamedCapability other("Keyboard");
    const CommandDescription tap{&s_command, "Tap"};
    const CommandDescription swipe{&s_command, "Swipe"};
    const CommandDescription type{&s_command, "Type"};
    registry.Register(first, tap);
    registry.Register(other, type);
    registry.Register(second, swipe);
    EXPECT_EQ(registry.GetCommandsByCapability().size(), 2U);
    EXPECT_THAT(registry.GetCommandsByCapability().at("Touch"), ElementsAre(&tap, &swipe));
    EXPECT_THAT(registry.GetCommandsByCapability().at("Keyboard"), ElementsAre(&type));
}

TEST(CommandRegistry, NameIsCopied)
{
    CommandRegistry registry;
    std::string name = "Tap";
    const CommandDescription description{&s_command, name};
    registry.Register(NamedCapability("Touch"), description);
    name = "other";
    EXPECT_TRUE(registry.GetCommandsByName().contains("Tap"));
}

TEST(CommandRegistry, DescriptionWithoutCommandFails)
{
    CommandRegistry registry;
    const CommandDescription description{nullptr, "Tap"};
    EXPECT_ASSERTION(registry.Register(NamedCapability("Touch"), description), "commandDescription.pointer != nullptr",
                     "Trying to register command description without command pointer.");
    EXPECT_THAT(registry.GetCommands(), IsEmpty());
}

TEST(CommandRegistry, EmptyNamesAreNamesToo)
{
    CommandRegistry registry;
    const CommandDescription description{&s_command, {}};
    EXPECT_TRUE(registry.Register(NamedCapability(""), description));
    EXPECT_EQ(registry.GetCommandsByName().at(""), &description);
    EXPECT_THAT(registry.GetCommandsByCapability().at(""), ElementsAre(&description));
}

} // namespace
} // namespace Orvik::System::Runtime::Execution
