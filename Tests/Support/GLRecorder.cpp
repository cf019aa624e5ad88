#include "Tests/Support/GLRecorder.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace Orvik::Tests
{

GLRecorder& GLRecorder::GetInstance()
{
    static GLRecorder s_instance;
    return s_instance;
}

std::vector<GLCall> GLRecorder::GetCalls(const std::string& name) const
{
    std::vector<GLCall> calls;
    std::copy_if(m_calls.begin(), m_calls.end(), std::back_inserter(calls),
                 [&name](const GLCall& call) { return call.name == name; });
    return calls;
}

std::vector<std::string> GLRecorder::GetNames() const
{
    std::vector<std::string> names;
    std::transform(m_calls.begin(), m_calls.end(), std::back_inserter(names),
                   [](const GLCall& call) { return call.name; });
    return names;
}

std::size_t GLRecorder::GetLiveCount(const std::string& kind) const
{
    const auto found = m_live.find(kind);
    return found != m_live.end() ? found->second.size() : 0;
}

void GLRecorder::Generate(const char* kind, GLsizei count, GLuint* names)
{
    for (GLuint& name : std::span(names, static_cast<std::size_t>(count)))
    {
        name = MakeName();
        m_live[kind].insert(name);
    }
}

void GLRecorder::Delete(const char* kind, GLsizei count, const GLuint* names)
{
    for (const GLuint name : std::span(names, static_cast<std::size_t>(count)))
        m_live[kind].erase(name);
}

GLint GLRecorder::GetLocation(const std::string& name)
{
    return m_locations.try_emplace(name, static_cast<GLint>(m_locations.size())).first->second;
}

} // namespace Orvik::Tests
