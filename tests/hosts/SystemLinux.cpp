#include "tests/hosts/System.h"

#include "api/NadrelHost.h"

#include <dlfcn.h>

namespace hosts {
namespace {

void *library = nullptr;
Told listener;

void Handle(uint32_t, uint32_t wParam, intptr_t lParam, void *) {
    listener(wParam, lParam);
}

} // namespace

bool Load(const std::string &file, std::string &error) {
    library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        error = dlerror();
    return library != nullptr;
}

bool Unload() {
    return dlclose(library) == 0;
}

Function Find(const std::string &name) {
    return reinterpret_cast<Function>(dlsym(library, name.c_str()));
}

void Listen(Told told) {
    listener = std::move(told);
    reinterpret_cast<decltype(&SetNotificationHandler)>(dlsym(library, "SetNotificationHandler"))(Handle,
                                                                                                  nullptr);
}

std::string AnswerOwn(const std::string &) {
    return "unknown";
}

} // namespace hosts
