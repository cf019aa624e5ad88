#include "Data/Run/OutputFiles.h"

#include "Core/System/Text/Files.h"
#include "Core/System/Text/Paths.h"

#include <system_error>

namespace Orvik::Data
{
namespace
{

constexpr const char* s_exists = "exists already; --force replaces it";

/// Whether something bears the name, a link that leads nowhere included.
bool IsTaken(const std::filesystem::path& path)
{
    std::error_code error;
    return std::filesystem::symlink_status(path, error).type() != std::filesystem::file_type::not_found;
}

/// Gives `part` its name without replacing a file that came meanwhile, where the system can.
bool PutInNewPlace(const std::filesystem::path& part, const std::filesystem::path& path, bool& isTaken)
{
    std::error_code error;
    std::filesystem::create_hard_link(part, path, error);
    isTaken = error == std::errc::file_exists;
    if (isTaken)
        return false;
    if (error) // a file system without hard links
        std::filesystem::rename(part, path, error);
    else
        std::filesystem::remove(part, error);
    return !error;
}

} // namespace

bool OutputFiles::Claim(const std::filesystem::path& path) const
{
    const std::scoped_lock lock(m_mutex);
    return m_claimed.insert(std::filesystem::hash_value(path)).second;
}

std::string OutputFiles::Save(const std::filesystem::path& path, const Write& write) const
{
    if (!m_mayReplace && IsTaken(path))
        return s_exists;
    if (!Claim(path))
        return "has been written in this run already, for another file";
    std::filesystem::path part = path;
    part += ".part";
    std::error_code error;
    std::filesystem::remove(part, error); // a link is never followed
    bool isTaken = false;
    bool isDone = write(part);
    if (isDone && m_mayReplace)
    {
        std::filesystem::rename(part, path, error);
        isDone = !error;
    }
    else if (isDone)
        isDone = PutInNewPlace(part, path, isTaken);
    if (isDone)
        return {};
    std::filesystem::remove(part, error);
    return isTaken ? s_exists : "can't be written";
}

std::string OutputFiles::SaveText(const std::filesystem::path& path, const std::string& text) const
{
    return Save(path,
                [&text](const std::filesystem::path& part)
                {
                    System::Text::File file = System::Text::OpenFile(part, "wb");
                    if (file == nullptr)
                        return false;
                    const bool isWritten = System::Text::Write(*file, text.data(), text.size());
                    return System::Text::Close(std::move(file)) && isWritten;
                });
}

std::string OutputFiles::SavePng(const std::filesystem::path& path, const System::Multimedia::Bitmap& picture) const
{
    return Save(path, [&picture](const std::filesystem::path& part)
                { return picture.SavePng(System::Text::PathToUtf8(part)); });
}

std::string OutputFiles::Copy(const std::filesystem::path& from, const std::filesystem::path& to) const
{
    return Save(to,
                [&from](const std::filesystem::path& part)
                {
                    std::error_code error;
                    return std::filesystem::copy_file(from, part, error) && !error;
                });
}

std::string MakeFolder(const std::filesystem::path& path)
{
    std::error_code error;
    std::filesystem::create_directories(path, error);
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        return {};
    return "the folder can't be made";
}

} // namespace Orvik::Data
