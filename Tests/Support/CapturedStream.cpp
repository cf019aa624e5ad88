#include "Tests/Support/CapturedStream.h"

#include "Core/System/Text/Files.h"
#include "Tests/Support/BinaryFile.h"

#include <stdexcept>

namespace Orvik::Tests
{

CapturedStream::CapturedStream() : m_file(System::Text::OpenFile(m_directory.GetPath() / "stream", "wb").release())
{
    if (m_file == nullptr)
        throw std::runtime_error("No stream.");
}

CapturedStream::~CapturedStream()
{
    std::fclose(m_file);
}

std::string CapturedStream::Read() const
{
    std::fflush(m_file);
    return ReadText(m_directory.GetPath() / "stream");
}

} // namespace Orvik::Tests
