#include "Desktops/Wayland/BusFunctions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Orvik::Desktops::Wayland
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

TEST(BusFunctions, AreThoseOfTheLibrary)
{
    std::string failure;
    const BusFunctions* const functions = FindBusFunctions(failure);
    ASSERT_NE(functions, nullptr) << failure;
    EXPECT_EQ(functions->openUser, &sd_bus_open_user);
    EXPECT_EQ(functions->exitContainer, &sd_bus_message_exit_container);
    EXPECT_EQ(&GetBusFunctions(), functions);
}

TEST(BusFunctions, OfALibraryThatIsNotThereAreMissingWithItsName)
{
    std::string failure;
    EXPECT_EQ(LoadBusFunctions("libnowhere.so.0", failure), std::nullopt);
    EXPECT_THAT(failure, StartsWith("the library for the session's message bus can't be loaded: libnowhere.so.0: "));
}

TEST(BusFunctions, OfAnotherLibraryAreMissing)
{
    std::string failure;
    EXPECT_EQ(LoadBusFunctions("libm.so.6", failure), std::nullopt);
    EXPECT_THAT(failure, HasSubstr("lacks functions: libm.so.6"));
}

} // namespace
} // namespace Orvik::Desktops::Wayland
