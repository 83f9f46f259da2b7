#include "spool/Application.h"

namespace {

// Linked into the shared library alone: programs that link its parts start them by themselves.
struct LoadedApplication : nadrel::Application {
    LoadedApplication() { InitInstance(); }
};

const LoadedApplication application;

} // namespace
