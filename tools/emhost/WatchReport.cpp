#include "WatchReport.h"

#include <cstdio>
#include <ctime>
#include <map>

#include "JsonAnswers.h"
#include "frame/CommandRecord.h"

namespace {

std::string Stamp(const char* format, bool utc) {
    char stamp[32] = "";
    const time_t now = time(nullptr);
    std::tm when{};
    if (utc)
        gmtime_r(&now, &when);
    else
        localtime_r(&now, &when);
    strftime(stamp, sizeof(stamp), format, &when);
    return stamp;
}

// A JSON line's first members: the format's version, the time and the kind of line.
void StartLine(JsonWriter& out, const char* kind) {
    out.StartObject();
    WriteFormatVersion(out);
    out.Key("time");
    out.String(Stamp("%Y-%m-%dT%H:%M:%SZ", true).c_str());
    out.Key("kind");
    out.String(kind);
}

void WriteValue(JsonWriter& out, const Watched* value) {
    if (!value)
        out.Null();
    else if (value->bProgress)
        WriteProgress(out, value->value.reply);
    else
        WriteCoded(out, value->value);
}

std::string EventWords(const CommandRecord& record) {
    static const std::map<uint32_t, const char*> kinds = {
        {oc::CM_FanStatus, "fan status"},
        {oc::CM_TempSensorStatus, "temperature sensor status"},
        {oc::CM_PowerSupplyStatus, "power supply status"},
        {oc::CM_PowerSupplyRedundancy, "power supply redundancy"}};
    auto kind = kinds.find(record.GetField("OC", 0));
    return kind != kinds.end() ? kind->second : "object code";
}

}  // namespace

void WatchReport::Line(const std::string& text) {
    std::lock_guard<std::mutex> lock(m_Mutex);
    if (m_bJson)
        printf("%s\n", text.c_str());
    else
        printf("%s %s\n", Stamp("%H:%M:%S", false).c_str(), text.c_str());
    fflush(stdout);
}

void WatchReport::Plain(const std::string& text) {
    if (!m_bJson)
        Line(text);
}

void WatchReport::Note(const std::string& text) {
    if (!m_bJson)
        return Line(text);
    rapidjson::StringBuffer buffer;
    JsonWriter out(buffer);
    StartLine(out, "note");
    out.Key("text");
    out.String(text.c_str());
    out.EndObject();
    Line(JsonText(buffer));
}

void WatchReport::Initial(uint32_t client, const Watched& value, const std::string& indent) {
    if (m_bJson)
        return JsonChange(client, nullptr, &value);
    Line(indent + value.label + ": " + m_Palette.Paint(value.Shown(), value.value.SeverityOf()));
}

void WatchReport::Change(uint32_t client, const ViewChange& change, const std::string& indent) {
    if (m_bJson)
        return JsonChange(client, change.pOld, change.pNow);
    if (!change.pOld) {
        Line(indent + change.pNow->label + ": " +
             m_Palette.Paint(change.pNow->Shown(), change.pNow->value.SeverityOf()) + " (new)");
    } else if (!change.pNow) {
        Line(indent + change.pOld->label + ": gone");
    } else {
        Line(indent + change.pNow->label + ": " + change.pOld->Shown() + " -> " +
             m_Palette.Paint(change.pNow->Shown(), change.pNow->value.SeverityOf()));
    }
}

void WatchReport::JsonChange(uint32_t client, const Watched* old, const Watched* now) {
    const Watched& which = now ? *now : *old;
    rapidjson::StringBuffer buffer;
    JsonWriter out(buffer);
    StartLine(out, "change");
    out.Key("client");
    out.Uint(client);
    out.Key("object");
    out.String(which.object.c_str());
    if (which.nAdapter >= 0) {
        out.Key("adapter");
        out.Int64(which.nAdapter);
    }
    if (which.nIndex >= 0) {
        out.Key("index");
        out.Int64(which.nIndex);
    }
    out.Key("name");
    out.String(which.name.data(), static_cast<rapidjson::SizeType>(which.name.size()));
    out.Key("field");
    out.String(which.field.c_str());
    out.Key("old");
    WriteValue(out, old);
    out.Key("new");
    WriteValue(out, now);
    out.EndObject();
    Line(JsonText(buffer));
}

void WatchReport::Event(const CommandRecord& record) {
    const std::string json = record.ToJson();
    if (!m_bJson) {
        return Line("event: " + EventWords(record) + " (OC " +
                    std::to_string(record.GetField("OC", 0)) + ") of cabinet " +
                    std::to_string(static_cast<int32_t>(record.GetField("CA", 0))) + ", object " +
                    std::to_string(record.GetField("OI", 0)) + ": " + json);
    }
    rapidjson::StringBuffer buffer;
    JsonWriter out(buffer);
    StartLine(out, "event");
    out.Key("what");
    out.String(EventWords(record).c_str());
    out.Key("record");
    out.RawValue(json.data(), json.size(), rapidjson::kObjectType);
    out.EndObject();
    Line(JsonText(buffer));
}
