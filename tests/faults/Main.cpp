#include "tests/faults/FaultPoint.h"

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::printf("%d points tried\n", nadrel::faults::PointsTried());
    return result;
}
