// What saving a picture as PNG costs, with Google Benchmark: for each of the sample pictures the time of a whole file
// and its size, beside libpng's own writer at its defaults. Time is the wall's: large pictures are made by several
// threads.
#include "Tests/Support/PlainPng.h"
#include "Tests/Support/SamplePictures.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <string>
#include <utility>

namespace
{

using Orvik::System::Multimedia::Bitmap;

void Save(benchmark::State& state, const Bitmap& bitmap)
{
    const Orvik::Tests::TemporaryDirectory directory;
    const std::filesystem::path path = directory.GetPath() / "picture.png";
    for ([[maybe_unused]] const auto step : state)
    {
        if (!bitmap.SavePng(path.string()))
            state.SkipWithError("The file can't be written.");
    }
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(path));
}

void SaveByLibpng(benchmark::State& state, const Bitmap& bitmap)
{
    std::size_t bytes = 0;
    for ([[maybe_unused]] const auto step : state)
        bytes = Orvik::Tests::MakePlainPng(bitmap).size();
    state.counters["bytes"] = static_cast<double>(bytes);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (const auto& [width, height] : {std::pair{1280, 720}, std::pair{1920, 1080}, std::pair{3840, 2160}})
    {
        for (const char* const name : {"photo", "text", "interface", "noise", "gradient"})
        {
            const std::string title = std::to_string(width) + "x" + std::to_string(height) + "/" + name;
            const auto make = [name, width = width, height = height]
            {
                return Orvik::Tests::MakeSamplePicture(name, static_cast<std::uint16_t>(width),
                                                       static_cast<std::uint16_t>(height));
            };
            benchmark::RegisterBenchmark((title + "/SavePng").c_str(),
                                         [make](benchmark::State& state) { Save(state, make()); })
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
            benchmark::RegisterBenchmark((title + "/libpng").c_str(),
                                         [make](benchmark::State& state) { SaveByLibpng(state, make()); })
                ->Unit(benchmark::kMillisecond)
                ->UseRealTime();
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
