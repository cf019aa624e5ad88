#include "Tests/EndToEnd/Installation.h"

namespace Orvik::Tests
{

Installation::Installation()
{
    namespace fs = std::filesystem;
    const fs::path built = ORVIK_PROGRAM;
    const fs::path root = built.parent_path().parent_path().parent_path();
    const fs::path& directory = m_directory.GetPath();
    const fs::path binaries = directory / "Binaries" / "Test";
    for (const fs::path& folder : {binaries, GetHome(), GetWork()})
        fs::create_directories(folder);
    fs::create_directory_symlink(root / "Resources", directory / "Resources");

    m_program = binaries / directory.filename();
    fs::copy_file(built, m_program);
}

void Installation::OpenToOthers() const
{
    namespace fs = std::filesystem;
    const fs::path& directory = m_directory.GetPath();
    // Who may not look into the source tree gets a copy.
    const fs::path resources = directory / "Resources";
    const fs::path original = fs::read_symlink(resources);
    fs::remove(resources);
    fs::copy(original, resources, fs::copy_options::recursive);

    constexpr fs::perms enter = fs::perms::group_exec | fs::perms::others_exec;
    constexpr fs::perms write = fs::perms::group_write | fs::perms::others_write;
    fs::permissions(directory, enter, fs::perm_options::add);
    for (const fs::path& folder : {GetHome(), GetWork()})
        fs::permissions(folder, enter | write, fs::perm_options::add);
}

} // namespace Orvik::Tests
