#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>

// The faults that the control file asks of one endpoint.
struct CEndpointFault {
    int64_t nDelayMs = 0;
    bool bRefuse = false;
    int nStatus = 0;
    std::optional<std::string> sBody;
    std::optional<nlohmann::json> sdtValue;

    void Reset() {
        nDelayMs = 0;
        bRefuse = false;
        nStatus = 0;
        sBody.reset();
        sdtValue.reset();
    }
    bool IsEmpty() const {
        return nDelayMs == 0 && !bRefuse && nStatus == 0 && !sBody && !sdtValue;
    }
    // A status or a body replaces the endpoint's own answer.
    bool ReplacesAnswer() const { return nStatus != 0 || sBody.has_value(); }
};

// Reads the faults for endpoint ("authJwt", "sdt", "redfishOp") from the control file.
// No file name, or a file that doesn't exist, means no faults. False with a message in
// error when the file can't be read or says something unknown.
bool ReadEndpointFault(const std::string& controlFile, const std::string& endpoint,
                       CEndpointFault& fault, std::string& error);
// The same from a control object already read (a scenario step's "faults").
bool ParseEndpointFault(const nlohmann::json& control, const std::string& endpoint,
                        CEndpointFault& fault, std::string& error);
