#pragma once

#include "Data/Records/Record.h"

#include <memory>
#include <rapidjson/fwd.h>
#include <string>

namespace Orvik::Data
{

/// The published schemas of the files, ready to be held against documents. One thread at a time.
class RecordSchemas
{
public:
    RecordSchemas();
    ~RecordSchemas();
    RecordSchemas(const RecordSchemas&) = delete;
    RecordSchemas& operator=(const RecordSchemas&) = delete;

    /// What keeps the document, which is shallow, from being a file of that kind: the schema's keyword and where. Empty
    /// if it is one.
    [[nodiscard]] std::string FindMismatch(const rapidjson::Document& document, Record::Kind kind) const;

private:
    struct Compiled;

    std::unique_ptr<Compiled> m_compiled;
};

/// The text of a schema as it stands in Docs/Schemas. Made by the build.
[[nodiscard]] const char* GetSnipSchema();
[[nodiscard]] const char* GetAnnotationsSchema();

} // namespace Orvik::Data
