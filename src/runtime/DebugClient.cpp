#include "runtime/DebugClient.h"

#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "runtime/SysLog.h"
#include "runtime/TraceServer.h"

namespace {

constexpr char kGlobalFile[] = "global_trace.ini";
constexpr char kGlobalSection[] = "GlobalDebugSettings";
constexpr char kEnvDebugLevel[] = "TL_LOG_DEBUG_LEVEL";
constexpr char kEnvDynamicUpdate[] = "TL_LOG_DYNAMIC_UPDATE";

time_t SystemClock() {
    return time(nullptr);
}

int IsConfigFile(const struct dirent* entry) {
    const char* name = entry->d_name;
    return strncmp(name, ".#", 2) != 0 && strstr(name, ".ini") != nullptr;
}

struct DirentListFree {
    int count;
    void operator()(struct dirent** list) const {
        for (int i = 0; i < count; ++i)
            free(list[i]);
        free(list);
    }
};

bool IsServer(void* symbol) {
    return symbol && static_cast<CITraceServer*>(symbol)->IsTraceServer();
}

}  // namespace

CDebugClient::CDebugClient() : m_sConfigDir(kConfigDir), m_Clock(SystemClock) {}

CDebugClient::CDebugClient(const char* configDir, Clock clock)
    : m_sConfigDir(configDir), m_Clock(clock ? clock : SystemClock) {}

CDebugClient::~CDebugClient() = default;

bool CDebugClient::IsTraceServer() {
    return false;
}

int CDebugClient::Initialize(const char* moduleName) {
    if (!moduleName || !*moduleName)
        return 0;
    m_sModuleName = moduleName;

    struct dirent** raw = nullptr;
    int count = scandir(m_sConfigDir.c_str(), &raw, IsConfigFile, alphasort);
    if (count == 0) {
        free(raw);
        m_bEnabled = m_nLevel != 0;
        return 1;
    }
    std::unique_ptr<struct dirent*, DirentListFree> list(count > 0 ? raw : nullptr,
                                                         DirentListFree{count > 0 ? count : 0});

    m_nFileLevel = kNoFileLevel;
    uint32_t value = 0;
    if (m_GlobalReader.LocateSection(kGlobalSection, kGlobalFile, m_sConfigDir) &&
        m_GlobalReader.ReadKey("DynamicUpdate", value)) {
        m_nDynamicUpdate = value;
    }
    if (const char* env = getenv(kEnvDynamicUpdate)) {
        m_nUpdateInterval = static_cast<uint32_t>(strtol(env, nullptr, 10));
    } else {
        uint32_t setting = m_nDynamicUpdate;
        m_nUpdateInterval = setting == kNoFileLevel ? 0 : setting;
    }

    for (int i = 0; i < count; ++i) {
        if (m_ModuleReader.LocateSection(m_sModuleName.c_str(), list.get()[i]->d_name,
                                         m_sConfigDir)) {
            if (m_ModuleReader.ReadKey("FileDebugLevel", value))
                m_nFileLevel = value;
            if (m_ModuleReader.ReadKey("TraceFlags", value))
                m_nTraceFlags = value;
            break;
        }
    }

    uint32_t level = 0;
    if (const char* env = getenv(kEnvDebugLevel)) {
        level = static_cast<uint32_t>(strtol(env, nullptr, 10));
    } else {
        uint32_t fileLevel = m_nFileLevel;
        level = fileLevel == kNoFileLevel ? 0 : fileLevel;
    }
    m_nLevel = level;
    m_nLevelCopy = level;
    m_bEnabled = level != 0;
    return 1;
}

bool CDebugClient::Reload(ConfigSectionReader& reader, const char* section) {
    if (reader.Path().empty())
        return false;
    struct stat st;
    if (stat(reader.Path().c_str(), &st) != 0) {
        // A file that went is forgotten for the life of the process.
        reader.Clear();
        return false;
    }
    if (st.st_mtime <= reader.m_tModified)
        return false;
    reader.m_tModified = st.st_mtime;
    reader.m_nSize = st.st_size;
    // The held path is reused, so the file name given here is not looked at.
    return reader.LocateSection(section, "", m_sConfigDir);
}

void CDebugClient::CheckGlobalFile() {
    uint32_t value = 0;
    if (Reload(m_GlobalReader, kGlobalSection) && m_GlobalReader.ReadKey("DynamicUpdate", value)) {
        m_nDynamicUpdate = value;
        m_nUpdateInterval = value;
    }
}

void CDebugClient::CheckModuleFile() {
    if (Reload(m_ModuleReader, m_sModuleName.c_str()))
        ReadModuleKeys();
}

void CDebugClient::ReadModuleKeys() {
    uint32_t value = 0;
    if (m_ModuleReader.ReadKey("FileDebugLevel", value)) {
        m_nFileLevel = value;
        m_nLevel = value;
        m_nLevelCopy = value;
    }
    if (m_ModuleReader.ReadKey("TraceFlags", value))
        m_nTraceFlags = value;
    if (m_ModuleReader.ReadKey("MemoryTracesFlag", value))
        m_nMemoryTracesFlag = value;
}

void CDebugClient::CheckConfigFiles() {
    uint32_t interval = m_nUpdateInterval.load(std::memory_order_relaxed);
    if (interval == 0)
        return;
    time_t now = m_Clock();
    time_t last = m_tLastCheck.load(std::memory_order_relaxed);
    if (!(now >= last + static_cast<time_t>(interval) || now < last))
        return;
    // One thread updates the readers; the others trace on with the values they see.
    if (m_bUpdating.test_and_set(std::memory_order_acquire))
        return;
    m_tLastCheck = now;
    CheckGlobalFile();
    CheckModuleFile();
    m_bUpdating.clear(std::memory_order_release);
}

CITraceServer* CDebugClient::ResolveServer() {
    CITraceServer* server = m_pServer.load(std::memory_order_acquire);
    if (server)
        return server;
    void* symbol = dlsym(RTLD_DEFAULT, "Debug");
    if (!symbol)
        return nullptr;
    if (!IsServer(symbol)) {
        symbol = dlsym(RTLD_NEXT, "Debug");
        if (!IsServer(symbol))
            return nullptr;
    }
    server = static_cast<CITraceServer*>(symbol);
    m_pServer.store(server, std::memory_order_release);
    return server;
}

const char* CDebugClient::ModuleNameForServer() const {
    return m_sModuleName.c_str();
}

void CDebugClient::Trace(uint32_t level, const char* format, ...) {
    CheckConfigFiles();
    if (m_nLevel.load(std::memory_order_relaxed) < level)
        return;
    va_list args;
    if (CITraceServer* server = ResolveServer()) {
        va_start(args, format);
        server->TraceMessage(format, &args, ModuleNameForServer());
        va_end(args);
    }
    if (level == 0 && format) {
        va_start(args, format);
        WriteSysLog(format, args);
        va_end(args);
    }
}

void CDebugClient::WriteToServer(const char* format, va_list* args) {
    if (CITraceServer* server = ResolveServer())
        server->Write(format, args, ModuleNameForServer());
}

void CDebugClient::Print(const char* format, ...) {
    va_list args;
    va_start(args, format);
    WriteToServer(format, &args);
    va_end(args);
}

void CDebugClient::PrintLevel(uint32_t, const char* format, ...) {
    va_list args;
    va_start(args, format);
    WriteToServer(format, &args);
    va_end(args);
}
