#pragma once

#include "Core/Graphics/Renderer/Renderer.h"
#include "Tests/Support/GLRecorder.h"
#include "Tests/Support/LogRecorder.h"
#include "Tests/Support/TestApplication.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace Orvik::Tests
{

inline std::string FormatCall(const std::string& name, const std::vector<double>& arguments)
{
    return fmt::format("{}({})", name, fmt::join(arguments, ", "));
}

/// A call as `RecordedRenderer::GetCalls` has it.
template <typename... Arguments>
std::string Call(const std::string& name, Arguments... arguments)
{
    return FormatCall(name, {static_cast<double>(arguments)...});
}

/// A renderer whose OpenGL is the recorder.
class RecordedRenderer : public testing::Test
{
protected:
    static constexpr auto s_window = Desktops::NativeWindow{77};

    // What the recorder names and locates after `Start`: it counts up.
    static constexpr GLuint s_lineProgram = 3;
    static constexpr GLuint s_lineArray = 4;
    static constexpr GLuint s_pointBuffer = 5;
    static constexpr GLuint s_polygonProgram = 8;
    static constexpr GLuint s_textureProgram = 11;
    static constexpr GLuint s_textureArray = 12;
    static constexpr GLuint s_textProgram = 17;
    static constexpr GLuint s_textArray = 18;
    static constexpr GLuint s_atlas = 20;
    static constexpr GLuint s_quadProgram = 23;
    static constexpr GLuint s_quadArray = 24;
    static constexpr GLuint s_quadBuffer = 25;
    static constexpr GLuint s_sharedBuffer = 26;
    static constexpr GLuint s_nextName = 27;
    static constexpr GLint s_model = 0;
    static constexpr GLint s_color = 1;
    static constexpr GLint s_thickness = 2;
    static constexpr GLint s_dashLength = 3;
    static constexpr GLint s_gapLength = 4;
    static constexpr GLint s_instanceModels = 5;
    static constexpr GLint s_instanceIndices = 6;

    RecordedRenderer() { m_gl.Reset(); }
    ~RecordedRenderer() override { m_gl.Reset(); }

    /// Initialises the renderer and forgets the calls of that.
    void Start()
    {
        ASSERT_TRUE(m_renderer.Initialize(s_window, "TestClass"));
        m_renderer.Resize(s_window, 200, 100);
        m_gl.ClearCalls();
    }

    /// The calls since the last time.
    std::vector<std::string> TakeCalls()
    {
        std::vector<std::string> calls;
        for (const Tests::GLCall& call : m_gl.GetCalls())
            calls.push_back(FormatCall(call.name, call.arguments));
        m_gl.ClearCalls();
        return calls;
    }

    TestApplication m_application;
    LogRecorder m_log;
    Tests::GLRecorder& m_gl = Tests::GLRecorder::GetInstance();
    Graphics::Renderer::Renderer m_renderer;
};

} // namespace Orvik::Tests
