// The protections of the built module and programs, read from their ELF files with readelf:
// stack protector, checked libc calls, read-only relocations bound at load, position-
// independent programs, and the module's exports. Prints the table of what each file has.
// TLR_HARDENING_DIR=<build dir> reads another build's files instead (to compare two builds).
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <iostream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/Process.h"

namespace {

struct ElfFacts {
    bool stackProtector = false;  // __stack_chk_fail imported
    bool fortify = false;         // some __*_chk of libc imported
    bool relro = false;           // a GNU_RELRO segment
    bool bindNow = false;         // BIND_NOW, or NOW in FLAGS_1
    bool pie = false;             // PIE in FLAGS_1
    std::set<std::string> exports;
};

std::vector<std::string> Words(const std::string& line) {
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;)
        words.push_back(word);
    return words;
}

bool Has(const std::vector<std::string>& words, const char* word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// readelf's lines that tell a protection: a GNU_RELRO segment; BIND_NOW in FLAGS or NOW in
// FLAGS_1; PIE in FLAGS_1; and a symbol of the dynamic table, "N: VALUE SIZE TYPE BIND VIS
// NDX NAME[@VERSION]", imported when NDX is UND. (No std::regex: GCC 12 warns inside it.)
ElfFacts ReadElf(const std::string& path) {
    ElfFacts facts;
    const ProcessResult r =
        RunProcess({"env", "LC_ALL=C", "readelf", "-W", "-l", "-d", "--dyn-syms", path});
    EXPECT_EQ(r.exitCode, 0) << path << ": " << r.err;
    for (const std::string& line : Lines(r.out)) {
        const std::vector<std::string> w = Words(line);
        facts.relro |= !w.empty() && w[0] == "GNU_RELRO";
        facts.bindNow |= Has(w, "(BIND_NOW)") || (Has(w, "(FLAGS)") && Has(w, "BIND_NOW")) ||
                         (Has(w, "(FLAGS_1)") && Has(w, "NOW"));
        facts.pie |= Has(w, "(FLAGS_1)") && Has(w, "PIE");
        if (w.size() < 8 || w[0].back() != ':' || !isdigit(static_cast<unsigned char>(w[0][0])))
            continue;
        const std::string name = w[7].substr(0, w[7].find('@'));
        const bool checked = name.size() > 6 && name.compare(0, 2, "__") == 0 &&
                             name.compare(name.size() - 4, 4, "_chk") == 0;
        if (w[6] == "UND") {
            facts.stackProtector |= name == "__stack_chk_fail";
            facts.fortify |= checked;
        } else if (w[4] != "LOCAL") {
            facts.exports.insert(name);
        }
    }
    return facts;
}

enum class Kind { kModule, kProgram };

struct Built {
    const char* file;
    Kind kind;
};

// What is expected of every file of ours: the module's exports, the programs' PIE. A build
// without _FORTIFY_SOURCE (Debug, sanitizers) expects no checked calls.
const Built kBuilt[] = {
    {"em_tlraid.so", Kind::kModule}, {"emhost", Kind::kProgram},     {"tlrcd-sim", Kind::kProgram},
    {"gen-tree", Kind::kProgram},    {"host-facts", Kind::kProgram},
};
const std::set<std::string> kModuleExports = {"EM_Create", "EM_Delete", "EM_GetModuleName",
                                              "EM_SetupAction"};

std::string Cell(bool has, bool applies = true) {
    return applies ? (has ? "yes" : "NO") : "-";
}

std::string BuildDir() {
    const char* other = getenv("TLR_HARDENING_DIR");
    return other && *other ? other : TLR_BUILD_DIR;
}

TEST(Hardening, ModuleAndProgramsHaveEveryProtection) {
    const std::string dir = BuildDir();
    std::ostringstream table;
    table << "Hardening of " << dir << "\n"
          << "file          stack-protector  fortify  RELRO  BIND_NOW  PIE  exports\n";
    for (const Built& b : kBuilt) {
        SCOPED_TRACE(b.file);
        const ElfFacts f = ReadElf(dir + "/" + b.file);
        const bool module = b.kind == Kind::kModule;
        char row[160];
        snprintf(row, sizeof row, "%-13s %-16s %-8s %-6s %-9s %-4s %s\n", b.file,
                 Cell(f.stackProtector).c_str(), Cell(f.fortify).c_str(), Cell(f.relro).c_str(),
                 Cell(f.bindNow).c_str(), Cell(f.pie, !module).c_str(),
                 module ? (f.exports == kModuleExports ? "the four entry points" : "OTHERS") : "-");
        table << row;

        EXPECT_TRUE(f.stackProtector);
        EXPECT_EQ(f.fortify, TLR_EXPECT_FORTIFY != 0);
        EXPECT_TRUE(f.relro);
        EXPECT_TRUE(f.bindNow);
        if (module)
            EXPECT_EQ(f.exports, kModuleExports);
        else
            EXPECT_TRUE(f.pie);
    }
    std::cout << table.str();
}

// A program built without any of the protections: the check must see each one missing, so
// that a change in readelf's output can't make the test above pass on its own.
TEST(Hardening, CheckSeesEachProtectionMissing) {
    const ElfFacts f = ReadElf(BuildPath("tests/hardening_control"));
    EXPECT_FALSE(f.stackProtector);
    EXPECT_FALSE(f.fortify);
    EXPECT_FALSE(f.relro);
    EXPECT_FALSE(f.bindNow);
    EXPECT_FALSE(f.pie);
}

}  // namespace
