#include "tools/Catalogue.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

namespace {

using Names = std::set<std::string, std::less<>>;

Names NamesIn(const std::string &file) {
    Names names;
    std::ifstream in(NADREL_API_FOLDER "/" + file);
    for (std::string name; in >> name;)
        names.insert(name);
    EXPECT_FALSE(names.empty()) << file;
    return names;
}

Names Exported() {
    Names names = NamesIn("NadrelPrinter.exports");
    names.merge(NamesIn("NadrelHost.exports"));
    return names;
}

Names Callable() {
    Names names;
    for (const tool::Group &group : tool::LibraryCatalogue().groups)
        for (const tool::Function &function : group.functions)
            EXPECT_TRUE(names.emplace(function.name).second) << function.name << " is there twice";
    return names;
}

} // namespace

TEST(FunctionTable, HasEveryExportedFunctionOrSaysWhyItIsNotForJobs) {
    Names known = Callable();
    for (const tool::NotForJobs &other : tool::LibraryCatalogue().notForJobs)
        EXPECT_TRUE(known.emplace(other.name).second) << other.name << " is there twice";
    EXPECT_EQ(known, Exported());
}

TEST(FunctionTable, GivesAReasonForEveryFunctionThatIsNotForJobs) {
    for (const tool::NotForJobs &other : tool::LibraryCatalogue().notForJobs)
        EXPECT_FALSE(other.reason.empty()) << other.name;
}

TEST(FunctionTable, NamesEveryArgumentAndNoneTwice) {
    for (const tool::Group &group : tool::LibraryCatalogue().groups) {
        for (const tool::Function &function : group.functions) {
            Names arguments;
            for (const tool::Parameter &parameter : function.parameters)
                EXPECT_TRUE(arguments.emplace(parameter.name).second) << function.name;
            EXPECT_FALSE(arguments.contains("")) << function.name;
        }
    }
}

TEST(FunctionTable, PrintsWithPrintSpool) {
    const tool::Entry printing = tool::LibraryCatalogue().Printing();
    EXPECT_EQ(tool::Signature(*printing.function), "PrintSpool(int32 clear)");
}

TEST(FunctionTable, KnowsTheMeaningsOfResultsByTheFunction) {
    const auto meaning = [](std::string_view name, int32_t result) {
        return tool::LibraryCatalogue().Find(name)->group->results.Failure(result).value_or("fine");
    };
    EXPECT_EQ(meaning("ControlCommand", -11), "no link is open");
    EXPECT_EQ(meaning("ControlCommand", -12), "the spool has no room for it");
    EXPECT_EQ(meaning("ControlCommand", 0), "fine");
    EXPECT_EQ(meaning("SaveSpool", -12),
              "the spool has no room for the text, which would take it past 9999 bytes");
    EXPECT_EQ(meaning("PrintSpool", -13), "the framed form of the spool is longer than 409600 bytes");
    EXPECT_EQ(meaning("PrintSpool", 0), "the spool's length is below zero and nothing was sent");
    EXPECT_EQ(meaning("PrintSpool", 1), "fine");
    EXPECT_EQ(meaning("GetPrinterStatus", -1), "no link is open");
    EXPECT_EQ(meaning("GetPrinterStatusEX", -7), "the printer did not answer in time");
    EXPECT_EQ(meaning("SetTermialID", 1), "fine");
    EXPECT_EQ(meaning("SetTermialID", 9),
              "the identifier has that many characters, it must have 8, and nothing was sent");
    EXPECT_EQ(meaning("SetPaymentReq", -1), "the first field is longer than 12 digits and nothing was sent");
    EXPECT_EQ(meaning("SetPaymentReq", -4), "the third field has not 6 digits and nothing was sent");
    EXPECT_EQ(meaning("SetPaymentReq", 0),
              "the second field has that many digits, it must have 8, and nothing was sent");
    EXPECT_EQ(meaning("SetAnsiCodePage", 0), "it is no code page that the library knows");
    EXPECT_EQ(meaning("BmpSaveSpool", -1), "the file cannot be loaded: it must be a bitmap file (BMP)");
    EXPECT_EQ(meaning("BmpSaveSpool", -12), "the spool has no room for the picture");
}

TEST(FunctionTable, SeesThatAPictureWithoutAResultWasAppended) {
    for (const char *name : {"NormalBmpSaveSpool", "CompressedBmpSaveSpool"}) {
        const auto &rule = tool::LibraryCatalogue().Find(name)->group->results;
        ASSERT_TRUE(rule.mustAppend) << name;
        EXPECT_EQ(rule.mustAppend->meaning, "the spool has no room for the picture");
    }
}

TEST(FunctionTable, KnowsWhichArgumentsArePictures) {
    EXPECT_EQ(tool::Signature(*tool::LibraryCatalogue().Find("BmpSaveSpool")->function),
              "BmpSaveSpool(picture path, int32 x, int32 y)");
}
