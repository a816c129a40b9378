"""check_jwt.py TOKEN: checks a JWT of the REST client with a second implementation (PyJWT).

Prints {"claims": ..., "header": ...}, keys sorted, when the token is signed HS256 with the
daemon's key and carries the issuer, iat and exp (their times are not held against the
clock); exits 1 with the reason otherwise.
"""
import json
import sys

import jwt

try:
    TOKEN = sys.argv[1]
    CLAIMS = jwt.decode(TOKEN, "kite_mox", algorithms=["HS256"], issuer="TLRM_CLIENT_TLAS",
                        options={"require": ["iss", "iat", "exp"], "verify_exp": False,
                                 "verify_iat": False})
except jwt.PyJWTError as error:
    sys.exit(f"refused: {error}")
print(json.dumps({"header": jwt.get_unverified_header(TOKEN), "claims": CLAIMS}, sort_keys=True))
