#include "rest/JsonReply.h"

#include <cstring>

namespace tlr_rest {

void ParseReply(rapidjson::Document& doc, const std::string& reply) {
    doc.Parse(reply.data(), reply.size());
    if (doc.HasParseError())
        doc.SetNull();
}

const rapidjson::Value* FindTopLevelMember(const rapidjson::Document& doc, const char* name) {
    if (!doc.IsObject())
        return nullptr;
    const size_t length = strlen(name);
    for (auto member = doc.MemberBegin(); member != doc.MemberEnd(); ++member) {
        const rapidjson::Value& key = member->name;
        if (key.GetStringLength() == length && memcmp(key.GetString(), name, length) == 0)
            return &member->value;
    }
    return nullptr;
}

}  // namespace tlr_rest
