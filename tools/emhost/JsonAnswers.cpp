#include "JsonAnswers.h"

#include <cerrno>
#include <cstdlib>

#include "HostOutput.h"

void WriteFormatVersion(JsonWriter& out) {
    out.Key("format_version");
    out.StartArray();
    for (int part : kJsonFormatVersion)
        out.Int(part);
    out.EndArray();
}

void WriteNotAnswered(JsonWriter& out, const Reply& reply) {
    out.StartObject();
    out.Key("not_answered");
    out.Uint(reply.status);
    out.Key("reason");
    out.String(ModuleClient::NoAnswerReason(reply.status).c_str());
    out.EndObject();
}

void WriteText(JsonWriter& out, const Reply& reply) {
    if (!reply.Ok())
        return WriteNotAnswered(out, reply);
    out.String(reply.text.data(), static_cast<rapidjson::SizeType>(reply.text.size()));
}

void WriteNumber(JsonWriter& out, const Reply& reply) {
    if (!reply.Ok())
        return WriteNotAnswered(out, reply);
    out.Uint64(reply.number);
}

void WriteCoded(JsonWriter& out, const Coded& coded) {
    if (!coded.Ok())
        return WriteNotAnswered(out, coded.reply);
    const uint32_t value = static_cast<uint32_t>(coded.reply.number);
    out.StartObject();
    out.Key("code");
    out.Uint(value);
    out.Key("name");
    out.String(coded.pWords ? coded.pWords->Name(value) : "unknown");
    out.EndObject();
}

void WriteProgress(JsonWriter& out, const Reply& reply) {
    if (!reply.Ok())
        return WriteNotAnswered(out, reply);
    const char* text = reply.text.c_str();
    char* end = nullptr;
    errno = 0;
    const long long value = strtoll(text, &end, 10);
    if (*text && !*end && !errno)
        out.Int64(value);
    else
        WriteText(out, reply);
}

std::string JsonText(const rapidjson::StringBuffer& buffer) {
    return EscapeInvalidUtf8(std::string(buffer.GetString(), buffer.GetSize()));
}
