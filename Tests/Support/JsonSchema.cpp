#include "Tests/Support/JsonSchema.h"

#include "Tests/Support/BinaryFile.h"

#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>
#include <stdexcept>

namespace Orvik::Tests
{

std::string FindMismatch(const std::string& json, const std::string& schema)
{
    rapidjson::Document schemaText;
    schemaText.Parse(ReadText("Docs/Schemas/" + schema + ".json").c_str());
    if (schemaText.HasParseError() || !schemaText.IsObject())
        throw std::runtime_error("No schema: " + schema);
    rapidjson::Document document;
    document.Parse(json.c_str());
    if (document.HasParseError())
        return "not JSON";

    const rapidjson::SchemaDocument compiled(schemaText);
    rapidjson::SchemaValidator validator(compiled);
    if (document.Accept(validator))
        return {};
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().StringifyUriFragment(place);
    return std::string(validator.GetInvalidSchemaKeyword()) + " at " + place.GetString();
}

} // namespace Orvik::Tests
