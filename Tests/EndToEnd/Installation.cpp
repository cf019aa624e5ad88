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

} // namespace Orvik::Tests
