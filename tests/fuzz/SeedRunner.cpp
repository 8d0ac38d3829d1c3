#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// Runs a fuzz target on each file in a folder when libFuzzer is not available to do it.
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::cerr << "usage: " << argv[0] << " FOLDER" << std::endl;
        return 2;
    }
    int count = 0;
    for (const auto &entry : std::filesystem::directory_iterator(argv[1])) {
        std::cout << entry.path().filename().string() << std::endl;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.data()),
                               content.size());
        ++count;
    }
    std::cout << count << " seeds" << std::endl;
    // Fail on an empty folder, which would test nothing.
    return count > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
