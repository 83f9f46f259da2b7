#include "tools/CommandLine.h"

int main(int count, char **arguments) {
    return static_cast<int>(tool::Main(count, arguments));
}
