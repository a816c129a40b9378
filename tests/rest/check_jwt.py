"""check_jwt.py TOKEN [--ignore-exp]: checks a JWT of the REST client with PyJWT.

Prints {"claims": ..., "header": ...} (keys sorted) when the token is signed HS256 with the daemon's key
and carries the issuer, iat and exp; exits 1 with the reason otherwise.
"""
import json
import sys

import jwt

KEY = "kite_mox"
ISSUER = "TLRM_CLIENT_TLAS"


def main(argv):
    token = argv[1]
    ignore_exp = "--ignore-exp" in argv[2:]
    try:
        header = jwt.get_unverified_header(token)
        claims = jwt.decode(token, KEY, algorithms=["HS256"], issuer=ISSUER,
                            options={"require": ["iss", "iat", "exp"],
                                     "verify_exp": not ignore_exp,
                                     "verify_iat": not ignore_exp})
    except jwt.PyJWTError as error:
        print(f"refused: {error}", file=sys.stderr)
        return 1
    print(json.dumps({"header": header, "claims": claims}, sort_keys=True))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
