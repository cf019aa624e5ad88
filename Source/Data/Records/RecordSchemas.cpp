#include "Data/Records/RecordSchemas.h"

#include "Core/System/Runtime/JsonReader.h"

#include <fmt/format.h>
#include <rapidjson/document.h>
#include <rapidjson/schema.h>
#include <rapidjson/stringbuffer.h>

namespace Orvik::Data
{
namespace
{

rapidjson::Document Parse(const char* text)
{
    rapidjson::Document document;
    (void)System::Runtime::ParseJson(text, document); // ours
    return document;
}

} // namespace

struct RecordSchemas::Compiled
{
    rapidjson::Document snipText = Parse(GetSnipSchema());
    rapidjson::Document annotationsText = Parse(GetAnnotationsSchema());
    rapidjson::SchemaDocument snip{snipText};
    rapidjson::SchemaDocument annotations{annotationsText};
};

RecordSchemas::RecordSchemas() : m_compiled(std::make_unique<Compiled>())
{
}

RecordSchemas::~RecordSchemas() = default;

std::string RecordSchemas::FindMismatch(const rapidjson::Document& document, Record::Kind kind) const
{
    rapidjson::SchemaValidator validator(kind == Record::Kind::Snip ? m_compiled->snip : m_compiled->annotations);
    if (document.Accept(validator))
        return {};
    rapidjson::StringBuffer place;
    validator.GetInvalidDocumentPointer().StringifyUriFragment(place);
    return fmt::format("doesn't match the schema: {} at {}", validator.GetInvalidSchemaKeyword(), place.GetString());
}

} // namespace Orvik::Data
