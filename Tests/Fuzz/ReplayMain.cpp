// Runs each target once with each file of its folder: seeds, and whatever a fuzzer has found. The argument is the
// folder that has the targets' folders; a second one names a single target.
#include "Desktops/Desktop.h"
#include "Tests/Fuzz/Targets.h"
#include "Tests/Support/BinaryFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <vector>

namespace
{

namespace fs = std::filesystem;

/// How many files there were.
int Replay(const Orvik::Fuzz::Target& target, const fs::path& folder)
{
    std::vector<fs::path> files;
    if (fs::is_directory(folder))
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files)
    {
        std::printf("%s %s\n", target.name, file.filename().c_str());
        std::fflush(stdout); // the last line says which input ended the process
        const Orvik::Tests::Bytes bytes = Orvik::Tests::ReadBytes(file);
        // A block of exactly that size, so that a sanitizer sees one byte too many.
        const std::unique_ptr<std::uint8_t[]> block(new std::uint8_t[bytes.size()]);
        std::copy(bytes.begin(), bytes.end(), block.get());
        target.run({block.get(), bytes.size()});
    }
    return static_cast<int>(files.size());
}

} // namespace

int main(int count, char** arguments)
{
    if (count < 2)
    {
        std::fprintf(stderr, "usage: %s FOLDER [TARGET]\n", arguments[0]);
        return 2;
    }
    bool isComplete = true;
    for (const Orvik::Fuzz::Target& target : Orvik::Fuzz::GetTargets())
    {
        if (count > 2 && std::strcmp(arguments[2], target.name) != 0)
            continue;
        if (Replay(target, fs::path(arguments[1]) / target.name) == 0)
        {
            std::printf("There is no input for %s.\n", target.name);
            isComplete = false;
        }
    }
    return isComplete ? 0 : 1;
}
