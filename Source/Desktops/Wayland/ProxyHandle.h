#pragma once

// Wayland's own.

#include <memory>

namespace Orvik::Desktops::Wayland
{

/// Destroys an object of the protocol by the function that is meant for its kind.
template <auto Destroy>
struct ProxyDeleter
{
    template <typename Proxy>
    void operator()(Proxy* proxy) const noexcept
    {
        Destroy(proxy);
    }
};

/// Owns an object of the protocol. It has to go before the connection does.
template <typename Proxy, auto Destroy>
using ProxyHandle = std::unique_ptr<Proxy, ProxyDeleter<Destroy>>;

} // namespace Orvik::Desktops::Wayland
