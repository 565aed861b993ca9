// Runs a fuzz target over files without libFuzzer: every file named on the command line, and
// every file inside a named folder, is handed to LLVMFuzzerTestOneInput once. A crash or a
// sanitizer report fails the run; otherwise the count of inputs is printed.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

int runOne(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return 1;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)),
                                  std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    int inputs = 0;
    int failures = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path argument(argv[i]);
        if (std::filesystem::is_directory(argument)) {
            std::vector<std::filesystem::path> files;
            for (const auto &entry : std::filesystem::recursive_directory_iterator(argument)) {
                if (entry.is_regular_file())
                    files.push_back(entry.path());
            }
            std::sort(files.begin(), files.end());
            for (const auto &file : files) {
                failures += runOne(file);
                ++inputs;
            }
        } else {
            failures += runOne(argument);
            ++inputs;
        }
    }
    std::printf("replayed %d inputs\n", inputs);
    return failures == 0 && inputs > 0 ? 0 : 1;
}
