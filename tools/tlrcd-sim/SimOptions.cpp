#include "SimOptions.h"

#include <cstdlib>
#include <cstring>

#include "rest/RestConstants.h"

namespace {

bool ParseListen(const std::string& text, CSimOptions& options, std::string& error) {
    const size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0 || colon + 1 == text.size()) {
        error = "--listen wants HOST:PORT, got '" + text + "'";
        return false;
    }
    const std::string port = text.substr(colon + 1);
    char* end = nullptr;
    const long value = strtol(port.c_str(), &end, 10);
    if (*end != '\0' || value < 0 || value > 65535) {
        error = "--listen: '" + port + "' is not a port number";
        return false;
    }
    options.sHost = text.substr(0, colon);
    options.nPort = static_cast<int>(value);
    return true;
}

}  // namespace

const char* SimUsage() {
    return R"(Usage: tlrcd-sim [OPTIONS]

Plays the RAID manager's REST daemon over HTTPS for tests and demonstrations.

Endpoints:
  POST /api/v1/authJwt     form "jwt=TOKEN&client_id=ID"; the JWT must be signed HS256 with
                           the shared key, carry the issuer "TLRM_CLIENT_TLAS" and an exp that
                           has not passed; answers {"access_token":"<random>"} or 401
  GET  /api/v1/sdt/vbmc    needs "Authorization: Bearer <token issued here>"; answers
                           {"SDT":"<tree XML>"}
  POST /api/v1/redfishOp   needs the bearer token; answers from --redfish, or echoes the body

Options:
  --listen HOST:PORT   address to serve on (default 127.0.0.1:34246); port 0 lets the
                       system choose, the port is printed at start
  --cert FILE          PEM certificate to serve with (needs --key); default: a self-signed
                       certificate for localhost and 127.0.0.1, made in memory at start
  --key FILE           PEM private key of --cert
  --tree FILE          storage tree XML, read anew at every request, so that a test can
                       change the storage by replacing the file (default: a small built-in
                       tree with one adapter)
  --scenario FILE      a sequence of trees and faults that take effect at their times after
                       the start (instead of --tree); see docs/tools.md
  --redfish FILE       JSON object mapping a request body to its reply, read anew at every
                       request; a string reply goes out as it stands, any other value as
                       JSON; bodies that are not in the map are echoed
  --control FILE       fault injection, read anew at every request; a missing file means no
                       faults (see below)
  --log FILE           append one JSON line per request: method, path, headers, body, the
                       decoded JWT of a login, the bearer token, the status and the reply;
                       the file is for its owner only (mode 0600)
  --client-id ID       client_id that a login must carry (default TLRM_CLIENT_TLAS)
  --help               this text
  --version            the version of tlrcd-sim

Control file: a JSON object with a member per endpoint, "authJwt", "sdt" or "redfishOp",
each an object with any of:
  "delay_ms": N        wait N milliseconds before answering
  "refuse": true       answer 401, as for a bad JWT or bearer token
  "status": N          answer status N with a JSON error body (or with "body")
  "body": "TEXT"       answer TEXT as it stands, status 200 unless "status" says otherwise;
                       "" gives an empty reply, "oops" a reply that is not JSON
  "sdt": VALUE         (sdt only) answer {"SDT":VALUE}, e.g. 5 or null
Example: {"authJwt":{"refuse":true},"sdt":{"delay_ms":3000}}

Scenario file: {"steps":[{"at_s":0,"tree":"a.xml"},{"at_s":20,"tree":"b.xml",
  "progress":{"from":10,"by":15,"every_s":15,"to":100}},{"at_s":60,"faults":{"sdt":
  {"status":503}}},{"at_s":70,"closed":true},{"at_s":80}]}: trees relative to the
  scenario file; "progress" replaces @PROGRESS@ in the tree by a number that grows with
  time; "faults" as in the control file, and "closed":true (nothing listens), hold for
  their own step only; a step without "tree" keeps the one before. The control file's
  faults, where it has any for an endpoint, come first.

Exit status: 0 after SIGTERM or SIGINT, 1 when the address can't be served, 2 for bad
options or unreadable files.
)";
}

bool ParseSimOptions(int argc, char** argv, CSimOptions& options, std::string& error) {
    options.sClientId = tlr_rest::kClientId;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            options.bHelp = true;
            continue;
        }
        if (arg == "--version") {
            options.bVersion = true;
            continue;
        }
        static const char* const kWithValue[] = {"--listen", "--cert",      "--key",
                                                 "--tree",   "--redfish",   "--control",
                                                 "--log",    "--client-id", "--scenario"};
        bool known = false;
        for (const char* name : kWithValue)
            known = known || arg == name;
        if (!known) {
            error = "unknown option '" + arg + "'";
            return false;
        }
        if (i + 1 >= argc) {
            error = "option " + arg + " needs a value";
            return false;
        }
        const std::string value = argv[++i];
        if (arg == "--listen") {
            if (!ParseListen(value, options, error))
                return false;
        } else if (arg == "--cert") {
            options.sCertFile = value;
        } else if (arg == "--key") {
            options.sKeyFile = value;
        } else if (arg == "--tree") {
            options.sTreeFile = value;
        } else if (arg == "--redfish") {
            options.sRedfishFile = value;
        } else if (arg == "--control") {
            options.sControlFile = value;
        } else if (arg == "--scenario") {
            options.sScenarioFile = value;
        } else if (arg == "--log") {
            options.sLogFile = value;
        } else {
            options.sClientId = value;
        }
    }
    if (!options.sScenarioFile.empty() && !options.sTreeFile.empty()) {
        error = "--scenario and --tree exclude each other";
        return false;
    }
    if (options.sCertFile.empty() != options.sKeyFile.empty()) {
        error = "--cert and --key go together";
        return false;
    }
    return true;
}
