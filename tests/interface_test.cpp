// The public header, the families' lists and the library agree: every name
// the lists generate is declared once in the header, and every declared name
// stands in exactly one list. (tools/check-library compares the header with
// the library's exports.)
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "function_lists.h"

namespace {

// Names after ORUCV_API in the header, up to the ( of a function or the [ of
// a table, as tools/check-library reads them.
std::multiset<std::string> declared_names() {
    std::ifstream in(ORUCV_PUBLIC_HEADER);
    std::string source, line;
    while (std::getline(in, line))
        if (line.rfind('#', 0) != 0) source += line + "\n";  // preprocessor lines define ORUCV_API
    std::multiset<std::string> names;
    const std::regex declaration(R"(ORUCV_API[^(\[;#]*?([A-Za-z_][A-Za-z0-9_]*)\s*[(\[])");
    for (auto it = std::sregex_iterator(source.begin(), source.end(), declaration); it != std::sregex_iterator(); ++it)
        names.insert((*it)[1]);
    return names;
}

#define LISTED_NAME(name, ...) #name,
const char* const kListed[] = {ORUCV_LISTED_FUNCTIONS(LISTED_NAME)};

}  // namespace

TEST(InterfaceLists, ListedNamesAreDeclaredOnce) {
    const auto declared = declared_names();
    ASSERT_FALSE(declared.empty()) << "no declarations read from " << ORUCV_PUBLIC_HEADER;
    std::map<std::string, int> listed;
    for (const char* name : kListed) ++listed[name];
    for (const auto& entry : listed) {
        EXPECT_EQ(entry.second, 1) << entry.first << " stands in more than one line of the lists";
        EXPECT_EQ(declared.count(entry.first), 1u) << entry.first << " is listed but declared "
                                                    << declared.count(entry.first) << " times";
    }
}

TEST(InterfaceLists, EveryDeclaredNameIsListed) {
    const std::set<std::string> listed(std::begin(kListed), std::end(kListed));
    std::string missing;
    for (const std::string& name : declared_names())
        if (!listed.count(name)) missing += " " + name;
    if (!ORUCV_ALL_FAMILIES_LISTED) GTEST_SKIP() << "not yet in a family list:" << missing;
    EXPECT_TRUE(missing.empty()) << "declared in the header but in no family list:" << missing;
}
