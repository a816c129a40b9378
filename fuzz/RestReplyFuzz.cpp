// Any body of a REST reply: the access token of a login reply and the tree of a tree reply
// are taken from it as the client takes them.
#include "FuzzKit.h"
#include "rest/JsonReply.h"
#include "rest/TestRestClient.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DropTrace();
    static CTestRestClient client;
    const std::string body(AsText(data, size));
    client.GetAccessToken(body);
    rapidjson::Document doc;
    tlr_rest::ParseReply(doc, body);
    const rapidjson::Value* sdt = tlr_rest::FindTopLevelMember(doc, "SDT");
    if (sdt && sdt->IsString()) {
        const std::string xml(sdt->GetString(), sdt->GetStringLength());
        (void)xml;
    }
    return 0;
}
