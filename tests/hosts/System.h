#pragma once

#include <cstdint>
#include <functional>
#include <string>

// What a host program does differently on Windows and on Linux.
namespace hosts {

// Every function is called with as many machine words: what it does not take it does not look at.
using Function = intptr_t (*)(intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t, intptr_t);

// The library's file; false, and the reason in `error`, when it cannot be loaded.
bool Load(const std::string &file, std::string &error);
bool Unload();
// Null when the library has none of that name.
Function Find(const std::string &name);

// Has the library's notifications told: in order, on a thread other than the caller's. Called once.
using Told = std::function<void(uint32_t wParam, intptr_t lParam)>;
void Listen(Told told);

// Answers a question that only one system knows; "unknown" is the answer to others.
std::string AnswerOwn(const std::string &question);

} // namespace hosts
