#include "GenTreeOptions.h"

#include <cerrno>
#include <cstdlib>

namespace {

// One numeric option: its name, where it goes and its range.
struct CountOption {
    const char* pszName;
    uint32_t GenTreeOptions::*pField;
    uint32_t nMax;
};

constexpr CountOption kCountOptions[] = {
    {"--adapters", &GenTreeOptions::nAdapters, 256},
    {"--ports", &GenTreeOptions::nPorts, 64},
    {"--enclosures", &GenTreeOptions::nEnclosures, 64},
    {"--drives", &GenTreeOptions::nDrives, 4096},
    {"--port-drives", &GenTreeOptions::nPortDrives, 4096},
    {"--logical-drives", &GenTreeOptions::nLogicalDrives, 4096},
    {"--batteries", &GenTreeOptions::nBatteries, 8},
    {"--faults", &GenTreeOptions::nFaultPercent, 100},
};

// Decimal digits only: no sign, no blanks, no base prefix.
bool ParseDecimal(const std::string& sText, uint64_t nMax, uint64_t& nValue) {
    if (sText.empty() || sText.size() > 20 ||
        sText.find_first_not_of("0123456789") != std::string::npos) {
        return false;
    }
    errno = 0;
    unsigned long long n = std::strtoull(sText.c_str(), nullptr, 10);
    if (errno == ERANGE || n > nMax) {
        return false;
    }
    nValue = n;
    return true;
}

}  // namespace

std::string GenTreeUsage() {
    return "usage: gen-tree [OPTION]...\n"
           "Writes a storage tree (root amEMTL) that the module accepts as valid, of the size\n"
           "asked for. The same options and seed give the same tree, byte for byte.\n"
           "\n"
           "  --adapters N        adapters in the tree (0-256, default 2)\n"
           "  --ports N           SAS ports per adapter, in a port list (0-64, default 2)\n"
           "  --enclosures N      external enclosures per port (0-64, default 1)\n"
           "  --drives N          drives per enclosure (0-4096, default 8)\n"
           "  --port-drives N     drives on each port outside its enclosures (0-4096,\n"
           "                      default 0)\n"
           "  --logical-drives N  logical drives per adapter, the adapter's drives shared\n"
           "                      out among them in order (0-4096, default 2)\n"
           "  --batteries N       Battery elements per adapter (0-8, default 1)\n"
           "  --faults P          percent of drives, enclosure parts and batteries in a bad or\n"
           "                      SMART state; the overall states follow (0-100, default 0)\n"
           "  --seed S            seed of the random choices: sizes, serial numbers, states,\n"
           "                      temperatures (0-18446744073709551615, default 1)\n"
           "  --output FILE       write to FILE instead of standard output\n"
           "  --help              show this text and exit\n"
           "\n"
           "Options take their value as the next argument or after '=': --drives=24.\n"
           "A tree holds at most 2000000 drives. Exit status: 0 done, 1 the output could not\n"
           "be written, 2 bad options.\n"
           "\n"
           "Example, 16 adapters with 256 drives each:\n"
           "  gen-tree --adapters 16 --ports 4 --enclosures 2 --drives 32 --seed 7\n";
}

bool ParseGenTreeOptions(const std::vector<std::string>& args, GenTreeOptions& options,
                         std::string& sError) {
    for (size_t i = 0; i < args.size(); ++i) {
        std::string sName = args[i];
        std::string sValue;
        bool bHasValue = false;
        size_t nEquals = sName.find('=');
        if (sName.rfind("--", 0) == 0 && nEquals != std::string::npos) {
            sValue = sName.substr(nEquals + 1);
            sName.resize(nEquals);
            bHasValue = true;
        }
        if (sName == "--help" || sName == "-h") {
            if (bHasValue) {
                sError = "--help takes no value";
                return false;
            }
            options.bHelp = true;
            continue;
        }
        const CountOption* pCount = nullptr;
        for (const CountOption& option : kCountOptions) {
            if (sName == option.pszName) {
                pCount = &option;
            }
        }
        if (!pCount && sName != "--seed" && sName != "--output") {
            sError = "unknown option '" + args[i] + "' (see --help)";
            return false;
        }
        if (!bHasValue) {
            if (i + 1 >= args.size()) {
                sError = sName + " needs a value";
                return false;
            }
            sValue = args[++i];
        }
        if (sName == "--output") {
            if (sValue.empty()) {
                sError = "--output needs a file name";
                return false;
            }
            options.sOutput = sValue;
            continue;
        }
        uint64_t nValue = 0;
        if (sName == "--seed") {
            if (!ParseDecimal(sValue, UINT64_MAX, nValue)) {
                sError = "--seed needs a whole number from 0 to 18446744073709551615, not '" +
                         sValue + "'";
                return false;
            }
            options.nSeed = nValue;
            continue;
        }
        if (!ParseDecimal(sValue, pCount->nMax, nValue)) {
            sError = sName + " needs a whole number from 0 to " + std::to_string(pCount->nMax) +
                     ", not '" + sValue + "'";
            return false;
        }
        options.*(pCount->pField) = static_cast<uint32_t>(nValue);
    }
    uint64_t nTotal = uint64_t(options.nAdapters) * options.nPorts *
                      (uint64_t(options.nEnclosures) * options.nDrives + options.nPortDrives);
    if (nTotal > kMaxTotalDrives) {
        sError = "the tree would hold " + std::to_string(nTotal) + " drives; at most " +
                 std::to_string(kMaxTotalDrives) + " are allowed";
        return false;
    }
    return true;
}
