#include "fuzz/Input.h"

#include <filesystem>
#include <fstream>
#include <iterator>

// Feeds a fuzz target the files named and every file of the folders named, in order, where no fuzzing engine drives
// it.

namespace {

std::vector<std::filesystem::path> FilesOf(const char *name) {
    if (!std::filesystem::is_directory(name))
        return {name};
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(name))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

fuzz::Bytes ContentOf(const std::filesystem::path &file) {
    std::ifstream in(file, std::ios::binary);
    fuzz::Require(in.is_open(), "the file cannot be read");
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace

int main(int argc, char **argv) {
    int fed = 0;
    for (int i = 1; i < argc; ++i)
        for (const std::filesystem::path &file : FilesOf(argv[i])) {
            std::printf("%s\n", file.filename().c_str());
            std::fflush(stdout); // the last one told is the one that ends the process
            const fuzz::Bytes content = ContentOf(file);
            LLVMFuzzerTestOneInput(content.data(), content.size());
            ++fed;
        }
    std::printf("%d files\n", fed);
    return fed > 0 ? 0 : 1;
}
