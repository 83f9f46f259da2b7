#pragma once

#include "tools/Function.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What a job may call, in groups of functions that answer alike, and what it may not.
namespace tool {

struct ResultCode {
    int32_t code;
    std::string_view meaning;
};

// How one sees that a function without a result has failed: the spool is as long as before.
struct MustAppend {
    int32_t (*spoolLength)() = nullptr;
    std::string_view meaning{}; // of nothing being appended
};

// How the functions of a group answer.
struct ResultRule {
    std::span<const ResultCode> failures{}; // outlives the rule
    // Results are failures below zero; or, with onlyOneIsFine, unless they are 1.
    bool onlyOneIsFine = false;
    std::string_view otherFailures = "the library gives this number no meaning";
    std::optional<MustAppend> mustAppend{};

    // What the result means; nothing when it is no failure.
    std::optional<std::string_view> Failure(int32_t result) const;
};

// What a function does to the spool.
enum class Effect { appends, prints, neither };

struct Group {
    std::string_view title;
    Effect effect;
    ResultRule results;
    std::vector<Function> functions;
};

// A function of the library that is of no use in a job, and why.
struct NotForJobs {
    std::string_view name;
    std::string_view reason;
};

struct Entry {
    const Group *group;
    const Function *function;
};

struct Catalogue {
    std::vector<Group> groups;
    std::vector<NotForJobs> notForJobs;

    std::optional<Entry> Find(std::string_view name) const;

    // The first function that prints the spool: there is one, and it takes one number.
    Entry Printing() const;

    const NotForJobs *FindNotForJobs(std::string_view name) const;

    // The callable name that is most like the one given; empty when none is much alike.
    std::string_view Nearest(std::string_view name) const;
};

// The library's own functions.
const Catalogue &LibraryCatalogue();

void ListFunctions(const Catalogue &catalogue, std::ostream &out);

} // namespace tool
