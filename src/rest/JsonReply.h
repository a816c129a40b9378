#pragma once

#include <rapidjson/document.h>

#include <string>

namespace tlr_rest {

// Parses a reply; a reply that is not JSON leaves the document empty (null).
void ParseReply(rapidjson::Document& doc, const std::string& reply);
// The first top-level member whose name equals name in length and bytes, or null.
const rapidjson::Value* FindTopLevelMember(const rapidjson::Document& doc, const char* name);

}  // namespace tlr_rest
