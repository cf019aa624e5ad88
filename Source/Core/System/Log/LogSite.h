#pragma once

#include "Core/System/Log/Context.h"

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
};

/// Installs the receiver of all sites and returns the one before; null for none. The caller keeps it alive until it
/// installs another. While there is none, and so before a `Logger` exists and after it is gone, sites drop their
/// messages without a word.
IMessageReceiver* SetReceiver(IMessageReceiver* receiver) noexcept;

[[nodiscard]] IMessageReceiver* GetReceiver() noexcept;

/// A log site. The pieces go into the text one after the other, each by the stream's ordinary insertion, and only if
/// both gates let the message pass. A `std::filesystem::path` is thus written between double quotes.
/// What the receiver throws leaves here.
template <typename... Pieces>
void Write(const Context& context, MessageTypeID severity, const Pieces&... pieces)
{
    if (!IsEnabled(context, severity))
        return;
    IMessageReceiver* const receiver = GetReceiver();
    if (receiver == nullptr || !receiver->AcceptsStream(context.stream))
        return;
    std::ostringstream text;
    (text << ... << pieces);
    receiver->Receive(context.stream, severity, text.str());
}

} // namespace Orvik::System::Log
