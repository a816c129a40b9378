#pragma once

// What the session tests share: running tlr-rest-driver inside the sandbox against the
// simulator, and reading the driver's lines and the simulator's request log.

#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <string>
#include <vector>

#include "support/TempDir.h"

struct Session {
    int nStatus = -1;
    std::string sOut;
    std::vector<rapidjson::Document> steps;
    std::vector<rapidjson::Document> requests;
};

// A string member, or "<none>".
std::string Str(const rapidjson::Value& object, const char* key);
// The access token that a login reply carried.
std::string IssuedToken(const rapidjson::Value& request);

// A private directory with the simulator's tree, control file and request log.
class RestSandboxTest : public ::testing::Test {
  protected:
    explicit RestSandboxTest(const std::string& tree) : m_sTree(m_Dir.Write("tree.xml", tree)) {}

    // Runs the driver's steps in the sandbox, with the simulator.
    Session Run(const std::vector<std::string>& steps,
                const std::vector<std::string>& sandboxOptions = {});
    void Control(const std::string& json) { m_Dir.Write("control.json", json); }

    TempDir m_Dir;
    std::string m_sTree;
    std::string m_sControl = m_Dir.Path() + "/control.json";
    std::string m_sLog = m_Dir.Path() + "/requests.jsonl";
};
