// Runs a fuzz target over saved inputs, for builds without a fuzzing engine: every file named,
// and every file in every folder named, is one input. This is how the seed inputs and the inputs
// that once failed stay checked in ordinary test runs.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    // A copy of exactly the input's length, so that a read past its end is caught.
    std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    unsigned int count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        std::vector<std::filesystem::path> files;
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::directory_iterator(path)) {
                files.push_back(entry.path());
            }
        } else {
            files.push_back(path);
        }
        for (const auto& file : files) {
            if (!replay(file)) {
                return 1;
            }
            ++count;
        }
    }
    std::printf("%u inputs replayed\n", count);
    return count == 0 ? 1 : 0;
}
