#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace kes::tool {

using Json = nlohmann::ordered_json;

/// The start of the document that a command prints with `--json`: an object with "format", the number of the
/// shape of all these documents, and "command". The command adds what it has to say of the whole ("system",
/// "file") and its "results", always a list.
Json JsonDocument(const std::string& command);

/// Prints a document on standard output. Bytes that are no UTF-8 come out as U+FFFD.
void PrintJson(const Json& document);

}  // namespace kes::tool
