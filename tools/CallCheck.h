#pragma once

#include "tools/Catalogue.h"
#include "tools/JobLine.h"

#include <filesystem>
#include <vector>

// Holds a line's call against the functions there are.
namespace tool {

struct CheckedCall {
    Entry entry;
    std::vector<Value> arguments;
};

// Throws a LineFault for a name that cannot be called and for a wrong number of arguments. An argument that
// does not suit its parameter is added to `faults`, and the call is then not to be made. A picture's name is
// one in the folder, which becomes a part of the argument.
CheckedCall CheckCall(const JobLine &line, const Catalogue &catalogue, const std::filesystem::path &folder,
                      std::vector<LineFault> &faults);

} // namespace tool
