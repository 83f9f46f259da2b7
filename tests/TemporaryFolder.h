#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

// A folder of a test's own, gone with all that is in it at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "nadrel-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), pattern);
        path = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    const std::filesystem::path &Path() const { return path; }
    std::string Path(const std::string &file) const { return path / file; }
    // As hosts give names.
    std::u16string Name() const { return path.u16string(); }
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
    std::filesystem::path path;
};
