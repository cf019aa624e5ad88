#pragma once

#include "Core/System/Log/Context.h"

#include <locale>
#include <sstream>
#include <string>

namespace Orvik::System::Log
{

/// Takes the messages that passed the severity gate. In the program this is the `Logger`; tests install their own.
class IMessageReceiver
{
public:
    virtual ~IMessageReceiver() = default;

    /// The stream gate: false drops the message before its text is built.
    [[nodiscard]] virtual bool AcceptsStream(std::uint32_t stream) const = 0;

    /// `text` is only the message, without time, stream, severity and line end.
    virtual void Receive(std::uint32_t stream, MessageTypeID severity, const std::string& text) = 0;

    /// Gives `context` the threshold that is configured for its stream. Without a configuration it stays as it is.
    virtual void ApplySeverity(Context& /*context*/) const {}
};

/// Installs the receiver of all messages and returns the previous one; null for none. The caller keeps it alive until
/// it installs another. Without a receiver, so before a `Logger` exists and after its end, messages are dropped without
/// a report.
IMessageReceiver* SetReceiver(IMessageReceiver* receiver) noexcept;

[[nodiscard]] IMessageReceiver* GetReceiver() noexcept;

/// Joins the pieces, each inserted as into a stream, with numbers in the format of the "C" locale, whatever the
/// program's locale is.
template <typename... Pieces>
[[nodiscard]] std::string JoinPieces(const Pieces&... pieces)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << pieces);
    return text.str();
}

/// Logs a message. The pieces are joined only if both gates let the message pass. A `std::filesystem::path` is written
/// between double quotes. Exceptions of the receiver are passed on.
template <typename... Pieces>
void Write(const Context& context, MessageTypeID severity, const Pieces&... pieces)
{
    if (!IsEnabled(context, severity))
        return;
    IMessageReceiver* const receiver = GetReceiver();
    if (receiver == nullptr || !receiver->AcceptsStream(context.stream))
        return;
    receiver->Receive(context.stream, severity, JoinPieces(pieces...));
}

} // namespace Orvik::System::Log
