#pragma once

#include "Core/Graphics/Tools/SnipBench.h"
#include "Core/System/Multimedia/Bitmap.h"

#include <filesystem>
#include <functional>
#include <string>

namespace Orvik::SnipBench
{

/// Where and how files are written, and what gets their paths.
struct SnipFileSettings
{
    std::filesystem::path directory;
    std::string format; ///< "png" or "bmp": the image's kind and extension
    bool keepMask = false;
    /// Shows the user a text, UTF-8: where a file goes, or that it couldn't be written. The last one counts.
    std::function<void(const std::string& text)> showText;
};

/// Writes the image and the meta file of one selection, under a new identifier. Throws the file-system error "absolute"
/// if the directory can't be made absolute; after any other failure the run goes on, and the user is shown "Not saved:
/// " with the path.
void SaveSnip(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings);

/// Adds one rectangle to the process's annotation list and rewrites the annotation file; the first one saves the whole
/// capture. Throws like `SaveSnip`.
void SaveAnnotation(Graphics::Tools::SnipBench::Result& result, const SnipFileSettings& settings);

/// Writes `bitmap` in that format. False if it can't be written, with a log line only for an unknown format.
[[nodiscard]] bool SaveImage(const System::Multimedia::Bitmap& bitmap, const std::string& format,
                             const std::string& path);

} // namespace Orvik::SnipBench
