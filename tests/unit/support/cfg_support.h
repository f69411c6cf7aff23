// Shared by the configuration store's tests: the sandbox root, file
// helpers, a recording fake driver, and the driver payloads as the wire
// layout writes them (literal offsets, independent of the store's code).
#pragma once

#include <libxml/parser.h>
#include <libxml/xpath.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "mpi/mpi_usr.h"
#include "test_files.h"
#include "uil/uil_cfg.h"

namespace cfgtest {

namespace fs = std::filesystem;

// The run's sandbox root, made and later removed by the test main; the
// store's folders are added at the first use, before the program's first
// look at them.
inline const std::string& sandbox()
{
    static const std::string root = [] {
        const char* dir = std::getenv("CVADM_ROOT");
        if (dir == nullptr || *dir == '\0') {
            std::fprintf(stderr, "CVADM_ROOT is not set: these tests need the sandbox of the test main\n");
            std::abort();
        }
        fs::create_directories(std::string(dir) + "/etc");
        fs::create_directories(std::string(dir) + "/opt/Corvane/log");
        UIL_GetLogPathName();
        return std::string(dir);
    }();
    return root;
}

inline std::string cfgPath() { return sandbox() + "/etc/user_cfg.xml"; }
inline std::string bakPath() { return sandbox() + "/etc/user_cfg.xml.bak"; }
inline std::string lockPath() { return sandbox() + "/etc/usercfgxml.lock"; }

inline std::string readFile(const std::string& path) { return testfiles::text(path); }

inline void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
}

inline std::string traceText() { return readFile(sandbox() + "/opt/Corvane/log/cli_uil_log.txt"); }

inline const char kSmallDoc[] =
    "<?xml version=\"1.0\"?>\n<cvcfg><common><workingmode>1</workingmode>"
    "<loadbalancemode>round-robin</loadbalancemode></common><array/><lun/></cvcfg>\n";

// Whether the file parses as a configuration document.
inline bool parsesAsConfig(const std::string& path)
{
    xmlDoc* doc = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    bool ok = doc != nullptr && xmlDocGetRootElement(doc) != nullptr &&
              std::string(reinterpret_cast<const char*>(xmlDocGetRootElement(doc)->name)) == "cvcfg";
    xmlFreeDoc(doc);
    return ok;
}

// The texts `xpath` selects in the file, in document order (empty when the
// file does not parse).
inline std::vector<std::string> valuesAt(const std::string& path, const std::string& xpath)
{
    std::vector<std::string> out;
    xmlDoc* doc = xmlReadFile(path.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR);
    if (doc == nullptr) {
        return out;
    }
    xmlXPathContext* ctx = xmlXPathNewContext(doc);
    xmlXPathObject* obj = xmlXPathEvalExpression(reinterpret_cast<const xmlChar*>(xpath.c_str()), ctx);
    if (obj != nullptr && obj->nodesetval != nullptr) {
        for (int i = 0; i < obj->nodesetval->nodeNr; ++i) {
            xmlChar* text = xmlNodeGetContent(obj->nodesetval->nodeTab[i]);
            out.emplace_back(text != nullptr ? reinterpret_cast<const char*>(text) : "");
            xmlFree(text);
        }
    }
    xmlXPathFreeObject(obj);
    xmlXPathFreeContext(ctx);
    xmlFreeDoc(doc);
    return out;
}

inline std::optional<std::string> valueAt(const std::string& path, const std::string& xpath)
{
    std::vector<std::string> all = valuesAt(path, xpath);
    if (all.empty()) {
        return std::nullopt;
    }
    return all.front();
}

// ---------------------------------------------------------------------------
// Fake driver: records every request with what the file held at that
// moment, answers with a scripted result per request number.
struct Sent {
    uint32_t code;
    std::vector<uint8_t> bytes;
    std::string fileAtSend;
};

struct FakeDriver {
    std::vector<Sent> sent;
    std::map<uint32_t, uint32_t> resultByNr;  // default: success
    std::string defaultPrimarySn;             // answered to the default dual-site query
    void (*onSend)(const Sent&) = nullptr;

    static FakeDriver& get()
    {
        static FakeDriver driver;
        return driver;
    }
    static uint32_t send(const UiaRequest& req, UiaPayload& payload)
    {
        FakeDriver& d = get();
        d.sent.push_back({req.code(), std::vector<uint8_t>(payload.data(), payload.data() + payload.size()),
                          readFile(cfgPath())});
        if (d.onSend != nullptr) {
            d.onSend(d.sent.back());
        }
        auto it = d.resultByNr.find(req.nr);
        uint32_t rc = it != d.resultByNr.end() ? it->second : MPI_RET_SUCCESS;
        if (rc == MPI_RET_SUCCESS && req.nr == 93 && !d.defaultPrimarySn.empty()) {
            for (size_t i = 0; i < d.defaultPrimarySn.size() && i < 20; ++i) {
                payload.setU8(5 + i, static_cast<uint8_t>(d.defaultPrimarySn[i]));  // serial number at 5..24
            }
        }
        return rc;
    }
    void reset()
    {
        sent.clear();
        resultByNr.clear();
        defaultPrimarySn.clear();
        onSend = nullptr;
        (void)UIL_CfgSetDriverSender(&FakeDriver::send);
    }
    size_t count(uint32_t code) const
    {
        size_t n = 0;
        for (const Sent& s : sent) {
            n += s.code == code ? 1 : 0;
        }
        return n;
    }
};

// ---------------------------------------------------------------------------
// Payloads as the wire layout writes them: literal offsets, little-endian.
inline void putLe32(std::vector<uint8_t>& b, size_t off, uint32_t v)
{
    for (int i = 0; i < 4; ++i) {
        b[off + i] = static_cast<uint8_t>(v >> (8 * i));
    }
}
inline void putStr(std::vector<uint8_t>& b, size_t off, const std::string& s)
{
    for (size_t i = 0; i < s.size(); ++i) {
        b[off + i] = static_cast<uint8_t>(s[i]);
    }
}

struct WireItem {
    std::string name;
    std::string value;
};

// type @0, instance @4 (33 bytes), count @40, items from @44 of 96 bytes:
// name @+0 (32 bytes), value @+32 (64 bytes).
inline std::vector<uint8_t> notifyBytes(uint32_t type, const std::string& instance, const std::vector<WireItem>& items)
{
    std::vector<uint8_t> b(44 + 96 * items.size(), 0);
    putLe32(b, 0, type);
    putStr(b, 4, instance);
    putLe32(b, 40, static_cast<uint32_t>(items.size()));
    for (size_t i = 0; i < items.size(); ++i) {
        putStr(b, 44 + 96 * i, items[i].name);
        putStr(b, 44 + 96 * i + 32, items[i].value);
    }
    return b;
}

// type @0, instance @4 (33 bytes), item @37 (32 bytes), 72 bytes in all.
inline std::vector<uint8_t> deleteBytes(uint32_t type, const std::string& instance, const std::string& item)
{
    std::vector<uint8_t> b(72, 0);
    putLe32(b, 0, type);
    putStr(b, 4, instance);
    putStr(b, 37, item);
    return b;
}

inline constexpr uint32_t kNotifyCode = 0x808C4D46;
inline constexpr uint32_t kDeleteCode = 0x80484D47;
inline constexpr uint32_t kDsInfoCode = 0x801C4D5D;

}  // namespace cfgtest
