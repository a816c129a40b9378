#pragma once

#include <string>

#include "rest/RestConstants.h"

// How the simulator was started.
struct CSimOptions {
    std::string sHost = "127.0.0.1";
    int nPort = tlr_rest::kDaemonPort;
    std::string sCertFile;
    std::string sKeyFile;
    std::string sTreeFile;
    std::string sRedfishFile;
    std::string sControlFile;
    std::string sScenarioFile;
    std::string sLogFile;
    std::string sClientId;
    bool bHelp = false;
    bool bVersion = false;
};

// Reads the command line; false with a message in error when it is wrong.
bool ParseSimOptions(int argc, char** argv, CSimOptions& options, std::string& error);
// The --help text.
const char* SimUsage();
