#pragma once

// Private to the Windows half.

#include "Core/Graphics/Renderer/OpenGL.h"
#include "Core/System/Platform/Headers/WindowsHeaders.h"

#include <GL/wglext.h>

namespace Orvik::Graphics::Renderer
{

/// The system's functions that a context is made with. A table, so that a test can stand for drivers that lack
/// something.
struct WglCalls
{
    decltype(&::GetDC) getDC = &::GetDC;
    decltype(&::ReleaseDC) releaseDC = &::ReleaseDC;
    decltype(&::CreateWindowExW) createWindow = &::CreateWindowExW;
    decltype(&::DestroyWindow) destroyWindow = &::DestroyWindow;
    decltype(&::SetWindowTextW) setWindowText = &::SetWindowTextW;
    decltype(&::ChoosePixelFormat) choosePixelFormat = &::ChoosePixelFormat;
    decltype(&::DescribePixelFormat) describePixelFormat = &::DescribePixelFormat;
    decltype(&::SetPixelFormat) setPixelFormat = &::SetPixelFormat;
    decltype(&::SwapBuffers) swapBuffers = &::SwapBuffers;
    decltype(&::wglCreateContext) createContext = &::wglCreateContext;
    decltype(&::wglMakeCurrent) makeCurrent = &::wglMakeCurrent;
    decltype(&::wglDeleteContext) deleteContext = &::wglDeleteContext;
    decltype(&::wglGetProcAddress) getProcAddress = &::wglGetProcAddress;
};

[[nodiscard]] inline WglCalls& GetWglCalls()
{
    static WglCalls s_calls;
    return s_calls;
}

} // namespace Orvik::Graphics::Renderer
