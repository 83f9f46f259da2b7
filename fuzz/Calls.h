#pragma once

#include "fuzz/Input.h"

#include "api/NadrelPrinter.h"
#include "tests/platform/ScriptedPlatform.h"

#include <cstring>
#include <tuple>

// Calls of a function with whatever arguments its type allows.
namespace fuzz {

template <typename T>
class Argument {
  public:
    explicit Argument(Input &input) : number(input.Number<T>()) {}
    T Passed() const { return number; }

  private:
    T number;
};

template <typename Char>
class Argument<const Char *> {
  public:
    explicit Argument(Input &input) : text(input.Text<Char>()) {}
    const Char *Passed() const { return text ? text->c_str() : nullptr; }

  private:
    std::optional<std::basic_string<Char>> text;
};

// Longer ones only wait longer.
inline int32_t TimeoutFrom(Input &input) {
    return std::min(input.Number<int32_t>(), 2000);
}

template <typename Result>
void Use(Result result) {
    if constexpr (std::is_same_v<Result, const char *>)
        Require(result == nullptr || std::strlen(result) <= 409600,
                "converted text is longer than it may be");
}

template <typename Result, typename... Arguments>
void CallWith(Result (*function)(Arguments...), Input &input) {
    const std::tuple<Argument<Arguments>...> arguments{Argument<Arguments>(input)...};
    const auto call = [&](const auto &...argument) { return function(argument.Passed()...); };
    if constexpr (std::is_void_v<Result>)
        std::apply(call, arguments);
    else
        Use(std::apply(call, arguments));
}

// Raw bytes: a count that is more than there are is memory that cannot be read.
inline void CallWith(int32_t (*function)(const uint8_t *, int32_t), Input &input) {
    const Bytes bytes = input.ShortBytes();
    const auto count = input.Flag() ? static_cast<int32_t>(bytes.size()) : input.Number<int32_t>();
    if (count > static_cast<int32_t>(bytes.size()))
        scripted::TheSystem().Fail("MemoryIsReadable", 14);
    function(input.Byte() == 255 ? nullptr : bytes.data(), count);
    scripted::TheSystem().ForgetScript();
}

// A status query's number is how long it asks; card readers and PrintSpool take one that is no time.
inline void CallWith(int32_t (*function)(int32_t), Input &input) {
    const bool isTime = function == &GetPrinterStatus || function == &GetPrinterStatusEX;
    function(isTime ? TimeoutFrom(input) : input.Number<int32_t>());
}

inline void CallWith(int32_t (*function)(const NadrelChar *, uint32_t, int32_t, int32_t), Input &input) {
    const Argument<const NadrelChar *> name(input);
    const auto speed = input.Number<uint32_t>();
    const int32_t timeout = TimeoutFrom(input);
    function(name.Passed(), speed, timeout, input.Number<int32_t>());
}

inline void CallWith(int32_t (*function)(const char *, uint32_t, uint8_t, uint8_t, uint8_t, int32_t, int32_t),
                     Input &input) {
    const Argument<const char *> name(input);
    const auto speed = input.Number<uint32_t>();
    const uint8_t size = input.Byte(), stop = input.Byte(), parity = input.Byte();
    const int32_t timeout = TimeoutFrom(input);
    function(name.Passed(), speed, size, stop, parity, timeout, input.Number<int32_t>());
}

} // namespace fuzz
