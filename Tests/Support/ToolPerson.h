#pragma once

#include "Tests/Support/ToolModel.h"

#include <array>
#include <cstdint>
#include <random>

namespace Orvik::Tests
{

/// A person who does anything in any order, the same for each seed. Looks at the model to find the places where
/// something is about to change.
class ToolPerson
{
public:
    explicit ToolPerson(std::uint32_t seed) : m_random(seed) {}

    /// A number from the least to the most.
    [[nodiscard]] int Pick(int least, int most);
    [[nodiscard]] bool IsOnce(int in) { return Pick(1, in) == 1; }

    /// Displays, one on another one, and one on a display that there isn't.
    [[nodiscard]] std::map<int, ToolModel::Display> MakeDisplays();
    [[nodiscard]] ToolModel::Beginning MakeBeginning();
    [[nodiscard]] System::Tools::ToolContext MakeInput(const ToolModel& model);
    [[nodiscard]] ToolModel::Receiver MakeReceiver();

private:
    [[nodiscard]] System::Tools::ToolContext MakeMove(const ToolModel& model);
    [[nodiscard]] Position FindPlace(const ToolModel& model);
    [[nodiscard]] std::array<std::uint16_t, 2> PickDisplay();

    std::mt19937 m_random;
};

} // namespace Orvik::Tests
