#pragma once

#include <memory>
#include <rapidjson/document.h>
#include <rapidjson/schema.h>

namespace Orvik::System::Runtime
{

// What `ApplicationConfigCache` keeps of the JSON library, outside of its header.

struct JsonDocument
{
    std::unique_ptr<rapidjson::Document> document; ///< null if there wasn't enough memory
};

struct JsonSchema
{
    std::unique_ptr<rapidjson::SchemaDocument> schema; ///< null if none was compiled
};

} // namespace Orvik::System::Runtime
