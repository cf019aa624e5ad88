// Makes the pictures and the example files of the user guide, by working the program on a sample desktop:
//
//   GuidePictures PROGRAM DIRECTORY DOCUMENTS
//
// DIRECTORY is where the program saves; its path is seen in a picture. DOCUMENTS has the folders Pictures and Examples.
#include "Examples/SampleDesktop.h"
#include "Examples/SampleSession.h"
#include "Tests/Support/Desktop/DirectoryList.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace
{

using namespace Orvik::Examples;
using namespace Orvik::Tests;

constexpr std::chrono::seconds s_fileLimit{10};
/// The message with the path of a saved file is gone by then.
constexpr std::chrono::milliseconds s_messageTime{1200};
constexpr std::chrono::milliseconds s_drawTime{300};

std::string ReadFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/// The pictures side by side on white.
Picture Join(const std::vector<Picture>& parts)
{
    constexpr int gap = 8;
    Picture all{-gap, parts.front().height, {}};
    for (const Picture& part : parts)
        all.width += part.width + gap;
    for (int y = 0; y < all.height; ++y)
        for (std::size_t i = 0; i < parts.size(); ++i)
        {
            for (int x = 0; x < parts[i].width; ++x)
                all.pixels.push_back(parts[i].At(x, y));
            if (i + 1 < parts.size())
                all.pixels.insert(all.pixels.end(), gap, 0xFFFFFFFFU);
        }
    return all;
}

class Guide
{
public:
    Guide(const std::filesystem::path& program, std::filesystem::path directory, std::filesystem::path documents)
        : m_session(program), m_directory(std::move(directory)), m_documents(std::move(documents))
    {
    }

    /// Selecting with the mouse, and the message after it.
    void ShowSelecting()
    {
        ChildProcess process = m_session.Start({"-o", m_directory.string()});
        m_session.DragOver(SampleChart);
        m_session.GetInput().TapKey("equal");
        SavePicture("selecting", CaptureAt({SampleChart.x + SampleChart.width, SampleChart.y + SampleChart.height}));
        m_session.GetInput().ReleaseButton(1);
        KeepExample("Rectangle", WaitForFiles(2));
        SavePicture("saved", CaptureAt({270, 306}));
        const std::string output = EndByEscape(process);
        WriteExample("Answer", output.substr(output.rfind("\n{\n") + 1));
    }

    /// Selecting without a button, and the magnifier at some of its zooms.
    void ShowKeys()
    {
        constexpr Position start{SampleButton.x, SampleButton.y};
        constexpr Position end{SampleButton.x + SampleButton.width, SampleButton.y + SampleButton.height};
        ChildProcess process = m_session.Start({"-o", m_directory.string()});
        m_session.MoveTo({start.x + 1, start.y});
        m_session.TapArrow("Left", start);
        m_session.GetInput().PressKey("space");
        m_session.MoveTo({end.x, end.y - 1});
        m_session.TapArrow("Down", end);
        m_session.GetInput().TapKey("equal");
        SavePicture("keys", CaptureAt(end).Crop({840, 260, 440, 220}));
        m_session.GetInput().ReleaseKey("space");
        (void)WaitForFiles(2);
        std::this_thread::sleep_for(s_messageTime);
        SavePicture("magnifier", CaptureZooms(SampleShed));
        (void)EndByEscape(process);
    }

    /// The third of three rectangles.
    void ShowAnnotating()
    {
        ChildProcess process = m_session.Start({"-a", "true", "-o", m_directory.string()});
        for (const Area& area : {SampleField, SampleButton})
        {
            m_session.DragOver(area);
            m_session.GetInput().ReleaseButton(1);
        }
        std::this_thread::sleep_for(s_messageTime);
        m_session.DragOver({112, 314, 521, 176});
        SavePicture("annotating", m_session.CaptureScreen());
        m_session.GetInput().ReleaseButton(1);
        (void)EndByEscape(process);
        KeepExample("Annotations", WaitForFiles(2));
    }

    /// A polygon before its last corner, and what is saved of it.
    void ShowPolygon()
    {
        const std::string configuration = R"({"configuration": {"SnipBench": {"mode": "Polygon"}}})";
        ChildProcess process = m_session.Start({"-s", "true", "-o", m_directory.string(), "-cj", configuration});
        for (const Position& corner : SampleBed)
        {
            m_session.MoveTo(corner);
            if (corner == SampleBed.back())
                SavePicture("polygon", CaptureAt(corner).Crop({740, 350, 520, 330}));
            m_session.GetInput().Click(1);
        }
        m_session.MoveTo({SampleBed.front().x + 5, SampleBed.front().y + 5});
        m_session.GetInput().Click(1);
        (void)SampleSession::Finish(process);
        const std::filesystem::path json = WaitForFiles(2);
        SavePicture("polygon-saved", LoadPng(std::filesystem::path(json).replace_extension(".png")));
        KeepExample("Polygon", json);
    }

    /// Everything that a configuration adds: two rectangles are done, the third is being drawn.
    void ShowLabelling()
    {
        const std::string section = R"({"size": true, "bright": true, "marks": true, "undo": true, "toggle": true,)"
                                    R"( "labels": ["text field", "button", "chart"], "hints": true, "contrast": true})";
        ChildProcess process = m_session.Start({"-a", "true", "-o", m_directory.string(), "-cj", Configure(section)});
        for (const auto& [area, key] : {std::pair(SampleField, "1"), std::pair(SampleButton, "2")})
        {
            m_session.GetInput().TapKey(key);
            DragSlowly(area);
            m_session.GetInput().ReleaseButton(1);
        }
        std::this_thread::sleep_for(s_messageTime);
        m_session.GetInput().TapKey("3");
        m_session.GetInput().PressKey("F1");
        DragSlowly(SampleChart);
        SavePicture("labelling", m_session.CaptureScreen());
        m_session.GetInput().ReleaseKey("F1");
        m_session.GetInput().ReleaseButton(1);
        (void)EndByEscape(process);
        (void)WaitForFiles(2);
    }

    /// A polygon that the next click closes.
    void ShowContrast()
    {
        const std::string section = R"({"mode": "Polygon", "contrast": true, "size": true, "bright": true})";
        ChildProcess process = m_session.Start({"-o", m_directory.string(), "-cj", Configure(section)});
        for (const Position& corner : SampleBed)
        {
            MoveSlowly(corner);
            m_session.GetInput().Click(1);
        }
        MoveSlowly({SampleBed.front().x + 5, SampleBed.front().y + 5});
        SavePicture("contrast", m_session.CaptureScreen().Crop({740, 350, 520, 330}));
        (void)EndByEscape(process);
    }

    void KeepReturnCodes()
    {
        ChildProcess process = m_session.StartHidden({"-src"});
        WriteExample("ReturnCodes", SampleSession::Finish(process));
    }

private:
    [[nodiscard]] static std::string Configure(const std::string& section)
    {
        return R"({"configuration": {"SnipBench": )" + section + "}}";
    }

    /// Gives the overlay time to follow: the crosshair on a bright selection isn't recognised.
    void MoveSlowly(Position position)
    {
        m_session.GetInput().MoveTo(position);
        std::this_thread::sleep_for(s_drawTime);
    }

    void DragSlowly(const Area& area)
    {
        MoveSlowly({area.x, area.y});
        m_session.GetInput().PressButton(1);
        MoveSlowly({area.x + area.width, area.y + area.height});
    }

    /// The screen once all input so far has been drawn, with the crosshair at that place.
    Picture CaptureAt(Position position)
    {
        // Away and back: what was sent before is handled before.
        m_session.MoveTo({position.x - 1, position.y - 1});
        m_session.MoveTo(position);
        return m_session.CaptureScreen();
    }

    Picture CaptureZooms(Position position)
    {
        constexpr int side = 168;
        std::vector<Picture> parts;
        m_session.GetInput().TapKey("minus"); // from 8 to 2
        m_session.GetInput().TapKey("minus");
        for (int i = 0; i < 3; ++i)
        {
            parts.push_back(CaptureAt(position).Crop({position.x - 12, position.y - 12, side, side}));
            m_session.GetInput().TapKey("equal");
            m_session.GetInput().TapKey("equal");
        }
        return Join(parts);
    }

    std::string EndByEscape(ChildProcess& process)
    {
        m_session.GetInput().TapKey("Escape");
        return SampleSession::Finish(process);
    }

    /// Waits until the directory has so many files more than at the last call, and returns the JSON file among them.
    std::filesystem::path WaitForFiles(std::size_t count)
    {
        const auto end = std::chrono::steady_clock::now() + s_fileLimit;
        while (std::chrono::steady_clock::now() < end)
        {
            const std::vector<std::filesystem::path> files = ListFiles(m_directory);
            std::filesystem::path json;
            std::size_t fresh = 0;
            for (const std::filesystem::path& file : files)
            {
                if (std::binary_search(m_known.begin(), m_known.end(), file))
                    continue;
                ++fresh;
                if (file.extension() == ".json")
                    json = file;
            }
            if (fresh == count && !json.empty())
            {
                m_known = files;
                return json;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        throw std::runtime_error("The program saves nothing.");
    }

    void SavePicture(const std::string& name, const Picture& picture) const
    {
        SavePng(picture, m_documents / "Pictures" / (name + ".png"));
    }

    void KeepExample(const std::string& name, const std::filesystem::path& file) const
    {
        WriteExample(name, ReadFile(file));
    }

    void WriteExample(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_documents / "Examples" / (name + ".json"), std::ios::binary) << text;
    }

    SampleSession m_session;
    std::filesystem::path m_directory;
    std::filesystem::path m_documents;
    std::vector<std::filesystem::path> m_known; ///< files of earlier runs, sorted
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4)
    {
        std::cerr << "usage: GuidePictures PROGRAM DIRECTORY DOCUMENTS\n";
        return 2;
    }
    try
    {
        Guide guide(argv[1], argv[2], argv[3]);
        guide.ShowSelecting();
        guide.ShowKeys();
        guide.ShowAnnotating();
        guide.ShowPolygon();
        guide.ShowLabelling();
        guide.ShowContrast();
        guide.KeepReturnCodes();
        return EXIT_SUCCESS;
    }
    catch (const std::exception& exception)
    {
        std::cerr << "GuidePictures: " << exception.what() << '\n';
        return EXIT_FAILURE;
    }
}
