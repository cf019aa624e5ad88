#include "Core/System/Text/Files.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <fstream>
#include <system_error>
#include <thread>

namespace Orvik::System::Text
{
namespace
{

/// Even a slow disk writes this many bytes within a second.
constexpr std::size_t s_partBytes = std::size_t{64} * 1024;

/// One for the process, like the request to end that reads it.
std::atomic<std::uint64_t> s_writeProgress = 0;

/// How long to wait for another program that keeps the file from being replaced, and how often to try.
constexpr std::chrono::seconds s_heldLimit{1};
constexpr std::chrono::milliseconds s_heldPeriod{20};

/// Gives the written part the file's name. A reader that doesn't share the file, such as a search or a backup, soon
/// ends.
Replacement PutInPlace(const std::filesystem::path& part, const std::filesystem::path& path)
{
    const auto end = std::chrono::steady_clock::now() + s_heldLimit;
    while (true)
    {
        std::error_code error;
        std::filesystem::rename(part, path, error);
        if (!error)
            return Replacement::Done;
        if (!IsHeldPlatform(path, error))
            return Replacement::NotOpened;
        if (std::chrono::steady_clock::now() >= end)
            return Replacement::Held;
        std::this_thread::sleep_for(s_heldPeriod);
    }
}

} // namespace

void CloseOnDestruction::operator()(std::FILE* file) const noexcept
{
    std::fclose(file);
}

NewFile OpenNewFile(const std::filesystem::path& path)
{
    constexpr int maxNumber = 1'000'000;
    bool isTaken = false;
    NewFile made{OpenNewFilePlatform(path, isTaken), path};
    for (int number = 1; isTaken && number < maxNumber; ++number)
    {
        made.path = path.parent_path() / path.stem();
        made.path += "_" + std::to_string(number);
        made.path += path.extension();
        made.file = OpenNewFilePlatform(made.path, isTaken);
    }
    return made;
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
    const Replacement result = stream.good() ? PutInPlace(part, path) : Replacement::NotWritten;
    if (result != Replacement::Done)
    {
        std::error_code ignored;
        std::filesystem::remove(part, ignored);
    }
    return result;
}

bool Close(File file)
{
    return std::fclose(file.release()) == 0;
}

} // namespace Orvik::System::Text
