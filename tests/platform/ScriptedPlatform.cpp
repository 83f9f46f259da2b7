#include "tests/platform/ScriptedPlatform.h"

#include "platform/Error.h"
#include "tests/platform/ScriptedError.h"
#include "tests/platform/ScriptedThread.h"

#include <algorithm>
#include <cstdio>

namespace scripted {

namespace {

constexpr int kEvery = -1;

// Characters beyond ASCII are shown by number.
std::string Shown(char16_t unit) {
    if (unit >= 0x20 && unit < 0x7F)
        return std::string(1, static_cast<char>(unit));
    char number[16];
    std::snprintf(number, sizeof number, "\\u%04X", static_cast<unsigned>(unit));
    return number;
}

} // namespace

Platform &TheSystem() {
    static auto *const system = new Platform; // outlives whatever still calls at exit
    return *system;
}

std::string ToHex(const uint8_t *bytes, size_t count) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text(count == 0 ? 0 : 3 * count - 1, ' ');
    for (size_t i = 0; i < count; ++i) {
        text[3 * i] = kDigits[bytes[i] >> 4];
        text[3 * i + 1] = kDigits[bytes[i] & 15];
    }
    return text;
}

std::string Quoted(const char16_t *text) {
    if (text == nullptr)
        return "null";
    std::string shown = "\"";
    for (; *text != 0; ++text)
        shown += Shown(*text);
    return shown + "\"";
}

std::string Joined(intptr_t handle, const std::string &arguments) {
    return std::to_string(handle) + (arguments.empty() ? "" : ", " + arguments);
}

void Platform::Reset() {
    const Lock lock(mutex);
    recording = true;
    calls.clear();
    failed.clear();
    rules.clear();
    hooks.clear();
    actions.clear();
    now = 0;
    nextHandle = 3;
    ports.clear();
    sockets.clear();
    socketSupport = 0;
    failedSupport = 0;
    failedIOCtl = -1;
    input.clear();
    delivered = 0;
    hungUp = false;
    written.clear();
    notifications.clear();
    messages.clear();
    for (platform::Thread *thread : threads)
        delete thread;
    threads.clear();
    lineSettings = {};
    portTimeouts = {};
    SetLastError(0);
}

std::vector<std::string> Platform::Calls() const {
    const Lock lock(mutex);
    std::vector<std::string> all;
    for (const auto &call : calls)
        all.push_back(call.second);
    return all;
}

std::vector<std::string> Platform::CallsOf(const std::vector<std::string> &operations) const {
    const Lock lock(mutex);
    std::vector<std::string> some;
    for (const auto &[operation, call] : calls)
        if (std::find(operations.begin(), operations.end(), operation) != operations.end())
            some.push_back(call);
    return some;
}

size_t Platform::CountOf(const std::string &operation) const {
    const Lock lock(mutex);
    return RecordedOf(operation);
}

size_t Platform::RecordedOf(const std::string &operation) const {
    return static_cast<size_t>(
        std::count_if(calls.begin(), calls.end(), [&](const auto &call) { return call.first == operation; }));
}

void Platform::ForgetCalls() {
    const Lock lock(mutex);
    calls.clear();
    failed.clear();
    written.clear();
}

void Platform::StopRecording() {
    const Lock lock(mutex);
    recording = false;
}

void Platform::Fail(const std::string &operation, uint32_t error, int nth) {
    Answer(operation, {.failed = true, .error = error}, nth);
}

void Platform::FailAlways(const std::string &operation, uint32_t error) {
    Answer(operation, {.failed = true, .error = error}, kEvery);
}

void Platform::FailCall(int nth, uint32_t error) {
    Answer("", {.failed = true, .error = error}, nth);
}

void Platform::FailFromCall(int nth, uint32_t error) {
    const Lock lock(mutex);
    rules.push_back({{.nth = nth, .onward = true}, {.failed = true, .error = error}});
}

std::vector<std::string> Platform::Failed() const {
    const Lock lock(mutex);
    return failed;
}

void Platform::Answer(const std::string &operation, const Outcome &outcome, int nth) {
    const Lock lock(mutex);
    rules.push_back({{.operation = operation, .nth = nth}, outcome});
}

void Platform::ForgetScript() {
    const Lock lock(mutex);
    rules.clear();
    hooks.clear();
    actions.clear();
}

std::vector<std::string> Platform::UnusedScript() const {
    const Lock lock(mutex);
    std::vector<std::string> unused;
    for (const Rule &rule : rules)
        if (!rule.occasion.used)
            unused.push_back("answer of " + rule.occasion.operation);
    for (const CallHook &hook : hooks)
        if (!hook.occasion.used)
            unused.push_back("hook on " + hook.occasion.operation);
    for (const auto &action : actions)
        unused.push_back("action at " + std::to_string(action.first) + " ms");
    return unused;
}

void Platform::OnCall(const std::string &operation, Hook hook, int nth) {
    const Lock lock(mutex);
    hooks.push_back({{.operation = operation, .nth = nth}, std::move(hook)});
}

void Platform::OnEveryCall(const std::string &operation, Hook hook) {
    OnCall(operation, std::move(hook), kEvery);
}

bool Platform::Occasion::Comes(const std::string &called) {
    if (!operation.empty() && operation != called)
        return false;
    const bool comes = nth == kEvery || (used ? onward : --nth == 0);
    used = used || comes;
    return comes;
}

std::vector<Hook> Platform::HooksFor(const std::string &operation) {
    const Lock lock(mutex);
    std::vector<Hook> due;
    for (CallHook &hook : hooks)
        if (hook.occasion.Comes(operation))
            due.push_back(hook.hook);
    return due;
}

void Platform::Note(const std::string &operation, const std::string &arguments) {
    {
        const Lock lock(mutex);
        if (recording)
            calls.emplace_back(operation, operation + "(" + arguments + ")");
    }
    for (const Hook &hook : HooksFor(operation))
        hook();
}

Outcome Platform::Enter(const std::string &operation, const std::string &arguments) {
    Note(operation, arguments);
    const Lock lock(mutex);
    Outcome outcome;
    for (Rule &rule : rules)
        if (rule.occasion.Comes(operation))
            outcome = rule.outcome;
    if (outcome.failed || outcome.error != 0)
        SetLastError(outcome.error);
    if (outcome.failed && recording)
        failed.push_back(operation + ' ' + std::to_string(RecordedOf(operation)));
    return outcome;
}

} // namespace scripted
