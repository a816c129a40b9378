#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "HostOutput.h"
#include "HostSwitch.h"
#include "ModuleLibrary.h"

class CIExtensionModule;

// One session of the line protocol: each input line is a command record or an action of
// the host, and gets exactly one result line.
class LineProtocol {
  public:
    // The longest wait a line may ask for: a day by default.
    static constexpr int64_t kMaxWaitMs = 24LL * 3600 * 1000;

    LineProtocol(HostOutput& output, HostSwitch& hostSwitch, ModuleLibrary& library,
                 int64_t maxWaitMs = kMaxWaitMs);

    // Handles one input line. False when the line asks the host to exit.
    bool HandleLine(const std::string& line);

  private:
    using Action = std::function<std::string(const rapidjson::Value& line)>;

    std::string Record(const std::string& json, uint32_t index);
    std::string Create();
    std::string Delete();
    std::string Name();
    std::string Setup(const rapidjson::Value& line);
    std::string Info(const rapidjson::Value& line);
    std::string Detected();
    std::string Cabinet(const rapidjson::Value& line);
    std::string Start(const rapidjson::Value& line);
    std::string SwitchStarted();
    std::string Notify(const rapidjson::Value& line);
    std::string Detach(const rapidjson::Value& line);
    std::string SeList();
    std::string Stop();
    std::string Answer(const rapidjson::Value& line);
    std::string Request(const rapidjson::Value& line);
    std::string Burst(const rapidjson::Value& line);
    std::string WaitEvents(const rapidjson::Value& line);
    std::string Sleep(const rapidjson::Value& line);

    HostOutput& m_Output;
    HostSwitch& m_Switch;
    ModuleLibrary& m_Library;
    const int64_t m_nMaxWaitMs;
    CIExtensionModule* m_pModule = nullptr;
    std::map<std::string, Action> m_Actions;
    std::map<std::string, bool> m_NeedsModule;
};
