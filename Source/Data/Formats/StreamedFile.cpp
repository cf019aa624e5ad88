#include "Data/Formats/StreamedFile.h"

#include <array>
#include <system_error>
#include <utility>

namespace Orvik::Data
{

StreamedFile::StreamedFile(std::filesystem::path path) : m_path(std::move(path)), m_work(m_path)
{
    m_work += ".work";
}

StreamedFile::~StreamedFile()
{
    if (m_file == nullptr)
        return;
    m_file.reset();
    std::error_code ignored;
    std::filesystem::remove(m_work, ignored);
}

bool StreamedFile::Open()
{
    std::error_code ignored;
    std::filesystem::remove(m_work, ignored); // of a run that was ended; a link is never followed
    m_file = System::Text::OpenFile(m_work, "wb");
    return m_file != nullptr;
}

bool StreamedFile::Write(std::string_view text)
{
    m_isWritten = m_isWritten && m_file != nullptr && System::Text::Write(*m_file, text.data(), text.size());
    return m_isWritten;
}

bool StreamedFile::CloseFile()
{
    const bool isClosed = m_file != nullptr && System::Text::Close(std::move(m_file));
    return isClosed && m_isWritten;
}

bool StreamedFile::Append(StreamedFile& other)
{
    bool isDone = other.CloseFile();
    {
        const System::Text::File file = System::Text::OpenFile(other.m_work, "rb");
        std::array<char, std::size_t{64}* 1024> block = {};
        std::size_t count = 0;
        while (isDone && file != nullptr && (count = std::fread(block.data(), 1, block.size(), file.get())) > 0)
            isDone = Write({block.data(), count});
        isDone = isDone && file != nullptr && std::ferror(file.get()) == 0;
    }
    std::error_code ignored;
    std::filesystem::remove(other.m_work, ignored);
    return isDone;
}

std::string StreamedFile::Finish(const OutputFiles& output)
{
    const bool isWritten = CloseFile();
    std::string error = "can't be written";
    if (isWritten)
    {
        error = output.Save(m_path,
                            [this](const std::filesystem::path& part)
                            {
                                std::error_code failure;
                                std::filesystem::rename(m_work, part, failure);
                                return !failure;
                            });
    }
    std::error_code ignored;
    std::filesystem::remove(m_work, ignored);
    return error;
}

} // namespace Orvik::Data
