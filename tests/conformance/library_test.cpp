// The library as a whole: its version record, the agreement of the public
// header, the shared library's dynamic symbols and the export table, and
// the absence of writable data.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "exports.h"

namespace orvtest {
namespace {

TEST(VersionRecord, IsTheConstantRecordEveryCall) {
    const OrvLibraryVersion* v = orvvmGetLibVersion();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v, orvvmGetLibVersion());
    EXPECT_EQ(v->major, 6);
    EXPECT_EQ(v->minor, 1);
    EXPECT_EQ(v->buildMajor, 137);
    EXPECT_EQ(v->buildMinor, 761);
    EXPECT_EQ(std::memcmp(v->processorTag, "k3\0\0", 4), 0);
    ASSERT_TRUE(v->fileName && v->versionText && v->buildDate);
    EXPECT_STREQ(v->fileName, "orvvmk3-6.1.dll");
    EXPECT_STREQ(v->versionText, "6.1 build 137.36");
    EXPECT_STREQ(v->buildDate, "Sep 29 2009");
    // Fields in this order, with no padding but what the pointers need.
    EXPECT_EQ(offsetof(OrvLibraryVersion, processorTag), 16u);
    EXPECT_EQ(offsetof(OrvLibraryVersion, fileName), 24u);
}

std::string slurp(const char* path) {
    std::ifstream in(path);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

// The parameter list each shape must have, for element type T and real R.
std::string expectedParameters(const ExportInfo& e) {
    static const std::map<std::string, std::pair<std::string, std::string>> kTypes = {
        {"32f", {"Orv32f", "Orv32f"}}, {"64f", {"Orv64f", "Orv64f"}},
        {"32fc", {"Orv32fc", "Orv32f"}}, {"64fc", {"Orv64fc", "Orv64f"}}};
    const std::string T = kTypes.at(e.typeTag).first, R = kTypes.at(e.typeTag).second;
    switch (e.shape) {
        case Shape::U:
            return "const " + T + "* src, " + T + "* dst, int32_t len";
        case Shape::B:
            return "const " + T + "* src1, const " + T + "* src2, " + T + "* dst, int32_t len";
        case Shape::K:
            return "const " + T + "* src, " + T + " constant, " + T + "* dst, int32_t len";
        case Shape::S: {
            // The two destinations are named by what they receive.
            const bool modf = e.family == "Modf";
            return "const " + T + "* src, " + T + (modf ? "* dstInt, " : "* dstSin, ") + T +
                   (modf ? "* dstFrac" : "* dstCos") + ", int32_t len";
        }
        case Shape::M:
            return "const " + T + "* src, " + R + "* dst, int32_t len";
        case Shape::P:
            return "const " + R + "* src, " + T + "* dst, int32_t len";
    }
    return "";
}

// name -> parameter list, with whitespace normalised.
std::map<std::string, std::string> headerPrototypes() {
    std::string text = slurp(ORVVM_HEADER_PATH);
    std::map<std::string, std::string> out;
    std::regex proto(R"(ORVVM_API\s+OrvStatus\s+(\w+)\s*\(([^)]*)\)\s*;)");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), proto); it != std::sregex_iterator(); ++it) {
        std::string params = std::regex_replace((*it)[2].str(), std::regex(R"(\s+)"), " ");
        out[(*it)[1]] = params;
    }
    return out;
}

std::set<std::string> dynamicSymbols() {
    std::set<std::string> names;
    FILE* p = popen("nm -D --defined-only " ORVVM_LIBRARY_PATH, "r");
    if (!p) return names;
    char line[512];
    while (std::fgets(line, sizeof line, p)) {
        char addr[64], kind[8], name[400];
        if (std::sscanf(line, "%63s %7s %399s", addr, kind, name) == 3) names.insert(name);
    }
    pclose(p);
    return names;
}

TEST(Exports, HeaderSymbolsAndTableAgree) {
    const auto header = headerPrototypes();
    const auto symbols = dynamicSymbols();
    ASSERT_FALSE(symbols.empty()) << "could not read the dynamic symbols";
    std::set<std::string> declared;
    for (const auto& [name, params] : header) {
        declared.insert(name);
        const ExportInfo* e = findExport(name);
        ASSERT_NE(e, nullptr) << name << " is declared but is not an export";
        EXPECT_EQ(params, expectedParameters(*e)) << name;
        EXPECT_TRUE(symbols.count(name)) << name << " is declared but the library lacks it";
    }
    for (const ExportInfo* e : implementedExports())
        EXPECT_TRUE(declared.count(e->name)) << e->name << " is in the library but not in the header";
    std::set<std::string> expected = declared;
    expected.insert("orvvmGetLibVersion");
    for (const std::string& s : symbols) EXPECT_TRUE(expected.count(s)) << "stray exported symbol " << s;
    EXPECT_EQ(symbols.size(), expected.size());
    EXPECT_NE(std::string(slurp(ORVVM_HEADER_PATH)).find("orvvmGetLibVersion(void)"), std::string::npos);
}

// No object of the library has writable data: no .data or .bss of its own
// (read-only data after relocation is fine).
TEST(Exports, NoWritableData) {
    FILE* p = popen("size -A " ORVVM_STATIC_LIBRARY_PATH, "r");
    ASSERT_NE(p, nullptr);
    char line[512];
    std::string object;
    int objects = 0;
    while (std::fgets(line, sizeof line, p)) {
        char section[256];
        unsigned long size = 0;
        if (std::strstr(line, "(ex ")) {
            object = line;
            ++objects;
            continue;
        }
        if (std::sscanf(line, "%255s %lu", section, &size) != 2 || size == 0) continue;
        std::string s = section;
        bool writable = s == ".data" || s == ".bss" || s.rfind(".bss.", 0) == 0 ||
                        (s.rfind(".data.", 0) == 0 && s.rfind(".data.rel.ro", 0) != 0);
        EXPECT_FALSE(writable) << s << " of " << size << " bytes in " << object;
    }
    pclose(p);
    EXPECT_GT(objects, 0);
}

TEST(Exports, TableHasEveryFamilyAndShape) {
    EXPECT_EQ(allExports().size(), 390u);
    std::set<std::string> families;
    for (const ExportInfo& e : allExports()) families.insert(e.family);
    EXPECT_EQ(families.size(), 52u);
}

}  // namespace
}  // namespace orvtest
