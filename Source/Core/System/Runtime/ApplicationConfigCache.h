#pragma once

#include "Core/System/Error/Assertion.h"
#include "Core/System/Runtime/Config.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvik::System::Runtime
{

struct JsonDocument; ///< holds a parsed document
struct JsonSchema;   ///< holds a compiled schema

/// The configuration document, its schema, the typed configurations, and the two directories from which everything else
/// is found. Main thread only.
class ApplicationConfigCache
{
public:
    ApplicationConfigCache();
    ~ApplicationConfigCache();
    ApplicationConfigCache(const ApplicationConfigCache&) = delete;
    ApplicationConfigCache& operator=(const ApplicationConfigCache&) = delete;

    /// Finds the directories and loads the schema. `executablePath` is the first command-line argument or null; it is
    /// used if the system doesn't report the program's path. Always true: a missing or broken schema is logged, and
    /// documents aren't validated then.
    bool Initialize(const char* executablePath);

    /// Replaces the document by the parsed text. False if it can't be parsed or doesn't match the schema; there is no
    /// document then, and `GetError` says why.
    bool LoadFromString(const std::string& json);

    /// Replaces the document by a file's. False if the file can't be opened, which leaves the document as it was; can't
    /// be parsed, which leaves an empty one; or doesn't match the schema, which leaves none. `GetError` says why; the
    /// first two are logged as well.
    bool LoadFromFile(const std::filesystem::path& file);

    /// Looks for a schema file below "Resources/Schemas" beside the directory "Binaries" that contains the program, or
    /// below the working directory if there is no "Binaries". False if there is no such file; `path` is unchanged then.
    /// Throws the file-system error "exists" if that can't be found out.
    [[nodiscard]] bool FindSchemaFile(const std::string& name, std::filesystem::path& path) const;

    /// Checks a document. False if it doesn't match, or is nested too deeply to be checked; `error` says why.
    [[nodiscard]] static bool ValidateDocument(const JsonSchema* schema, const JsonDocument* document,
                                               std::string& error);

    /// The directory of the running program, from which resources and default output directories are found. Empty if it
    /// is unknown.
    [[nodiscard]] const std::filesystem::path& GetRootPath() const { return m_executableDirectory; }

    /// The user's data directory: ".orvik" in the home directory.
    [[nodiscard]] const std::filesystem::path& GetDataDirectory() const { return m_dataDirectory; }

    /// The text of the last failure.
    [[nodiscard]] const std::string& GetError() const { return m_error; }

    /// The configuration of that type, or null. Stays valid for the life of the cache.
    [[nodiscard]] IConfig* GetConfig(std::uint32_t typeId) const;

    /// Makes the one configuration of its type from the arguments: defaults, then its section of the document.
    /// `Config_Type` names the section as `s_systemName`. A second one, and a section that it refuses, are assertion
    /// failures.
    template <typename Config_Type, typename... Arguments>
    Config_Type* AddConfig(Arguments&&... arguments)
    {
        ORVIK_ASSERT(GetConfig(Config_Type::s_typeID) == nullptr, "Config already exists.");
        auto owner = std::make_unique<Config_Type>(std::forward<Arguments>(arguments)...);
        Config_Type* const config = owner.get();
        m_configs.push_back({Config_Type::s_typeID, std::move(owner)});
        const bool success = InitializeConfig(config, Config_Type::s_systemName);
        ORVIK_ASSERT(success, "Failed to initialize configuration.");
        return config;
    }

    /// Gives `config` its defaults and applies the section `name` if the document has it. False if the section is
    /// refused.
    [[nodiscard]] bool InitializeConfig(IConfig* config, std::string_view name);

    /// The object under "configuration" with that name, or null. A section that is no object counts as missing.
    [[nodiscard]] const rapidjson::Value* FindSection(std::string_view name) const;

private:
    struct Record
    {
        std::uint32_t typeId;
        std::unique_ptr<IConfig> config;
    };

    void LoadSchema(const std::filesystem::path& path);
    /// Parses and validates. Null after a failure; `m_error` says why.
    [[nodiscard]] std::unique_ptr<JsonDocument> ReadDocument(const std::string& json);
    /// Keeps the text of a failure, logs it and returns false.
    bool FailLoading(std::string error);

    std::filesystem::path m_dataDirectory;
    std::filesystem::path m_executableDirectory;
    std::unique_ptr<JsonDocument> m_document;
    std::unique_ptr<JsonSchema> m_schema;
    std::string m_error;
    std::vector<Record> m_configs;
};

} // namespace Orvik::System::Runtime
