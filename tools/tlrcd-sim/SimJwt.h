#pragma once

#include <nlohmann/json.hpp>

#include <string>

// What the simulator makes of a JWT from a login.
struct CJwtCheck {
    bool bValid = false;
    std::string sReason;    // why it was refused; empty when valid
    nlohmann::json header;  // decoded without checks, null when the token can't be read
    nlohmann::json payload;
};

// Checks the signature (HS256 with key), that exp is there and has not passed, and iss.
CJwtCheck CheckJwt(const std::string& token, const std::string& key, const std::string& issuer);
