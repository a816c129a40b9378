#include "SimScenario.h"

#include "SimFiles.h"

#include <algorithm>
#include <cmath>

namespace {

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

bool IsNumber(const nlohmann::json& value) {
    return value.is_number() && std::isfinite(value.get<double>());
}

bool ReadProgress(const nlohmann::json& item, CSimScenario::Progress& progress,
                  std::string& error) {
    if (!item.is_object() || !item.contains("from")) {
        error = "\"progress\" wants an object with at least \"from\"";
        return false;
    }
    for (const auto& [key, value] : item.items()) {
        const bool integer = value.is_number_integer();
        if (key == "from" && integer) {
            progress.nFrom = value.get<int64_t>();
        } else if (key == "by" && integer) {
            progress.nBy = value.get<int64_t>();
        } else if (key == "to" && integer) {
            progress.nTo = value.get<int64_t>();
        } else if (key == "every_s" && IsNumber(value) && value.get<double>() > 0) {
            progress.dEverySec = value.get<double>();
        } else {
            error = "\"progress." + key + "\" is unknown or has a wrong value";
            return false;
        }
    }
    return true;
}

}  // namespace

bool CSimScenario::ReadStep(const nlohmann::json& item, const std::string& directory, Step& step,
                            std::string& error) {
    if (!item.is_object() || !item.contains("at_s")) {
        error = "a step wants an object with \"at_s\"";
        return false;
    }
    for (const auto& [key, value] : item.items()) {
        if (key == "at_s" && IsNumber(value) && value.get<double>() >= 0) {
            step.dAtSec = value.get<double>();
        } else if (key == "note" && value.is_string()) {
            step.sNote = value.get<std::string>();
        } else if (key == "tree" && value.is_string()) {
            step.sTreeFile = value.get<std::string>();
            if (step.sTreeFile.empty() || step.sTreeFile[0] != '/')
                step.sTreeFile = directory + "/" + step.sTreeFile;
            if (!ReadWholeFile(step.sTreeFile, step.sTree)) {
                error = "cannot read tree file '" + step.sTreeFile + "'";
                return false;
            }
        } else if (key == "progress") {
            step.progress.emplace();
            if (!ReadProgress(value, *step.progress, error))
                return false;
        } else if (key == "closed" && value.is_boolean()) {
            step.bClosed = value.get<bool>();
        } else if (key == "faults") {
            // Checked now, so that a typo shows at start rather than at its step.
            CEndpointFault fault;
            if (!ParseEndpointFault(value, "sdt", fault, error))
                return false;
            step.faults = value;
        } else {
            error = "\"" + key + "\" is unknown or has a wrong value";
            return false;
        }
    }
    if (step.progress && step.sTree.empty()) {
        error = "\"progress\" goes with the \"tree\" of its step";
        return false;
    }
    return true;
}

bool CSimScenario::Load(const std::string& path, std::string& error) {
    std::string text;
    if (!ReadWholeFile(path, text)) {
        error = "cannot read scenario file '" + path + "'";
        return false;
    }
    const nlohmann::json scenario = nlohmann::json::parse(text, nullptr, false);
    if (scenario.is_discarded() || !scenario.is_object() || !scenario.contains("steps") ||
        !scenario["steps"].is_array() || scenario["steps"].empty()) {
        error = "scenario file '" + path + "' is no JSON object with a list of \"steps\"";
        return false;
    }
    for (const auto& [key, value] : scenario.items()) {
        if (key != "steps" && !(key == "note" && value.is_string())) {
            error = "scenario file '" + path + "': \"" + key + "\" is unknown";
            return false;
        }
    }
    const std::string directory = DirectoryOf(path);
    std::vector<Step> steps;
    for (const nlohmann::json& item : scenario["steps"]) {
        Step step;
        if (!ReadStep(item, directory, step, error)) {
            error = "scenario file '" + path + "', step " + std::to_string(steps.size() + 1) +
                    ": " + error;
            return false;
        }
        if (steps.empty() ? (step.dAtSec != 0 || step.sTree.empty())
                          : step.dAtSec <= steps.back().dAtSec) {
            error = "scenario file '" + path + "', step " + std::to_string(steps.size() + 1) +
                    ": the first step is at 0 s with a tree, the others follow in rising order";
            return false;
        }
        if (step.sTreeFile.empty()) {
            step.sTreeFile = steps.back().sTreeFile;
            step.sTree = steps.back().sTree;
            step.progress = steps.back().progress;
            step.dTreeSinceSec = steps.back().dTreeSinceSec;
        } else {
            step.dTreeSinceSec = step.dAtSec;
        }
        steps.push_back(std::move(step));
    }
    m_Steps = std::move(steps);
    return true;
}

bool CSimScenario::HasClosedSteps() const {
    for (const Step& step : m_Steps) {
        if (step.bClosed)
            return true;
    }
    return false;
}

size_t CSimScenario::StepIndexAt(double dElapsedSec) const {
    size_t index = 0;
    while (index + 1 < m_Steps.size() && m_Steps[index + 1].dAtSec <= dElapsedSec)
        ++index;
    return index;
}

std::optional<int64_t> CSimScenario::ProgressAt(double dElapsedSec) const {
    const Step& step = m_Steps[StepIndexAt(dElapsedSec)];
    if (!step.progress)
        return std::nullopt;
    const Progress& p = *step.progress;
    const int64_t nSteps =
        static_cast<int64_t>(std::floor((dElapsedSec - step.dTreeSinceSec) / p.dEverySec));
    const int64_t nValue = p.nFrom + p.nBy * std::max<int64_t>(nSteps, 0);
    return p.nBy >= 0 ? std::min(nValue, p.nTo) : std::max(nValue, p.nTo);
}

std::string CSimScenario::TreeAt(double dElapsedSec) const {
    std::string tree = m_Steps[StepIndexAt(dElapsedSec)].sTree;
    const std::optional<int64_t> progress = ProgressAt(dElapsedSec);
    if (progress) {
        const std::string token = kProgressToken, value = std::to_string(*progress);
        for (size_t at = tree.find(token); at != std::string::npos;
             at = tree.find(token, at + value.size()))
            tree.replace(at, token.size(), value);
    }
    return tree;
}

void CSimScenario::FaultAt(double dElapsedSec, const std::string& endpoint,
                           CEndpointFault& fault) const {
    const Step& step = m_Steps[StepIndexAt(dElapsedSec)];
    std::string error;
    if (step.faults.is_null() || !ParseEndpointFault(step.faults, endpoint, fault, error))
        fault.Reset();
}
