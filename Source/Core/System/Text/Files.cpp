#include "Core/System/Text/Files.h"

#include <fstream>
#include <system_error>

namespace Orvik::System::Text
{

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
