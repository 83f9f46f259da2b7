#pragma once

#include "api/NadrelPrinter.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

// A function of the library as a job sees it. What it takes is deduced from its address, so that the table of
// functions cannot disagree with the header.
namespace tool {

enum class Kind {
    int32,
    uint32,
    uint8,
    text,     // zero-terminated UTF-16
    picture,  // the name of a bitmap file, zero-terminated UTF-16
    byteText, // zero-terminated bytes
    bytes     // any bytes; the argument that follows says how many of them
};

struct Parameter {
    std::string_view name;
    Kind kind;
};

// The name of an argument that is a bitmap file's name.
struct PictureName {
    std::string_view name;
};

using Text = std::basic_string<NadrelChar>;

// A checked argument: a number within its parameter's range, text, or bytes of either kind.
using Value = std::variant<int64_t, Text, std::string>;

namespace detail {

template <typename T>
inline constexpr bool kNoSuchParameter = false;

template <typename T>
constexpr Kind KindOf() {
    if constexpr (std::is_same_v<T, int32_t>)
        return Kind::int32;
    else if constexpr (std::is_same_v<T, uint32_t>)
        return Kind::uint32;
    else if constexpr (std::is_same_v<T, uint8_t>)
        return Kind::uint8;
    else if constexpr (std::is_same_v<T, const NadrelChar *>)
        return Kind::text;
    else if constexpr (std::is_same_v<T, const char *>)
        return Kind::byteText;
    else if constexpr (std::is_same_v<T, const uint8_t *>)
        return Kind::bytes;
    else
        static_assert(kNoSuchParameter<T>, "a job cannot write an argument of this type");
}

template <typename T>
constexpr Parameter Describe(std::string_view name) {
    return {name, KindOf<T>()};
}

template <typename T>
constexpr Parameter Describe(PictureName picture) {
    static_assert(KindOf<T>() == Kind::text, "a file's name is text");
    return {picture.name, Kind::picture};
}

template <typename T>
T Take(const Value &value) {
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(std::get<int64_t>(value));
    else if constexpr (std::is_same_v<T, const NadrelChar *>)
        return std::get<Text>(value).c_str();
    else
        return reinterpret_cast<T>(std::get<std::string>(value).c_str());
}

template <typename Result, typename... Arguments, size_t... I>
std::optional<int32_t> Invoke(Result (*function)(Arguments...),
                              [[maybe_unused]] const std::vector<Value> &values, std::index_sequence<I...>) {
    if constexpr (std::is_void_v<Result>) {
        function(Take<Arguments>(values[I])...);
        return std::nullopt;
    } else {
        static_assert(std::is_same_v<Result, int32_t>, "a job can judge no result of this type");
        return function(Take<Arguments>(values[I])...);
    }
}

} // namespace detail

class Function {
  public:
    // The names of the arguments follow the function's address, as in {"PrintDotFeed", &PrintDotFeed, "n"}.
    template <typename Result, typename... Arguments, typename... Names>
    Function(std::string_view functionName, Result (*function)(Arguments...), Names... argumentNames)
        : name(functionName), parameters{detail::Describe<Arguments>(argumentNames)...},
          invoke([function](const std::vector<Value> &values) {
              return detail::Invoke(function, values, std::index_sequence_for<Arguments...>());
          }) {
        static_assert(sizeof...(Arguments) == sizeof...(Names), "every argument has one name");
    }

    // The function's result; nothing for one that returns nothing. There are as many values as parameters,
    // each of its parameter's kind.
    std::optional<int32_t> operator()(const std::vector<Value> &values) const { return invoke(values); }

    std::string_view name;
    std::vector<Parameter> parameters;

  private:
    std::function<std::optional<int32_t>(const std::vector<Value> &)> invoke;
};

// The name with its arguments and their types, as in PrintDotFeed(int32 n).
std::string Signature(const Function &function);

} // namespace tool
