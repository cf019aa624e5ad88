#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// Reads the line that a server writes to a pipe once it accepts connections: its number. Empty if the line isn't
/// complete within the limit, or the pipe ends.
[[nodiscard]] std::string ReadDisplayNumber(int descriptor, std::chrono::milliseconds limit);

/// A private Xvfb server on a free display number. It ends with the object.
class VirtualDisplay
{
public:
    /// `arguments` follow the usual ones of the server, so that they can override these. A server that ends by itself
    /// is started again, twice at the most. Throws `std::runtime_error`, with what the last one has said, if it ends as
    /// well or doesn't report its number within a minute; the server has ended then.
    explicit VirtualDisplay(std::uint32_t width = 1280, std::uint32_t height = 720, std::uint32_t depth = 24,
                            const std::vector<std::string>& arguments = {});
    ~VirtualDisplay();
    VirtualDisplay(const VirtualDisplay&) = delete;
    VirtualDisplay& operator=(const VirtualDisplay&) = delete;

    /// The value for `DISPLAY`, such as ":7".
    [[nodiscard]] const std::string& GetName() const { return m_name; }

private:
    /// What the server has said, if it ended by itself; else it runs, or has been ended, and there is no such text.
    [[nodiscard]] std::optional<std::string> Start(const std::vector<std::string>& command);

    std::string m_name;
    int m_process = 0;
};

} // namespace Orvik::Tests
