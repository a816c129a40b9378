#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "SimControl.h"

// A scenario: a sequence of storage trees and faults, each taking effect at a time after the
// simulator's start, so that the storage changes on its own while a module watches.
//
//   {"note": "...",
//    "steps": [{"at_s": 0, "tree": "a.xml", "note": "..."},
//              {"at_s": 20, "faults": {"sdt": {"status": 503}}},
//              {"at_s": 40, "tree": "b.xml",
//               "progress": {"from": 10, "by": 15, "every_s": 15, "to": 100}}]}
//
// The first step is at 0 s, the others follow in rising order. A step without "tree" keeps
// the tree (and its progress) of the step before; faults, in the control file's form, and
// "closed": true, the daemon gone with nothing listening, hold for their own step only. "progress"
// replaces kProgressToken in the tree by a number that starts at "from" and grows by "by" every
// "every_s" seconds up to "to".
class CSimScenario {
  public:
    static constexpr const char* kProgressToken = "@PROGRESS@";

    struct Progress {
        int64_t nFrom = 0;
        int64_t nBy = 1;
        double dEverySec = 15;
        int64_t nTo = 100;
    };
    struct Step {
        double dAtSec = 0;
        std::string sNote;
        std::string sTreeFile;     // as the step names it, or the one it keeps
        std::string sTree;         // that file's text
        double dTreeSinceSec = 0;  // start of the tree's progress
        std::optional<Progress> progress;
        nlohmann::json faults;  // null for none
        bool bClosed = false;   // the daemon is gone: nothing listens
    };

    // Reads the scenario and every tree it names, relative to the scenario's directory.
    // False with a message in error.
    bool Load(const std::string& path, std::string& error);

    // What holds at a time since the start, in seconds.
    size_t StepIndexAt(double dElapsedSec) const;
    std::string TreeAt(double dElapsedSec) const;
    // The step's faults for endpoint ("authJwt", "sdt", "redfishOp"); empty where it has none.
    void FaultAt(double dElapsedSec, const std::string& endpoint, CEndpointFault& fault) const;
    bool ClosedAt(double dElapsedSec) const { return m_Steps[StepIndexAt(dElapsedSec)].bClosed; }
    bool HasClosedSteps() const;
    // The progress number of the tree at a time; nothing without progress.
    std::optional<int64_t> ProgressAt(double dElapsedSec) const;

    const std::vector<Step>& Steps() const { return m_Steps; }

  private:
    bool ReadStep(const nlohmann::json& item, const std::string& directory, Step& step,
                  std::string& error);

    std::vector<Step> m_Steps;
};
