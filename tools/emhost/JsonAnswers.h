#pragma once

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string>

#include "StorageState.h"

// The JSON outputs of the views, "emhost inventory --json" and "emhost watch --json": each
// names its format's version; the minor number grows with members added, the major one
// with anything a reader of the older format would misread.
inline constexpr int kJsonFormatVersion[2] = {1, 0};

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

// "format_version": [1, 0]
void WriteFormatVersion(JsonWriter& out);
// An answer that did not come, as {"not_answered": ST, "reason": "not available"}.
void WriteNotAnswered(JsonWriter& out, const Reply& reply);
// A text, or the answer that did not come.
void WriteText(JsonWriter& out, const Reply& reply);
// A number, or the answer that did not come.
void WriteNumber(JsonWriter& out, const Reply& reply);
// {"code": 11, "name": "failed"}, or the answer that did not come.
void WriteCoded(JsonWriter& out, const Coded& coded);
// A progress in %: a number where the module's text is one, else the text.
void WriteProgress(JsonWriter& out, const Reply& reply);

// The buffer's text, each byte that is no valid UTF-8 escaped as the line protocol does.
std::string JsonText(const rapidjson::StringBuffer& buffer);
