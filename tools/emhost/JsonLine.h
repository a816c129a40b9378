#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <string>

// Builds one compact JSON object, member by member.
class JsonLine {
  public:
    JsonLine() : m_Writer(m_Buffer) { m_Writer.StartObject(); }

    JsonLine& Str(const char* key, const std::string& value) {
        m_Writer.Key(key);
        m_Writer.String(value.c_str(), static_cast<rapidjson::SizeType>(value.size()));
        return *this;
    }
    JsonLine& Int(const char* key, int64_t value) {
        m_Writer.Key(key);
        m_Writer.Int64(value);
        return *this;
    }
    JsonLine& UInt(const char* key, uint64_t value) {
        m_Writer.Key(key);
        m_Writer.Uint64(value);
        return *this;
    }
    JsonLine& Null(const char* key) {
        m_Writer.Key(key);
        m_Writer.Null();
        return *this;
    }
    // A member whose value is JSON text already.
    JsonLine& Raw(const char* key, const std::string& json) {
        m_Writer.Key(key);
        m_Writer.RawValue(json.c_str(), json.size(), rapidjson::kObjectType);
        return *this;
    }
    std::string Done() {
        m_Writer.EndObject();
        return std::string(m_Buffer.GetString(), m_Buffer.GetSize());
    }

  private:
    rapidjson::StringBuffer m_Buffer;
    rapidjson::Writer<rapidjson::StringBuffer> m_Writer;
};

inline std::string ErrorLine(const std::string& text) {
    return JsonLine().Str("error", text).Done();
}
