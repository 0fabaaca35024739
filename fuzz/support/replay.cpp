// The plain driver: runs a family's target over the files of its committed
// corpus (or the files named), so every build replays the corpus as an
// ordinary test. Fails when any input fails, and when the corpus leaves a
// function of the family unreached.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool read_file(const std::string& path, std::vector<uint8_t>& out) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    out.clear();
    uint8_t buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.insert(out.end(), buf, buf + n);
    std::fclose(f);
    return true;
}

void collect(const std::string& path, std::vector<std::string>& files) {
    struct stat st;
    if (stat(path.c_str(), &st) != 0) return;
    if (!S_ISDIR(st.st_mode)) {
        files.push_back(path);
        return;
    }
    DIR* dir = opendir(path.c_str());
    if (!dir) return;
    std::vector<std::string> names;
    while (dirent* e = readdir(dir))
        if (e->d_name[0] != '.') names.push_back(path + "/" + e->d_name);
    closedir(dir);
    for (const std::string& n : names) collect(n, files);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files;
    for (int i = 1; i < argc; ++i) collect(argv[i], files);
    if (files.empty()) {
        std::fprintf(stderr, "usage: %s corpus-directory-or-file...\n(no inputs found)\n", argv[0]);
        return 2;
    }
    std::vector<uint8_t> data;
    for (const std::string& f : files) {
        if (!read_file(f, data)) {
            std::fprintf(stderr, "cannot read %s\n", f.c_str());
            return 2;
        }
        std::fprintf(stderr, "%s\n", f.c_str());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
    int unreached = 0;
    for (size_t i = 0; i < orufuzz::entry_count(); ++i) {
        if (orufuzz::entry_reached(i)) continue;
        std::fprintf(stderr, "the corpus never calls %s\n", orufuzz::entry_name(i));
        ++unreached;
    }
    std::printf("%zu inputs replayed, %zu functions, %d unreached\n", files.size(), orufuzz::entry_count(), unreached);
    return unreached ? 1 : 0;
}
