#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// A folder of a test's own, gone with all that is in it at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "nadrel-XXXXXX").string();
        path = mkdtemp(pattern.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    std::string Path(const std::string &file) const { return path + "/" + file; }
    // As hosts give names.
    std::u16string Name() const { return std::filesystem::path(path).u16string(); }
    std::u16string Name(const std::string &file) const {
        return std::filesystem::path(Path(file)).u16string();
    }

    void Put(const std::string &file, const std::vector<uint8_t> &bytes) const {
        std::ofstream out(Path(file), std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    std::vector<uint8_t> Get(const std::string &file) const {
        std::ifstream in(Path(file), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    bool Has(const std::string &file) const { return std::filesystem::exists(Path(file)); }

  private:
    std::string path;
};
