#pragma once

#include <cstdint>
#include <string>

// The one place that calls the JWT library.
namespace tlr_jwt {

// A token with header typ "JWT", claims iss, iat and exp, signed HS256 with the shared key.
std::string MakeSignedToken(int64_t issuedAt, int64_t expiresAt);
// The claim exp of a token, read without checking the signature. Throws what the decoder
// throws for a malformed token, std::runtime_error without exp, std::bad_cast for an exp
// that is not an integer.
int64_t ReadExpiry(const std::string& token);

}  // namespace tlr_jwt
