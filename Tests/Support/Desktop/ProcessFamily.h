#pragma once

#include "Tests/Support/Desktop/ChildProcess.h"

#include <filesystem>
#include <optional>

namespace Orvik::Tests
{

/// A user's and a group's number.
struct UserNumbers
{
    unsigned user = 0;
    unsigned group = 0;
};

/// A program that starts others, such as a compositor or a bus: it and all that came of it, those that went their own
/// way included, end with the object, or when this process does.
class ProcessFamily
{
public:
    /// Starts the program, as that user if one is given; only root can do that. What the family writes goes to `log`.
    /// Throws `std::runtime_error` if no process can be made. A program that can't be started ends at once.
    ProcessFamily(const ChildOptions& options, const std::filesystem::path& log, std::optional<UserNumbers> user);
    /// Returns when no process is left.
    ~ProcessFamily();
    ProcessFamily(const ProcessFamily&) = delete;
    ProcessFamily& operator=(const ProcessFamily&) = delete;

    /// Whether the program itself is there. Once it isn't, nothing of its family is.
    [[nodiscard]] bool IsRunning();

private:
    int m_keeper = -1; ///< the process that awaits the others' ends; -1 once it has ended
};

} // namespace Orvik::Tests
