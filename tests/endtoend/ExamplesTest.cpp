#include "tests/endtoend/EndToEnd.h"
#include "tests/endtoend/PngPicture.h"

#include <cstdlib>

using namespace endtoend;

namespace {

const std::filesystem::path kExamples = NADREL_EXAMPLES_FOLDER;
const std::filesystem::path kGolden = NADREL_GOLDEN_FOLDER;

// Where pictures that differ are left.
const std::filesystem::path kDifferent = NADREL_DIFFERENT_FOLDER;

std::vector<std::string> Jobs() {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(kExamples))
        if (entry.path().extension() == ".job")
            names.push_back(entry.path().stem());
    return names;
}

// Dots that are not the same; those that only one of the pictures has count, too.
int64_t DifferentDots(const Picture &one, const Picture &other) {
    const int width = std::max(one.width, other.width);
    const int height = std::max(one.height, other.height);
    const auto at = [](const Picture &picture, int x, int y) {
        return x < picture.width && y < picture.height ? int{picture.At(x, y)} : -1;
    };
    int64_t count = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            count += at(one, x, y) != at(other, x, y);
    return count;
}

class Examples : public EndToEnd, public testing::WithParamInterface<std::string> {
  protected:
    // Runs the example with the tool; the picture of the paper.
    std::filesystem::path Print() {
        StartPrinter();
        const std::string job = (kExamples / (GetParam() + ".job")).string();
        Process tool(NADREL_TOOL_PROGRAM, {"run", job, "--serial", Printer().SerialPath()},
                     folder.Path() / "tool");
        EXPECT_EQ(tool.Wait(), 0) << tool.Errors();
        StopPrinter();
        EXPECT_EQ(Printer().Complaints(), "");
        return Printer().Picture();
    }

    std::filesystem::path Keep(const std::filesystem::path &picture, const std::filesystem::path &home) {
        std::filesystem::create_directories(home);
        const std::filesystem::path kept = home / (GetParam() + ".png");
        std::filesystem::copy_file(picture, kept, std::filesystem::copy_options::overwrite_existing);
        return kept;
    }
};
INSTANTIATE_TEST_SUITE_P(, Examples, testing::ValuesIn(Jobs()),
                         [](const testing::TestParamInfo<std::string> &job) { return job.param; });

} // namespace

// With NADREL_UPDATE_GOLDEN=1 in the environment the pictures become the new golden ones.
TEST_P(Examples, LookAsTheirGoldenPictures) {
    const std::filesystem::path printed = Print();
    if (std::getenv("NADREL_UPDATE_GOLDEN") != nullptr)
        Keep(printed, kGolden);
    const Picture golden = ReadPng(kGolden / (GetParam() + ".png"));
    const int64_t different = DifferentDots(ReadPng(printed), golden);
    if (different != 0) {
        ADD_FAILURE() << different << " dots of " << GetParam()
                      << " differ from its golden picture; the new one is " << Keep(printed, kDifferent);
    }
}
