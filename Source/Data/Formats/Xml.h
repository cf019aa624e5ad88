#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvik::Data
{

/// An element of an XML file. Attributes aren't kept.
struct XmlElement
{
    std::string name;
    std::string text; ///< what stands right in it, spaces at both ends left out
    std::vector<XmlElement> children;

    /// The first child of that name; null without one.
    [[nodiscard]] const XmlElement* Find(std::string_view child) const;
    /// Its text; empty without one.
    [[nodiscard]] std::string_view GetText(std::string_view child) const;
};

/// Reads a whole file of elements, texts, comments and the five entities and those by number. Nothing if it isn't well
/// formed, has a document type, which could define anything, or is nested deeper or larger than a description of a
/// picture has any reason to be.
[[nodiscard]] std::optional<XmlElement> ReadXml(std::string_view text);

/// The text with what has a meaning in XML written as entities.
[[nodiscard]] std::string EscapeXml(std::string_view text);

} // namespace Orvik::Data
