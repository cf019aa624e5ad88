#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// Reads the line that a server writes into a pipe once it takes connections: its number. Empty if the line doesn't end
/// within the limit, or the pipe does.
[[nodiscard]] std::string ReadDisplayNumber(int descriptor, std::chrono::milliseconds limit);

/// An Xvfb server of its own, on a free display number, that ends with the object.
class VirtualDisplay
{
public:
    /// `arguments` come behind the usual ones of the server, so that they can take back what those ask for. Throws
    /// `std::runtime_error` if the server ends or doesn't say its number within a minute; it has been ended then.
    explicit VirtualDisplay(std::uint32_t width = 1280, std::uint32_t height = 720, std::uint32_t depth = 24,
                            const std::vector<std::string>& arguments = {});
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// What belongs into `DISPLAY`, such as ":7".
    [[nodiscard]] const std::string& GetName() const { return m_name; }

private:
    std::string m_name;
    int m_process = 0;
};

} // namespace Orvik::Tests
