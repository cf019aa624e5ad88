#include "Core/System/Text/Files.h"

#include <chrono>
#include <fstream>
#include <system_error>
#include <thread>

namespace Orvik::System::Text
{

void CloseOnDestruction::operator()(std::FILE* file) const noexcept
{
    std::fclose(file);
}

namespace
{

/// How long another program may keep a file from being replaced, and how often that is tried.
constexpr std::chrono::seconds s_heldLimit{1};
constexpr std::chrono::milliseconds s_heldPeriod{20};

/// Gives the written part the file's name. A reader that doesn't share the file, a search or a backup, is done soon.
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
