#pragma once

#include "Data/Records/Record.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Orvik::Data
{

/// A picture of a data set. Nothing of it has been held against the picture itself.
struct ImportedPicture
{
    std::filesystem::path source; ///< lies below the data set's folder
    std::string name;             ///< of the picture within the data set, the same at any time
    std::string time;             ///< empty if the data set doesn't say it
    std::int32_t width = 0;       ///< as the data set says it; 0 if it doesn't
    std::int32_t height = 0;
    std::vector<Annotation> annotations; ///< without identifiers
    std::size_t leftOut = 0; ///< rings that a file of the program can't hold: several parts, or rows of pixels
    std::string error;       ///< what is wrong with it; empty if nothing
};

/// One format of data sets, open for reading.
class Importer
{
public:
    Importer() = default;
    virtual ~Importer() = default;
    Importer(const Importer&) = delete;
    Importer& operator=(const Importer&) = delete;

    /// Finds the pictures. What keeps the whole set from being read, or nothing.
    [[nodiscard]] virtual std::string Open() = 0;

    [[nodiscard]] virtual std::size_t GetCount() const = 0;
    /// Where what is said of a picture stands; for findings.
    [[nodiscard]] virtual std::filesystem::path GetPath(std::size_t index) const = 0;
    /// On any thread.
    [[nodiscard]] virtual ImportedPicture Get(std::size_t index) const = 0;

    /// The classes in their order; empty if the set has no such list.
    [[nodiscard]] virtual const std::vector<std::string>& GetClasses() const = 0;
};

[[nodiscard]] std::unique_ptr<Importer> MakeCocoImporter(const std::filesystem::path& folder);
[[nodiscard]] std::unique_ptr<Importer> MakeYoloImporter(const std::filesystem::path& folder);
/// `isZeroBased` as for the exporter.
[[nodiscard]] std::unique_ptr<Importer> MakeVocImporter(const std::filesystem::path& folder, bool isZeroBased);

/// A number of pixels that stands in a file, as a whole one. Nothing if it is far beyond any picture, or no number.
[[nodiscard]] std::optional<std::int32_t> RoundPixels(double value);

/// A box from its edges, cut to the picture where it reaches beyond by a pixel, which rounding does. Nothing if it
/// reaches further, or is empty. A size of 0 is unknown, and cuts nothing.
[[nodiscard]] std::optional<System::Math::Rectangle> FitBox(System::Math::Rectangle box, std::int32_t width,
                                                            std::int32_t height);

/// Closes the ring, cuts it to the picture in the same way, and makes its bounds the annotation's box. False if it
/// doesn't fit, or has no area to be the box of; the annotation is left as it was.
[[nodiscard]] bool TakeRing(Annotation& annotation, Ring ring, std::int32_t width, std::int32_t height);

} // namespace Orvik::Data
