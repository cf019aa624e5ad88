#include "Core/System/Text/Paths.h"
#include "Data/Records/PictureFile.h"
#include "Data/Search/Correlation.h"
#include "Data/Search/ExactSearch.h"
#include "Data/Verbs/Verb.h"

#include <charconv>
#include <fmt/format.h>

namespace Orvik::Data
{
namespace
{

constexpr double s_leastScore = 0.9;
constexpr std::int64_t s_mostPlaces = 1'000;

std::optional<double> ReadScore(const Arguments& arguments)
{
    const std::optional<std::string> text = arguments.Get("--score");
    if (!text)
        return s_leastScore;
    double score = 0;
    const char* const end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, score);
    if (error != std::errc() || stop != end || !(score > 0.0 && score <= 1.0))
        return std::nullopt;
    return score;
}

std::string MakeJson(const std::vector<FoundPlace>& places, const SearchPicture& wanted)
{
    std::string json = "[";
    for (const FoundPlace& place : places)
    {
        json += json.size() > 1 ? "," : "";
        json += fmt::format("{{\"x\":{},\"y\":{},\"width\":{},\"height\":{},\"score\":{:.6f}}}", place.x, place.y,
                            wanted.width, wanted.height, place.score);
    }
    return json + "]";
}

std::optional<System::Multimedia::Bitmap> Load(const std::string& name, Report& report)
{
    const std::filesystem::path path = System::Text::PathFromUtf8(name);
    std::optional<System::Multimedia::Bitmap> picture = LoadPicture(path);
    if (!picture)
        report.Fail(path, "isn't a PNG or BMP picture that can be read");
    return picture;
}

std::string Run(const Arguments& arguments, Report& report)
{
    const std::optional<double> score = ReadScore(arguments);
    if (!score)
        return "--score takes a number above 0, up to 1";
    std::string error;
    const auto most = static_cast<std::size_t>(GetInteger(arguments, "--limit", s_mostPlaces, 1, 100'000, error));
    if (!error.empty())
        return error;
    const std::optional<System::Multimedia::Bitmap> small = Load(arguments.operands[0], report);
    const std::optional<System::Multimedia::Bitmap> large = Load(arguments.operands[1], report);
    if (!small || !large)
        return {};

    const SearchTemplate wanted = MakeSearchTemplate(*small);
    const SearchPicture picture = MakeSearchPicture(*large);
    // One more than is printed, to know whether there are more.
    std::vector<FoundPlace> places = FindExact(wanted, picture, most + 1);
    const bool isExact = !places.empty() || arguments.Has("--exact");
    if (!isExact && CanCorrelate(wanted, picture))
        places = FindSimilar(wanted, picture, *score, most + 1);
    const bool hasMore = places.size() > most;
    if (hasMore)
        places.pop_back();
    report.AddJson("method", isExact ? "\"exact\"" : "\"correlation\"");
    report.AddJson("places", MakeJson(places, wanted.picture));
    report.AddJson("more", hasMore ? "true" : "false");
    if (places.empty())
        report.RaiseExitCode(ExitCode::Findings);
    return {};
}

} // namespace

Verb GetFindVerb()
{
    return {{"find",
             "TEMPLATE PICTURE",
             2,
             2,
             "Find where a small picture lies on a large one; prints JSON in any case",
             "All places that are equal in each pixel, from the top; without one, those that are much alike, the\n"
             "best first, by normalised correlation. Fully transparent pixels of the template don't count. If there\n"
             "are more places than --limit, \"more\" is true. The exit code is 1 if there is no place.\n",
             {{"--score", "NUMBER", "How much alike a place has to be, up to 1 (0.9)"},
              {"--exact", nullptr, "Look for equal pixels alone"},
              {"--limit", "NUMBER", "The most places that are printed, 1 to 100000 (1000)"}}},
            &Run};
}

} // namespace Orvik::Data
