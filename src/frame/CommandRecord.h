#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/SwitchProtocol.h"

// The one message type between the switch and a module: a JSON document
//   {"SIP":{"V":1,"CMD":[{"OC":..,"OE":..,"OI":..,"CI":..,"CA":..,"MI":..,"ST":..,"DA":..}]}}
// and the index of the command that is meant. Reads never change the record; a path that
// is missing reads as the reader's default.
class CommandRecord {
  public:
    static constexpr uint32_t kAllCabinets = 0xFFFFFFFF;
    // A data byte is the low eight bits of a value; the rest is dropped.
    static constexpr uint32_t kLowByteMask = 0xFF;

    // An empty record: no SIP, so every read gives its default and every write is lost.
    CommandRecord();
    // A record with one command holding OC, OE and OI (when not 0), CA and ST (when given).
    CommandRecord(uint32_t oc, uint32_t oe, uint32_t oi, uint32_t ca, uint32_t st);
    // Deep copies: the copy owns a document of its own, commands, texts and index alike.
    CommandRecord(const CommandRecord& other);
    CommandRecord& operator=(const CommandRecord& other);

    // Replaces the document with parsed JSON text; false (record unchanged) if it is no JSON
    // or holds a number too large for a double.
    bool SetJson(std::string_view text);
    // The whole document as compact JSON.
    std::string ToJson() const;

    // The member of an object value with exactly this name, first in order; null if none.
    static const rapidjson::Value* FindMember(const rapidjson::Value& object, const char* name);
    // The command at an index, null when the path or the entry is missing or no object.
    const rapidjson::Value* Command(uint32_t index) const;

    // The index of the command that is meant; reads and writes without an index use it.
    uint32_t CurrentIndex() const { return m_nCurrentCommand; }
    void SelectCommand(uint32_t index) { m_nCurrentCommand = index; }

    uint32_t GetField(uint32_t index, const char* name, uint32_t defaultValue) const;
    uint32_t GetField(const char* name, uint32_t defaultValue) const {
        return GetField(m_nCurrentCommand, name, defaultValue);
    }
    bool HasField(uint32_t index, const char* name) const;
    bool HasField(const char* name) const { return HasField(m_nCurrentCommand, name); }
    bool HasData() const;
    size_t GetDataLength(uint32_t index) const;
    bool GetDataUInt(uint32_t index, uint32_t& value) const;
    bool GetDataUInt(uint32_t& value) const { return GetDataUInt(m_nCurrentCommand, value); }
    bool GetDataString(uint32_t index, std::string& text, uint32_t start) const;
    bool GetDataString(std::string& text, uint32_t start) const {
        return GetDataString(m_nCurrentCommand, text, start);
    }
    bool GetDataBytes(uint32_t index, std::vector<uint8_t>& bytes) const;
    // True when the record has no CA, CA is -1, or CA is the server's cabinet number.
    bool IsForThisCabinet() const;

    void SetStatus(uint32_t status);
    void SetDataByte(int value, uint32_t status);
    void SetDataUInt(uint32_t value, uint32_t status);
    void SetDataUInt64(uint64_t value, uint32_t status);
    void SetDataString(const char* text, uint32_t status);
    void SetDataRaw(const std::vector<uint8_t>& bytes, uint32_t status);
    // Writes a member of the current command, made if needed; lost if the record has no CMD.
    void SetField(const char* name, rapidjson::Value&& value);
    // SetField with a deep copy of a value that belongs to another document.
    void CopyField(const char* name, const rapidjson::Value& value);
    // Removes a member of the current command, if the command has it.
    void RemoveField(const char* name);
    // Makes sure the current command exists, appending empty commands to CMD up to it.
    rapidjson::Value* EnsureCommand();

  private:
    const rapidjson::Value* Data(uint32_t index) const;

    rapidjson::Document m_Document;
    uint32_t m_nCurrentCommand = 0;
};
