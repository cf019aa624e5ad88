#pragma once

#include "Core/System/Multimedia/Bitmap.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_set>

namespace Orvik::Data
{

/// How the files of one run are written: nothing that exists is touched unless it may be replaced, and none is written
/// twice. A file is written beside its place, under its name with ".part" after it, and then renamed, so that what
/// bears the name is whole. On any thread.
class OutputFiles
{
public:
    explicit OutputFiles(bool mayReplace) : m_mayReplace(mayReplace) {}
    OutputFiles(const OutputFiles&) = delete;
    OutputFiles& operator=(const OutputFiles&) = delete;

    /// Each answers what kept the file from being written; nothing if it is there.
    [[nodiscard]] std::string SaveText(const std::filesystem::path& path, const std::string& text) const;
    [[nodiscard]] std::string SavePng(const std::filesystem::path& path,
                                      const System::Multimedia::Bitmap& picture) const;
    /// The same bytes.
    [[nodiscard]] std::string Copy(const std::filesystem::path& from, const std::filesystem::path& to) const;

    /// What `write` makes under the name that it is given becomes `path`.
    using Write = std::function<bool(const std::filesystem::path& part)>;
    [[nodiscard]] std::string Save(const std::filesystem::path& path, const Write& write) const;

private:
    /// False if the run has written, or is writing, a file of that name.
    [[nodiscard]] bool Claim(const std::filesystem::path& path) const;

    bool m_mayReplace;
    mutable std::mutex m_mutex;
    mutable std::unordered_set<std::size_t> m_claimed; ///< hashes: names would take more memory than all else
};

/// Makes a folder with its parents; one that is there is as good. What kept it from being made, or nothing.
[[nodiscard]] std::string MakeFolder(const std::filesystem::path& path);

} // namespace Orvik::Data
