// Drives the program the way a person does, on a virtual X server with a sample desktop:
//
//   SnipDemo PROGRAM DIRECTORY
//
// selects the chart on the sample desktop, and prints the paths of the files that come of it in the directory, and of a
// picture of the overlay that was taken during the selection. Ends with 0 if all of that came about.
#include "Examples/SampleDesktop.h"
#include "Examples/SampleSession.h"
#include "Tests/Support/Desktop/DirectoryList.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>

namespace
{

using namespace Orvik::Examples;
using namespace Orvik::Tests;

void Run(const std::filesystem::path& program, const std::filesystem::path& directory)
{
    std::filesystem::create_directories(directory);
    const std::vector<std::filesystem::path> before = ListFiles(directory);

    SampleSession session(program);
    ChildProcess process = session.Start({"-s", "true", "-o", directory.string()});
    session.DragOver(SampleChart);
    const Picture picture = session.CaptureScreen();
    session.GetInput().ReleaseButton(1);
    std::cout << SampleSession::Finish(process);

    std::filesystem::path stem;
    for (const std::filesystem::path& file : ListFiles(directory))
        if (!std::binary_search(before.begin(), before.end(), file))
        {
            std::cout << file.string() << '\n';
            stem = file.parent_path() / file.stem();
        }
    if (stem.empty())
        throw std::runtime_error("The program wrote no files.");
    const std::filesystem::path overlayFile = stem.string() + "-overlay.png";
    SavePng(picture, overlayFile);
    std::cout << overlayFile.string() << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::cerr << "usage: SnipDemo PROGRAM DIRECTORY\n";
        return 2;
    }
    try
    {
        Run(argv[1], argv[2]);
        return EXIT_SUCCESS;
    }
    catch (const std::exception& exception)
    {
        std::cerr << "SnipDemo: " << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
