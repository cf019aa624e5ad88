#include "Tests/EndToEnd/TestCompositor.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace Orvik::Tests
{
namespace
{

/// Ends with the process at the latest.
std::shared_ptr<NestedCompositor>& GetSlot()
{
    static std::shared_ptr<NestedCompositor> compositor;
    return compositor;
}

/// Of sway.
std::string GetConfiguration()
{
    const char* const scale = std::getenv("ORVIK_TEST_SCALE");
    return scale == nullptr || *scale == '\0' ? std::string() : "output * scale " + std::string(scale);
}

} // namespace

std::optional<CompositorKind> GetTestCompositorKind()
{
    const char* const name = std::getenv("ORVIK_TEST_COMPOSITOR");
    if (name == nullptr || *name == '\0')
        return std::nullopt;
    const auto kind = FindCompositorKind(name);
    if (!kind)
        throw std::runtime_error(std::string("There is no compositor called ") + name + ".");
    return kind;
}

std::shared_ptr<NestedCompositor> BorrowTestCompositor(int width, int height)
{
    std::shared_ptr<NestedCompositor>& slot = GetSlot();
    if (slot != nullptr && slot->IsRunning() && slot->GetShown().width == width && slot->GetShown().height == height)
        return slot;
    slot.reset(); // ahead of the next one: the machine needn't hold two
    constexpr int seed = 9;
    slot = std::make_shared<NestedCompositor>(
        CompositorOptions{GetTestCompositorKind().value(), width, height, GetConfiguration()});
    if (slot->GetKind() == CompositorKind::Gnome)
        slot->AnswerPortal("yes");
    slot->ShowGround(MakeTestPicture(width, height, seed));
    return slot;
}

void EndTestCompositor()
{
    GetSlot().reset();
}

} // namespace Orvik::Tests
