#pragma once

#include "tools/Catalogue.h"

#include <cstdint>
#include <string>
#include <vector>

// A catalogue of functions that only write down how they were called, one for every kind of argument.
namespace fake {

inline std::vector<std::string> calls;
inline int32_t nextResult = 0;
inline int32_t spoolLength = 0;
inline int32_t nextPictureLength = 0; // what it appends

inline std::string Units(const NadrelChar *text) {
    std::string units;
    for (; *text != 0; ++text)
        units += std::to_string(static_cast<unsigned>(*text)) + ' ';
    return units;
}

inline std::string Numbers(const uint8_t *bytes, int32_t count) {
    std::string numbers;
    for (int32_t i = 0; i < count; ++i)
        numbers += std::to_string(bytes[i]) + ' ';
    return numbers;
}

inline void Feed(int32_t lines) {
    calls.push_back("Feed " + std::to_string(lines));
}
inline void Table(uint32_t number) {
    calls.push_back("Table " + std::to_string(number));
}
inline void Cut() {
    calls.push_back("Cut");
}

inline void Barcode(uint8_t symbology, const NadrelChar *data) {
    calls.push_back("Barcode " + std::to_string(symbology) + ' ' + Units(data));
}

inline int32_t Text(const NadrelChar *text) {
    calls.push_back("Text " + Units(text));
    return nextResult;
}

inline int32_t Raw(const uint8_t *bytes, int32_t count) {
    calls.push_back("Raw " + Numbers(bytes, count));
    return nextResult;
}

inline int32_t Card(const char *command) {
    calls.push_back(std::string("Card ") + command);
    return nextResult;
}

inline int32_t Clear() {
    calls.push_back("Clear");
    return nextResult;
}

inline int32_t Identify(const NadrelChar *name) {
    calls.push_back("Identify " + Units(name));
    return nextResult;
}

inline int32_t Print(int32_t clear) {
    calls.push_back("Print " + std::to_string(clear));
    return nextResult;
}

inline int32_t SpoolLength() {
    return spoolLength;
}

inline void Picture(const NadrelChar *path) {
    calls.push_back("Picture " + Units(path));
    spoolLength += nextPictureLength;
}

inline constexpr tool::ResultCode kTextCodes[] = {{-12, "the spool is full"}};

inline tool::Catalogue MakeCatalogue() {
    using tool::Effect;
    tool::Catalogue catalogue;
    catalogue.groups = {
        {"Text",
         Effect::appends,
         {.failures = kTextCodes},
         {{"Text", &Text, "text"}, {"Feed", &Feed, "lines"}, {"Table", &Table, "number"}, {"Cut", &Cut}}},
        {"Others",
         Effect::appends,
         {},
         {{"Barcode", &Barcode, "symbology", "data"},
          {"Raw", &Raw, "bytes", "count"},
          {"Card", &Card, "command"}}},
        {"Others", Effect::neither, {}, {{"Clear", &Clear}}},
        {"Others",
         Effect::neither,
         {.onlyOneIsFine = true, .otherFailures = "the name is too short"},
         {{"Identify", &Identify, "name"}}},
        {"Pictures",
         Effect::appends,
         {.mustAppend = tool::MustAppend{&SpoolLength, "it has no room"}},
         {{"Picture", &Picture, tool::PictureName{"path"}}}},
        {"Printing", Effect::prints, {}, {{"Print", &Print, "clear"}}},
    };
    catalogue.notForJobs = {{"Close", "the tool closes"}};
    return catalogue;
}

inline const tool::Catalogue catalogue = MakeCatalogue();

} // namespace fake
