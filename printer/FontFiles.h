#pragma once

#include <memory>
#include <string>

namespace printer {

// Files of the fonts that are installed. The system's list of fonts is read when it is needed first.
class FontFiles {
  public:
    FontFiles();
    ~FontFiles();
    FontFiles(const FontFiles &) = delete;
    FontFiles &operator=(const FontFiles &) = delete;

    // Empty when there is none.
    std::string Monospaced();
    std::string BoldMonospaced();

    // By family name or file name, with or without the file's ending; upper and lower case are the same.
    // Empty when there is none.
    std::string FindByName(const std::string &name);

  private:
    struct Catalogue;
    Catalogue &GetCatalogue();

    std::unique_ptr<Catalogue> catalogue_;
};

} // namespace printer
