#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace endtoend {

// An empty folder that is gone with its owner.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "nadrel-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        path = name;
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    const std::filesystem::path &Path() const { return path; }

  private:
    std::filesystem::path path;
};

} // namespace endtoend
