#pragma once

#include "Core/System/Text/Files.h"
#include "Data/Run/OutputFiles.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace Orvik::Data
{

/// A text file that grows while the work goes on and gets its name at the end, so that nothing is kept in memory. What
/// isn't finished goes with the object.
class StreamedFile
{
public:
    /// `path` is the name that the file will have.
    explicit StreamedFile(std::filesystem::path path);
    ~StreamedFile();
    StreamedFile(const StreamedFile&) = delete;
    StreamedFile& operator=(const StreamedFile&) = delete;

    [[nodiscard]] const std::filesystem::path& GetPath() const { return m_path; }

    /// Each answers false if the file can't be made or written.
    [[nodiscard]] bool Open();
    [[nodiscard]] bool Write(std::string_view text);
    /// Adds the whole of another one to the end; that one is closed and gone then.
    [[nodiscard]] bool Append(StreamedFile& other);

    /// What kept the file from its name, or nothing.
    [[nodiscard]] std::string Finish(const OutputFiles& output);

private:
    [[nodiscard]] bool CloseFile();

    std::filesystem::path m_path;
    std::filesystem::path m_work;
    System::Text::File m_file;
    bool m_isWritten = true;
};

} // namespace Orvik::Data
