#include "Core/System/Runtime/CapabilityListeners.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

namespace Orvik::System::Runtime::Execution
{
namespace
{

using testing::ElementsAre;

class EmptyCapability : public CapabilityBase
{
public:
    [[nodiscard]] std::string_view GetClassName() const override { return "EmptyCapability"; }
    [[nodiscard]] std::span<const CommandDescription> GetCommandDescriptions() const override { return {}; }
};

TEST(CapabilityListeners, AreCalledInTheirOrder)
{
    CapabilityListeners listeners;
    EmptyCapability capability;
    std::vector<int> calls;
    const int first = 0;
    const int second = 0;
    EXPECT_TRUE(listeners.Add(&first,
                              [&](CapabilityBase& made)
                              {
                                  EXPECT_EQ(&made, &capability);
                                  calls.push_back(1);
                              }));
    EXPECT_TRUE(listeners.Add(&second, [&](CapabilityBase&) { calls.push_back(2); }));
    listeners.Notify(capability);
    EXPECT_THAT(calls, ElementsAre(1, 2));
}

TEST(CapabilityListeners, OwnerHasOneListener)
{
    CapabilityListeners listeners;
    EmptyCapability capability;
    std::vector<int> calls;
    const int owner = 0;
    EXPECT_TRUE(listeners.Add(&owner, [&](CapabilityBase&) { calls.push_back(1); }));
    EXPECT_FALSE(listeners.Add(&owner, [&](CapabilityBase&) { calls.push_back(2); }));
    listeners.Notify(capability);
    EXPECT_THAT(calls, ElementsAre(1));
}

TEST(CapabilityListeners, ListenerMayAddAnother)
{
    CapabilityListeners listeners;
    EmptyCapability capability;
    std::vector<int> calls;
    const int first = 0;
    const int second = 0;
    listeners.Add(&first,
                  [&](CapabilityBase&)
                  {
                      calls.push_back(1);
                      listeners.Add(&second, [&](CapabilityBase&) { calls.push_back(2); });
                  });
    listeners.Notify(capability);
    EXPECT_THAT(calls, ElementsAre(1));
    listeners.Notify(capability);
    EXPECT_THAT(calls, ElementsAre(1, 1, 2));
}

TEST(CapabilityListeners, WithoutListenersNothingIsCalled)
{
    CapabilityListeners listeners;
    EmptyCapability capability;
    EXPECT_NO_THROW(listeners.Notify(capability));
}

} // namespace
} // namespace Orvik::System::Runtime::Execution
