#include "rest/Jwt.h"

#include <jwt/jwt.hpp>

#include <stdexcept>
#include <typeinfo>

#include "rest/RestConstants.h"

namespace tlr_jwt {

std::string MakeSignedToken(int64_t issuedAt, int64_t expiresAt) {
    jwt::jwt_object token{jwt::params::algorithm("HS256"), jwt::params::secret(tlr_rest::kJwtKey)};
    token.header().typ(jwt::type::JWT);
    token.add_claim("iss", tlr_rest::kJwtIssuer)
        .add_claim("iat", issuedAt)
        .add_claim("exp", expiresAt);
    return token.signature();
}

int64_t ReadExpiry(const std::string& token) {
    // The token is our own: only its expiry matters, the signature is not checked.
    const jwt::jwt_object decoded =
        jwt::decode(token, jwt::params::algorithms({"HS256"}), jwt::params::verify(false));
    const auto& claims = decoded.payload().create_json_obj();
    const auto exp = claims.find("exp");
    if (exp == claims.end())
        throw std::runtime_error("claim not found");
    if (!exp->is_number_integer())
        throw std::bad_cast();
    return exp->get<int64_t>();
}

}  // namespace tlr_jwt
