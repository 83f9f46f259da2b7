#include "tools/Function.h"

namespace tool {
namespace {

std::string_view TypeName(Kind kind) {
    switch (kind) {
    case Kind::int32:
        return "int32";
    case Kind::uint32:
        return "uint32";
    case Kind::uint8:
        return "uint8";
    case Kind::text:
        return "text";
    case Kind::picture:
        return "picture";
    case Kind::byteText:
    case Kind::bytes:
        return "bytes";
    }
    return "";
}

} // namespace

std::string Signature(const Function &function) {
    std::string arguments;
    for (const Parameter &parameter : function.parameters) {
        if (!arguments.empty())
            arguments += ", ";
        arguments += std::string(TypeName(parameter.kind)) + ' ' + std::string(parameter.name);
    }
    return std::string(function.name) + '(' + arguments + ')';
}

} // namespace tool
