#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/SwitchProtocol.h"

class CIExtensionModule;

// One answer of the module: its status and its data as a number, a text or raw bytes.
struct Reply {
    uint32_t status = 0;
    uint64_t number = 0;
    std::string text;
    std::vector<uint32_t> raw;
    bool Ok() const { return status == status::kOk; }
};

// A client of the switch, as the module sees it: requests under one client id, to the server
// itself or, with a cabinet number, to one of its cabinets (CA).
class ModuleClient {
  public:
    ModuleClient(CIExtensionModule& module, uint32_t clientId,
                 std::optional<uint32_t> cabinet = std::nullopt)
        : m_Module(module), m_nClientId(clientId), m_Cabinet(cabinet) {}

    // daJson: the request's DA as JSON, none when empty.
    Reply Ask(uint32_t oc, uint32_t oe = 0, uint32_t oi = 0, const std::string& daJson = "");

    // The answer in words, or what the status says when there is none.
    // Without a meaning, the number with the unit behind it.
    std::string Show(uint32_t oc, uint32_t oe, uint32_t oi, std::string (*meaning)(uint32_t),
                     const char* unit = "");
    std::string Text(uint32_t oc, uint32_t oe, uint32_t oi);
    uint32_t Count(uint32_t oc, uint32_t oe = 0);

    static std::string NoAnswer(uint32_t status);

  private:
    CIExtensionModule& m_Module;
    uint32_t m_nClientId;
    std::optional<uint32_t> m_Cabinet;
};
