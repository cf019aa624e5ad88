#pragma once

#include "Core/System/Error/SourceLocation.h"
#include "Core/System/Text/Guid.h"

#include <cstdint>
#include <ostream>

namespace Orvik::System::Error
{

/// The number of an error in reports. It is only printed; no code depends on it. From the lowest bit upward: 16 bits
/// that are 2 in every error of this program, 16 bits of category, 32 bits of code.
struct ErrorCode
{
    std::uint64_t value = 0; ///< 0 for an exception without an error

    constexpr bool operator==(const ErrorCode&) const = default;
};

[[nodiscard]] constexpr ErrorCode MakeErrorCode(std::uint16_t category, std::uint32_t code) noexcept
{
    constexpr std::uint64_t kind = 2;
    return {(std::uint64_t{code} << 32U) | (std::uint64_t{category} << 16U) | kind};
}

/// A kind of error, as a type: category and code at compile time, and one constant record with the default text.
template <std::uint16_t Category, std::uint32_t Code>
struct Error
{
    ErrorCode code = MakeErrorCode(Category, Code);
    const char* text; ///< static storage
};

inline constexpr Error<2, 1> ProgramStartupError{.text = "Failure during program startup."};
inline constexpr Error<2, 2> ServiceStartupError{.text = "Failure during service startup."};
inline constexpr Error<100, 2> SystemCreationError{.text = "Failure during system creation."};
inline constexpr Error<100, 3> SystemInitializationError{.text = "Failure during system initialization."};
inline constexpr Error<501, 1> LogNotInitializedError{.text = "Log not initialized."};
inline constexpr Error<502, 20> LogFileStatusError{.text = "Log file has invalid status."};
inline constexpr Error<503, 30> LogFileStateError{.text = "Internal state doesn't match file state."};
inline constexpr Error<964, 1> DpiConfigurationError{.text = "Setup of DPI configuration failed."};

/// The program's own exception: where it was thrown and, in `ExceptionWithDetails`, what was wrong. Small, copied by
/// value, and owns nothing. It isn't derived from `std::exception`: catch clauses name the two families separately.
class Exception
{
public:
    explicit Exception(const SourceLocation& location) noexcept : m_location(location) {}
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;
    virtual ~Exception() = default;

    /// Writes the error's number to `code` and returns it.
    virtual const ErrorCode& GetErrorCode(ErrorCode& code) const;

    /// The class name that reports show.
    [[nodiscard]] virtual const char* GetTypeName() const;

    virtual void WriteMessage(std::ostream& stream) const;

    /// Marks the exception as handled and passes it to `ErrorHandling`, which writes the report.
    virtual void Report();

    [[nodiscard]] const SourceLocation& GetLocation() const noexcept { return m_location; }
    [[nodiscard]] bool IsHandled() const noexcept { return m_handled; }

private:
    SourceLocation m_location;
    bool m_handled = false;
};

/// The details of an ordinary error. `Error_Type` is the type of one of the constants above: const `Error`.
template <typename Error_Type>
struct ErrorDetails
{
    static constexpr const char* s_typeName = "Orvik::Exception";

    /// Takes the error's own text.
    explicit constexpr ErrorDetails(Error_Type& error) noexcept : code(error.code), message(error.text) {}

    /// Takes a text of the throwing code, a constant. Null is reported as no message.
    constexpr ErrorDetails(Error_Type& error, const char* text) noexcept : code(error.code), message(text) {}

    void WriteMessage(std::ostream& stream) const { stream << (message != nullptr ? message : "No message provided."); }

    ErrorCode code;
    const char* message;
};

/// The details of a System that failed to start.
struct SystemErrorDetails
{
    /// Writes the lines that name the System. A null name and an all-zero GUID have no line.
    void WriteLines(std::ostream& stream) const;

    ErrorCode code;
    const char* systemName; ///< zero-terminated, static storage
    GUID systemGuid;
};

struct SystemCreationErrorDetails : SystemErrorDetails
{
    static constexpr const char* s_typeName = "Orvik::SystemCreationException";

    constexpr SystemCreationErrorDetails(const char* name, const GUID& guid) noexcept
        : SystemErrorDetails{SystemCreationError.code, name, guid}
    {
    }

    void WriteMessage(std::ostream& stream) const;
};

struct SystemInitializationErrorDetails : SystemErrorDetails
{
    static constexpr const char* s_typeName = "Orvik::SystemInitializationException";

    constexpr SystemInitializationErrorDetails(const char* name, const GUID& guid) noexcept
        : SystemErrorDetails{SystemInitializationError.code, name, guid}
    {
    }

    void WriteMessage(std::ostream& stream) const;
};

/// An exception that says what was wrong:
/// `throw ExceptionWithDetails(ORVIK_HERE, ErrorDetails(ProgramStartupError, "No luck."));`
template <typename Details>
class ExceptionWithDetails : public Exception
{
public:
    ExceptionWithDetails(const SourceLocation& location, const Details& details) noexcept
        : Exception(location), m_details(details)
    {
    }

    const ErrorCode& GetErrorCode(ErrorCode& code) const override
    {
        code = m_details.code;
        return code;
    }

    [[nodiscard]] const char* GetTypeName() const override { return Details::s_typeName; }

    void WriteMessage(std::ostream& stream) const override { m_details.WriteMessage(stream); }

private:
    Details m_details;
};

using SystemCreationException = ExceptionWithDetails<SystemCreationErrorDetails>;
using SystemInitializationException = ExceptionWithDetails<SystemInitializationErrorDetails>;

} // namespace Orvik::System::Error
