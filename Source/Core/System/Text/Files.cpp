#include "Core/System/Text/Files.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <system_error>

namespace Orvik::System::Text
{
namespace
{

/// Even a slow disk takes as much within a second.
constexpr std::size_t s_partBytes = std::size_t{64} * 1024;

/// Of the process, like the request to end that asks for it.
std::atomic<std::uint64_t> s_writeProgress = 0;

} // namespace

void CloseOnDestruction::operator()(std::FILE* file) const noexcept
{
    std::fclose(file);
}

bool Write(std::FILE& file, const void* data, std::size_t bytes)
{
    const auto* const begin = static_cast<const std::uint8_t*>(data);
    for (std::size_t written = 0; written < bytes;)
    {
        const std::size_t part = std::min(bytes - written, s_partBytes);
        if (std::fwrite(begin + written, 1, part, &file) != part)
            return false;
        written += part;
        ++s_writeProgress;
    }
    return true;
}

std::uint64_t GetWriteProgress()
{
    return s_writeProgress;
}

Replacement ReplaceFile(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::path part = path;
    part += ".part";
    std::ofstream stream(part, std::ios::binary | std::ios::trunc);
    if (!stream.is_open())
        return Replacement::NotOpened;
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    stream.close();
    std::error_code error;
    if (stream.good())
        std::filesystem::rename(part, path, error);
    if (stream.good() && !error)
        return Replacement::Done;
    const Replacement failure = stream.good() ? Replacement::NotOpened : Replacement::NotWritten;
    std::filesystem::remove(part, error);
    return failure;
}

bool Close(File file)
{
    return std::fclose(file.release()) == 0;
}

} // namespace Orvik::System::Text
