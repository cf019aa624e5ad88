// Drives the program the way a person does, on a virtual X server with a sample desktop:
//
//   SnipDemo PROGRAM DIRECTORY
//
// selects one window of the sample desktop, and prints the paths of the files that come of it in the directory, and of
// a picture of the overlay that was taken during the selection. Ends with 0 if all of that came about.
#include "Examples/SampleDesktop.h"
#include "Tests/Support/Desktop/ChildProcess.h"
#include "Tests/Support/Desktop/InputDriver.h"
#include "Tests/Support/Desktop/OverlayWatcher.h"
#include "Tests/Support/Desktop/Screen.h"
#include "Tests/Support/VirtualDisplay.h"

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <set>
#include <stdexcept>
#include <unistd.h>

namespace
{

using namespace Orvik::Tests;
using Orvik::Examples::SampleWindow;

constexpr std::chrono::seconds s_endLimit{20};

std::vector<std::string> MakeEnvironment(const std::string& displayName)
{
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry)
        if (std::string_view(*entry).substr(0, 8) != "DISPLAY=")
            environment.emplace_back(*entry);
    environment.push_back("DISPLAY=" + displayName);
    return environment;
}

std::set<std::filesystem::path> ListFiles(const std::filesystem::path& directory)
{
    std::set<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        files.insert(entry.path());
    return files;
}

void MoveAndWait(InputDriver& input, const OverlayWatcher& overlay, Position position)
{
    input.MoveTo(position);
    if (!overlay.WaitForCrosshair(position))
        throw std::runtime_error("The overlay doesn't follow the mouse.");
}

/// Drags from one corner of the sample window to the other, and returns what the screen shows just before the end.
Picture SelectSampleWindow(InputDriver& input, const OverlayWatcher& overlay, const Screen& screen)
{
    MoveAndWait(input, overlay, {SampleWindow.x, SampleWindow.y});
    input.PressButton(1);
    constexpr int steps = 10;
    for (int step = 1; step <= steps; ++step)
        MoveAndWait(
            input, overlay,
            {SampleWindow.x + SampleWindow.width * step / steps, SampleWindow.y + SampleWindow.height * step / steps});
    Picture picture = screen.CaptureAll();
    input.ReleaseButton(1);
    return picture;
}

void Run(const std::filesystem::path& program, const std::filesystem::path& directory)
{
    std::filesystem::create_directories(directory);
    const std::set<std::filesystem::path> before = ListFiles(directory);

    const VirtualDisplay display;
    Screen screen(display.GetName());
    screen.ShowOnRoot(Orvik::Examples::MakeSampleDesktop(screen.GetWidth(), screen.GetHeight()));
    InputDriver input(display.GetName());
    const OverlayWatcher overlay(display.GetName());

    ChildProcess process({program, {"-s", "true", "-o", directory.string()}, MakeEnvironment(display.GetName()), "."});
    if (!overlay.WaitForCrosshair(input.GetPointer()))
        throw std::runtime_error("The overlay doesn't come up.");
    const Picture picture = SelectSampleWindow(input, overlay, screen);
    const ChildResult result = process.Wait(s_endLimit);
    std::cout << result.standardOutput;
    std::cerr << result.standardError;
    if (result.exitCode != 0)
        throw std::runtime_error("The program failed.");

    std::filesystem::path stem;
    for (const std::filesystem::path& file : ListFiles(directory))
        if (!before.contains(file))
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
