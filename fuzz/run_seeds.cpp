// Runs a fuzz target over the files of the folders given as arguments, if there is no fuzzer to drive it.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// A target with this function uses it to check the good seeds, those named good_*. Their law would prove nothing if the
// reader refused them.
extern "C" [[gnu::weak]] bool IsRead(const std::uint8_t* data, std::size_t size);

int main(int argumentCount, char** arguments) {
    int seeds = 0;
    for (int i = 1; i < argumentCount; ++i) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(arguments[i])) {
            if (!entry.is_regular_file()) continue;
            std::puts(entry.path().c_str());
            std::fflush(stdout);  // so that the file which ends the process is the last one named
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> bytes(std::istreambuf_iterator<char>(file), {});
            const auto* const data = reinterpret_cast<const std::uint8_t*>(bytes.data());
            LLVMFuzzerTestOneInput(data, bytes.size());
            if (IsRead != nullptr && entry.path().filename().string().starts_with("good_") &&
                !IsRead(data, bytes.size())) {
                std::fputs("a good seed is refused\n", stderr);
                return 1;
            }
            ++seeds;
        }
    }
    if (seeds == 0) std::fputs("no seeds\n", stderr);
    return seeds == 0 ? 1 : 0;
}
