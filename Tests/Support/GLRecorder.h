#pragma once

#include "Desktops/OpenGL.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace Orvik::Tests
{

/// One call that reached the recorder.
struct GLCall
{
    std::string name;
    /// The arguments as given. A pointer is 0 if it is null and 1 if not; an attribute's offset is the offset.
    /// `float`s, matrices and the like that a pointer points to are in `data`.
    std::vector<double> arguments;
    std::string text;            ///< the name or source that a pointer points to
    std::vector<std::byte> data; ///< the bytes that a pointer points to, if the call says how many

    /// What a pointer points to, as elements of that type.
    template <typename Element>
    [[nodiscard]] std::vector<Element> GetElements() const
    {
        std::vector<Element> elements(data.size() / sizeof(Element));
        auto* const bytes = reinterpret_cast<std::byte*>(elements.data());
        for (std::size_t index = 0; index < elements.size() * sizeof(Element); ++index)
            bytes[index] = data[index];
        return elements;
    }
};

/// The OpenGL of the null desktop: draws nothing, records every call, and fails where a test says so. The context's own
/// operations are recorded as "CreateContext", "SetTitle", "DestroyContext" and "SwapBuffers". One thread.
class GLRecorder
{
public:
    [[nodiscard]] static GLRecorder& GetInstance();

    /// Restores the start values.
    void Reset() { *this = GLRecorder(); }

    [[nodiscard]] const std::vector<GLCall>& GetCalls() const { return m_calls; }
    /// The calls of one name, in order.
    [[nodiscard]] std::vector<GLCall> GetCalls(const std::string& name) const;
    /// The names of all calls, in order.
    [[nodiscard]] std::vector<std::string> GetNames() const;
    void ClearCalls() { m_calls.clear(); }

    /// How many objects of a kind ("Buffers", "VertexArrays", "Textures") exist.
    [[nodiscard]] std::size_t GetLiveCount(const std::string& kind) const;

    // Set by tests.
    bool contextCreates = true;
    std::string missingEntryPoint; ///< the name of an entry point that the driver lacks
    std::string version = "3.3.0 Null";
    GLenum failingStage = 0; ///< the kind of shader that doesn't compile
    bool programsLink = true;
    GLint maximumTextureSize = 16384;
    bool tellsBlockSizes = true;
    GLint blockSize = 136; ///< of every uniform block
    std::string infoLog;   ///< what is wrong with a shader or program

    // Called by the recording functions.
    template <typename... Arguments>
    GLCall& Record(const char* name, Arguments... arguments)
    {
        return m_calls.emplace_back(GLCall{name, {ToNumber(arguments)...}, {}, {}});
    }
    void Generate(const char* kind, GLsizei count, GLuint* names);
    void Delete(const char* kind, GLsizei count, const GLuint* names);
    [[nodiscard]] GLuint MakeName() { return ++m_lastName; }
    /// A uniform's location: each name has one for all programs, in the order of the calls, from 0.
    [[nodiscard]] GLint GetLocation(const std::string& name);

private:
    template <typename Argument>
    static double ToNumber(Argument argument)
    {
        if constexpr (std::is_pointer_v<Argument>)
            return argument == nullptr ? 0.0 : 1.0;
        else
            return static_cast<double>(argument);
    }

    std::vector<GLCall> m_calls;
    std::map<std::string, std::set<GLuint>> m_live;
    std::map<std::string, GLint> m_locations;
    GLuint m_lastName = 0;
};

} // namespace Orvik::Tests
