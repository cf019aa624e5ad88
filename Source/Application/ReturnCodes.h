#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Orvik::SnipBench
{

/// A named group of return codes. The texts are constants.
struct ReturnCodeParameter
{
    std::uint32_t id;
    std::string_view name;
};

struct ReturnCode
{
    std::uint32_t parameterId;
    std::int32_t code;
    std::string_view name;
};

/// The process-wide table of what a run can end with, and its JSON form.
class ReturnCodeRegistry
{
public:
    struct NamedCode
    {
        std::int32_t code;
        std::string_view name;
    };

    using Value = std::variant<bool, std::int32_t, std::string>;
    using DataMap = std::map<std::string, Value>;
    /// Fills the map with what belongs to a code beyond its name. False if there is nothing.
    using DataProvider = std::function<bool(std::uint32_t parameterId, std::int32_t code, DataMap& data)>;

    [[nodiscard]] static ReturnCodeRegistry& GetInstance();

    /// False if the id exists; nothing is added then.
    bool AddParameter(std::uint32_t id, std::string_view name);
    /// False if the parameter doesn't exist. Repeated codes aren't looked for.
    bool AddCodes(std::uint32_t parameterId, std::span<const NamedCode> codes);
    /// Writes the first code of that name to `code`; false, and `code` as it was, if there is none.
    [[nodiscard]] bool FindCode(std::uint32_t parameterId, std::string_view name, std::int32_t& code) const;
    /// Writes the JSON object of a code to `text`; false, and `text` as it was, if there is no such code.
    [[nodiscard]] bool WriteCode(std::uint32_t parameterId, std::int32_t code, std::string& text) const;
    /// Writes the table as JSON to `text`. A filter that isn't 0 leaves out the parameters with bits beyond it.
    bool WriteAll(std::uint32_t filter, std::string& text) const;

    void SetDataProvider(DataProvider provider) { m_dataProvider = std::move(provider); }

private:
    std::vector<ReturnCodeParameter> m_parameters;
    std::vector<ReturnCode> m_codes;
    DataProvider m_dataProvider; ///< empty in this program
};

/// Enters this program's codes.
void RegisterReturnCodes(ReturnCodeRegistry& registry);

namespace ReturnCodeName
{
inline constexpr std::string_view Success = "Success";
inline constexpr std::string_view WrongParameters = "Wrong Parameter(s)";
inline constexpr std::string_view LoadFileFailed = "Failed to load file";
inline constexpr std::string_view InitializeSystemsFailed = "Failed to initialize systems";
inline constexpr std::string_view CreateWindowFailed = "Failed to create window";
inline constexpr std::string_view InitializeRendererFailed = "Failed to initialize renderer";
} // namespace ReturnCodeName

} // namespace Orvik::SnipBench
