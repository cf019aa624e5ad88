#include "Core/Graphics/Renderer/ObjectStore.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace Orvik::Tests
{
namespace
{

using Graphics::Renderer::ObjectStore;

struct Thing
{
    std::uint16_t id = 0;
    int value = 5;
};

struct OtherThing
{
    std::uint16_t id = 0;
};

struct WrappingThing
{
    std::uint16_t id = 0;
    int value = 0;
};

std::vector<std::uint16_t> GetIds(ObjectStore<Thing>& store)
{
    std::vector<std::uint16_t> ids;
    for (const Thing& thing : store)
        ids.push_back(thing.id);
    return ids;
}

} // namespace

TEST(ObjectStore, IdsCountUpAndAreSharedByAllStoresOfAKind)
{
    ObjectStore<Thing> first;
    ObjectStore<Thing> second;
    const std::uint16_t id = first.Add().id;
    EXPECT_NE(id, 0);
    EXPECT_EQ(second.Add().id, id + 1);
    EXPECT_EQ(first.Add().id, id + 2);
}

TEST(ObjectStore, EachKindCountsFromOne)
{
    ObjectStore<OtherThing> store;
    EXPECT_EQ(store.Add().id, 1);
    EXPECT_EQ(store.Add().id, 2);
    EXPECT_TRUE(store.Remove(2));
    EXPECT_EQ(store.Add().id, 3);
}

TEST(ObjectStore, ZeroIsNoIdAfterTheCounterWrapped)
{
    ObjectStore<WrappingThing> store;
    for (int index = 0; index < 65535; ++index)
    {
        const std::uint16_t id = store.Add().id;
        EXPECT_NE(id, 0);
        store.Remove(id);
    }
    EXPECT_EQ(store.Add().id, 1);
}

TEST(ObjectStore, OfTwoWithOneIdTheOlderIsFoundAndTheYoungerRemoved)
{
    ObjectStore<WrappingThing> store;
    WrappingThing& older = store.Add();
    const std::uint16_t id = older.id;
    older.value = 1;
    while (store.Add().id != id)
        store.Remove(store.begin()[1].id);
    store.begin()[1].value = 2;
    store.Add();
    EXPECT_EQ(store.Find(id)->value, 1);

    const std::optional<WrappingThing> removed = store.Remove(id);
    ASSERT_TRUE(removed);
    EXPECT_EQ(removed->id, id);
    EXPECT_EQ(removed->value, 2);
    EXPECT_EQ(store.Find(id)->value, 1);
    EXPECT_EQ(store.Remove(id)->value, 1);
    EXPECT_FALSE(store.Remove(id));
}

TEST(ObjectStore, FindsWhatIsInIt)
{
    ObjectStore<Thing> store;
    const std::uint16_t id = store.Add().id;
    ASSERT_NE(store.Find(id), nullptr);
    EXPECT_EQ(store.Find(id)->value, 5);
    store.Find(id)->value = 6;
    EXPECT_EQ(store.Find(id)->value, 6);
    EXPECT_EQ(store.Find(0), nullptr);
    EXPECT_EQ(store.Find(static_cast<std::uint16_t>(id + 1)), nullptr);
}

TEST(ObjectStore, RemovalPutsTheLastIntoTheHole)
{
    ObjectStore<Thing> store;
    const std::uint16_t first = store.Add().id;
    const std::uint16_t second = store.Add().id;
    const std::uint16_t third = store.Add().id;
    EXPECT_TRUE(store.Remove(first));
    EXPECT_EQ(GetIds(store), (std::vector<std::uint16_t>{third, second}));
    EXPECT_TRUE(store.Remove(second));
    EXPECT_EQ(GetIds(store), (std::vector<std::uint16_t>{third}));
    EXPECT_FALSE(store.Remove(second));
    EXPECT_FALSE(store.Remove(0));
    EXPECT_TRUE(store.Remove(third));
    EXPECT_EQ(store.GetCount(), 0U);
}

} // namespace Orvik::Tests
