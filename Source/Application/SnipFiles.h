#pragma once

#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Multimedia/Bitmap.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace Orvik::SnipBench
{

/// Where and how files are written, and what gets their paths.
struct SnipFileSettings
{
    std::filesystem::path directory;
    std::string format; ///< "png" or "bmp": the image's kind and extension
    bool keepMask = false;
    /// Shows the user a text, UTF-8: where a file goes, that it couldn't be written, or that it is taken back. The last
    /// one counts.
    std::function<void(const std::string& text)> showText;
};

/// The two files of one selection.
struct SnipPaths
{
    std::filesystem::path image;
    std::filesystem::path meta;
};

/// Writes the image and the meta file of one selection, under a new identifier. Returns where they are; nothing if the
/// image can't be written. Throws the file-system error "absolute" if the directory can't be made absolute; after any
/// other failure the run goes on, and the user is shown "Not saved: " with the path.
std::optional<SnipPaths> SaveSnip(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings);

/// Removes the files of a selection and shows the image's path. A file that can't be removed stays, and a log line says
/// so. Throws like `SaveSnip`.
void TakeSnipBack(const SnipPaths& paths, const SnipFileSettings& settings);

/// Adds one rectangle to the process's annotation list and rewrites the annotation file; the first one saves the whole
/// capture. False if that isn't possible, and the list is as before. Throws like `SaveSnip`.
bool SaveAnnotation(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings);

/// Removes the last rectangle from the list and rewrites the annotation file. An annotation file has one rectangle at
/// least: with the only one, picture and file are removed as well, and the next one writes both again. False if the
/// list is empty. Throws like `SaveSnip`.
bool TakeAnnotationBack(const SnipFileSettings& settings);

/// Writes `bitmap` in that format. False if it can't be written, with a log line only for an unknown format.
[[nodiscard]] bool SaveImage(const System::Multimedia::Bitmap& bitmap, const std::string& format,
                             const std::string& path);

} // namespace Orvik::SnipBench
