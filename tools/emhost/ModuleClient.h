#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "frame/SwitchProtocol.h"

class CIExtensionModule;

// One answer of the module: its status and its data as a number, a text or raw bytes.
struct Reply {
    uint32_t status = status::kMissing;
    uint64_t number = 0;
    std::string text;
    std::vector<uint32_t> raw;
    bool Ok() const { return status == status::kOk; }
};

// The requests that the clients of one tally have made, and those answered with a value.
struct RequestTally {
    uint64_t nSent = 0;
    uint64_t nAnswered = 0;
};

// A client of the switch, as the module sees it: requests under one client id, to the server
// itself or, with a cabinet number, to one of its cabinets (CA).
class ModuleClient {
  public:
    ModuleClient(CIExtensionModule& module, uint32_t clientId,
                 std::optional<uint32_t> cabinet = std::nullopt, RequestTally* tally = nullptr)
        : m_Module(module), m_nClientId(clientId), m_Cabinet(cabinet), m_pTally(tally) {}

    // The same client, its requests addressed to a cabinet; counted in the same tally.
    ModuleClient AtCabinet(uint32_t cabinet) const {
        return ModuleClient(m_Module, m_nClientId, cabinet, m_pTally);
    }

    // daJson: the request's DA as JSON, none when empty.
    Reply Ask(uint32_t oc, uint32_t oe = 0, uint32_t oi = 0, const std::string& daJson = "");
    // The count that the module answers, 0 when it answers none.
    uint32_t Count(uint32_t oc, uint32_t oe = 0);

    CIExtensionModule& Module() const { return m_Module; }

    // What a status other than 0 says, "not available", and so in parentheses.
    static std::string NoAnswerReason(uint32_t status);
    static std::string NoAnswer(uint32_t status) { return "(" + NoAnswerReason(status) + ")"; }

  private:
    CIExtensionModule& m_Module;
    uint32_t m_nClientId;
    std::optional<uint32_t> m_Cabinet;
    RequestTally* m_pTally;
};
