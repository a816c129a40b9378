#include "storage/TreeText.h"

#include <dirent.h>

#include <algorithm>
#include <fstream>
#include <memory>
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
    std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(SourcePath("samples/trees").c_str()), closedir);
    if (!dir) {
        return names;
    }
    while (dirent* entry = readdir(dir.get())) {
        std::string name = entry->d_name;
        if (name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0) {
            names.push_back(name);
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
