#pragma once

#include "Tests/Support/TemporaryDirectory.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace Orvik::Tests
{

/// A copy of the shaders and the font that a test may spoil. While it lives it is the working directory, from which a
/// program outside a directory "Binaries" takes its resources.
class ResourceCopy
{
public:
    ResourceCopy() : m_previous(std::filesystem::current_path())
    {
        std::filesystem::create_directory(m_directory.GetPath() / "Resources");
        std::filesystem::copy("Resources/UI", m_directory.GetPath() / "Resources/UI",
                              std::filesystem::copy_options::recursive);
        std::filesystem::current_path(m_directory.GetPath());
    }

    ~ResourceCopy()
    {
        std::error_code ignored;
        std::filesystem::current_path(m_previous, ignored);
    }

    ResourceCopy(const ResourceCopy&) = delete;
    ResourceCopy& operator=(const ResourceCopy&) = delete;

    // The rest is named by file name. What exists is replaced.

    static void WriteShader(const std::string& name, const std::string& text)
    {
        std::ofstream(GetShader(name), std::ios::binary) << text;
    }
    static void RemoveShader(const std::string& name) { std::filesystem::remove(GetShader(name)); }
    static void MakeShaderDirectory(const std::string& name)
    {
        std::filesystem::remove(GetShader(name));
        std::filesystem::create_directory(GetShader(name));
    }
    static void WriteFont(const std::string& contents)
    {
        std::ofstream("Resources/UI/Textures/Mulish-Regular.ttf", std::ios::binary) << contents;
    }
    static void RemoveFont() { std::filesystem::remove("Resources/UI/Textures/Mulish-Regular.ttf"); }

private:
    static std::filesystem::path GetShader(const std::string& name) { return "Resources/UI/Shaders/" + name; }

    std::filesystem::path m_previous;
    TemporaryDirectory m_directory;
};

} // namespace Orvik::Tests
