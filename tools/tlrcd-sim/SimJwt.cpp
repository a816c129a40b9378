#include "SimJwt.h"

#include <jwt/jwt.hpp>

CJwtCheck CheckJwt(const std::string& token, const std::string& key, const std::string& issuer) {
    CJwtCheck check;
    try {
        std::error_code ec;
        const jwt::jwt_object raw = jwt::decode(token, jwt::params::algorithms({"HS256", "none"}),
                                                ec, jwt::params::verify(false));
        if (ec) {
            check.sReason = "malformed token: " + ec.message();
            return check;
        }
        check.header = raw.header().create_json_obj();
        check.payload = raw.payload().create_json_obj();
        if (!check.payload.contains("exp")) {
            check.sReason = "token has no exp";
            return check;
        }
        jwt::decode(token, jwt::params::algorithms({"HS256"}), ec, jwt::params::secret(key),
                    jwt::params::issuer(issuer), jwt::params::verify(true));
        if (ec) {
            check.sReason = ec.message();
            return check;
        }
        check.bValid = true;
    } catch (const std::exception& e) {
        check.sReason = std::string("malformed token: ") + e.what();
    }
    return check;
}
