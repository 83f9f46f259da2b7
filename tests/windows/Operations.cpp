// A program that begins an operation while its last one, which waits for somebody to open a pipe, still goes on.

#include "platform/windows/Overlapped.h"

#include <cstdio>

namespace {

HANDLE MakePipe() {
    return CreateNamedPipeW(L"\\\\.\\pipe\\nadrel", PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED, PIPE_TYPE_BYTE,
                            1, 0, 0, 0, nullptr);
}

const char *YesOrNo(bool is) {
    return is ? "yes" : "no";
}

} // namespace

int main() {
    platform::Overlapped operation;
    const HANDLE pipe = MakePipe();
    operation.Begin();
    OVERLAPPED *const first = operation.Get();
    const HANDLE event = first->hEvent;
    ConnectNamedPipe(pipe, first);
    std::printf("pending: %s\n", YesOrNo(!HasOverlappedIoCompleted(first)));
    operation.Begin();
    std::printf("apart: %s\n", YesOrNo(operation.Get() != first && operation.Get()->hEvent != event));
    CloseHandle(pipe);
    std::printf("first ends: %s\n", YesOrNo(WaitForSingleObject(event, 10000) == WAIT_OBJECT_0));
    OVERLAPPED *const second = operation.Get();
    operation.Begin();
    std::printf("used again: %s\n", YesOrNo(operation.Get() == second));
    return 0;
}
