#include "storage/TreeText.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/Process.h"

std::string SourceText(const std::string& relative) {
    std::ifstream in(SourcePath(relative), std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string SampleTree(const std::string& name) {
    return SourceText("samples/trees/" + name);
}

std::vector<std::string> SampleTreeNames() {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(SourcePath("samples/trees"), error)) {
        if (entry.path().extension() == ".xml") {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string WholeTree(const std::string& sSystem, const std::string& sMultiplexer,
                      const std::string& sVersion) {
    return "<amEMTL Version=\"" + sVersion +
           "\"><System><Multiplexer><Status>Operational</Status>" + sMultiplexer +
           "</Multiplexer>" + sSystem + "</System></amEMTL>";
}
