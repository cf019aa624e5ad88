#pragma once

// X11's own.

#include <memory>

namespace Orvik::Desktops::X11
{

/// Frees what Xlib and its extensions return, with the function that belongs to it.
template <auto Free>
struct XDeleter
{
    template <typename T>
    void operator()(T* pointer) const noexcept
    {
        Free(pointer);
    }
};

template <typename T, auto Free>
using XHandle = std::unique_ptr<T, XDeleter<Free>>;

} // namespace Orvik::Desktops::X11
