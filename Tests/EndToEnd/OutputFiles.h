#pragma once

#include "Tests/Support/Desktop/Picture.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace Orvik::Tests
{

/// What a caller finds of one snip, or of one annotation run.
struct SnipFiles
{
    std::string id; ///< the stem of both files
    std::filesystem::path image;
    std::string json;
};

/// Waits until the directory holds so many JSON files, each with an image of that extension beside it, and nothing
/// else; oldest first. Throws `std::runtime_error` if it doesn't come to that in time.
[[nodiscard]] std::vector<SnipFiles> WaitForSnips(const std::filesystem::path& directory, std::size_t count,
                                                  const std::string& extension = ".png");

/// The text of a rectangle's meta file, to compare with: identifier and time are taken over from `files` after they
/// have been checked. All three texts are of files that match the schemas in Docs.
[[nodiscard]] std::string MakeMetaText(const SnipFiles& files, int width, int height);
/// The text of a polygon's meta file with these corners, likewise.
[[nodiscard]] std::string MakePolygonText(const SnipFiles& files, int width, int height,
                                          const std::vector<Position>& corners);
/// The text of an annotation file with these rectangles, likewise.
[[nodiscard]] std::string MakeAnnotationText(const SnipFiles& files, int width, int height,
                                             const std::vector<Area>& rectangles);

/// The text's "creationDateTime", checked to be a UTC time with seven digits of the second's fraction.
[[nodiscard]] std::string GetCreationTime(const std::string& json);

/// The present in the form of "creationDateTime".
[[nodiscard]] std::string FormatNow();

/// A 32-bit BMP file with rows top-down, checked field by field; throws `std::runtime_error` for any other.
[[nodiscard]] Picture LoadBmp(const std::filesystem::path& file);

} // namespace Orvik::Tests
