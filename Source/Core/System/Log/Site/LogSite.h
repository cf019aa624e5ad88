#pragma once

#include "Core/System/Log/Site/Context.h"

#include <locale>
#include <sstream>
#include <string>

namespace Orvik::System::Log
{

/// Takes the messages that passed the severity gate. The `Logger` is the program's receiver; a test installs its own.
class IMessageReceiver
{
public:
    virtual ~IMessageReceiver() = default;

    /// The stream gate: false drops the message before its text is built.
    [[nodiscard]] virtual bool AcceptsStream(std::uint32_t stream) const = 0;

    /// `text` is the message alone, without time, stream, severity and line end.
    virtual void Receive(std::uint32_t stream, MessageTypeID severity, const std::string& text) = 0;

    /// Gives `context` the threshold that is configured for its stream. Without a configuration it stays as it is.
    virtual void ApplySeverity(Context& /*context*/) const {}
};

/// Installs the receiver of all sites and returns the one before; null for none. The caller keeps it alive until it
/// installs another. While there is none, and so before a `Logger` exists and after it is gone, sites drop their
/// messages without a word.
IMessageReceiver* SetReceiver(IMessageReceiver* receiver) noexcept;

[[nodiscard]] IMessageReceiver* GetReceiver() noexcept;

/// The pieces one after the other, each by the stream's ordinary insertion, with numbers as C writes them whatever the
/// locale.
template <typename... Pieces>
[[nodiscard]] std::string JoinPieces(const Pieces&... pieces)
{
    std::ostringstream text;
    text.imbue(std::locale::classic());
    (text << ... << pieces);
    return text.str();
}

/// A log site. The pieces are joined only if both gates let the message pass. A `std::filesystem::path` is written
/// between double quotes.
/// What the receiver throws leaves here.
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
