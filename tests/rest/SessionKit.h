#pragma once

// What the session tests share: running tlr-rest-driver inside the sandbox against the
// simulator, and reading the driver's lines and the simulator's request log.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

struct Session {
    int nStatus = -1;
    std::string sOut;
    std::vector<rapidjson::Document> steps;
    std::vector<rapidjson::Document> requests;
};

// One JSON document per line; lines that don't parse are left out.
std::vector<rapidjson::Document> ParseLines(const std::string& text);
// A string member, or "<none>".
std::string Str(const rapidjson::Value& object, const char* key);
// The access token that a login reply carried.
std::string IssuedToken(const rapidjson::Value& request);
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& text);

// A private directory with the simulator's tree, control file and request log.
class RestSandboxTest : public ::testing::Test {
  protected:
    explicit RestSandboxTest(const std::string& tree) : m_sInitialTree(tree) {}
    void SetUp() override;
    void TearDown() override;

    // Runs the driver's steps in the sandbox, with the simulator unless withSim is false.
    Session Run(const std::vector<std::string>& steps,
                const std::vector<std::string>& sandboxOptions = {}, bool withSim = true);

    std::string m_sInitialTree;
    std::string m_sDir;
    std::string m_sTree;
    std::string m_sControl;
    std::string m_sLog;
};
