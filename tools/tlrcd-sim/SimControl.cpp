#include "SimControl.h"

#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>

namespace {

const char* const kEndpoints[] = {"authJwt", "sdt", "redfishOp"};

bool ReadFault(const nlohmann::json& settings, const std::string& endpoint, CEndpointFault& fault,
               std::string& error) {
    if (!settings.is_object()) {
        error = "member '" + endpoint + "' is not an object";
        return false;
    }
    for (const auto& [key, value] : settings.items()) {
        if (key == "delay_ms" && value.is_number_integer() && value.get<int64_t>() >= 0) {
            fault.nDelayMs = value.get<int64_t>();
        } else if (key == "refuse" && value.is_boolean()) {
            fault.bRefuse = value.get<bool>();
        } else if (key == "status" && value.is_number_integer() && value.get<int>() >= 100 &&
                   value.get<int>() <= 599) {
            fault.nStatus = value.get<int>();
        } else if (key == "body" && value.is_string()) {
            fault.sBody = value.get<std::string>();
        } else if (key == "sdt" && endpoint == "sdt") {
            fault.sdtValue = value;
        } else {
            error = "'" + endpoint + "." + key + "' is unknown or has a wrong value";
            return false;
        }
    }
    return true;
}

}  // namespace

bool ReadEndpointFault(const std::string& controlFile, const std::string& endpoint,
                       CEndpointFault& fault, std::string& error) {
    fault.Reset();
    if (controlFile.empty())
        return true;
    // A test may write the file only when it wants a fault.
    if (access(controlFile.c_str(), F_OK) != 0 && errno == ENOENT)
        return true;
    std::ifstream in(controlFile);
    if (!in) {
        error = "cannot read control file '" + controlFile + "'";
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    const nlohmann::json control = nlohmann::json::parse(text.str(), nullptr, false);
    if (control.is_discarded() || !control.is_object()) {
        error = "control file '" + controlFile + "' is not a JSON object";
        return false;
    }
    return ParseEndpointFault(control, endpoint, fault, error);
}

bool ParseEndpointFault(const nlohmann::json& control, const std::string& endpoint,
                        CEndpointFault& fault, std::string& error) {
    fault.Reset();
    if (!control.is_object()) {
        error = "faults are not a JSON object";
        return false;
    }
    for (const auto& [name, settings] : control.items()) {
        bool known = false;
        for (const char* known_name : kEndpoints)
            known = known || name == known_name;
        if (!known) {
            error = "control file names an unknown endpoint '" + name + "'";
            return false;
        }
        if (name == endpoint && !ReadFault(settings, endpoint, fault, error))
            return false;
        if (name != endpoint) {
            // Other endpoints are checked too, so that a typo shows at once.
            CEndpointFault other;
            if (!ReadFault(settings, name, other, error))
                return false;
        }
    }
    return true;
}
