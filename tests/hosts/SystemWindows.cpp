#include "tests/hosts/System.h"

#include <atomic>
#include <thread>
#include <windows.h>

namespace hosts {
namespace {

HMODULE library = nullptr;
Told listener;
UINT notification = 0;

// What one thread tells another. The standard library's semaphore loses it now and then on a busy machine.
class Signal {
  public:
    ~Signal() { CloseHandle(event_); }
    void Give() { SetEvent(event_); }
    void Await() { WaitForSingleObject(event_, INFINITE); }

  private:
    HANDLE event_ = CreateEventW(nullptr, FALSE, FALSE, nullptr);
};

Signal windowIsThere;

LRESULT CALLBACK Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != notification)
        return DefWindowProcW(window, message, wParam, lParam);
    listener(static_cast<uint32_t>(wParam), lParam);
    return 0;
}

// A top-level window, as the library's messages go to, that nobody sees.
void RunWindow() {
    WNDCLASSW kind = {};
    kind.lpfnWndProc = Handle;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.lpszClassName = L"Caller";
    RegisterClassW(&kind);
    CreateWindowExW(0, L"Caller", L"Caller", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr,
                    kind.hInstance, nullptr);
    windowIsThere.Give();
    for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;)
        DispatchMessageW(&message);
}

void OpenWindow() {
    std::thread(RunWindow).detach();
    windowIsThere.Await();
}

// Only a handle in overlapped mode takes a completion port.
std::string IsOverlapped(HANDLE handle) {
    if (handle == INVALID_HANDLE_VALUE)
        return "no handle";
    const HANDLE port = CreateIoCompletionPort(handle, nullptr, 0, 1);
    const std::string answer = port != nullptr ? "overlapped" : "error " + std::to_string(GetLastError());
    CloseHandle(port);
    return answer;
}

std::string IsOwnFileOverlapped(DWORD flags) {
    wchar_t name[1000];
    GetModuleFileNameW(library, name, 1000);
    const HANDLE file =
        CreateFileW(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, flags, nullptr);
    const std::string answer = IsOverlapped(file);
    CloseHandle(file);
    return answer;
}

HANDLE PortHandle() {
    return reinterpret_cast<HANDLE>(Find("GetPortHandle")(0, 0, 0, 0, 0, 0, 0, 0));
}

// The lowest number that is free: it grows when handles are lost.
std::string NextHandle() {
    const HANDLE next = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    CloseHandle(next);
    return std::to_string(reinterpret_cast<intptr_t>(next));
}

std::string OpenHandles() {
    int count = 0;
    for (intptr_t number = 4; number < 4000; number += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) ? 1 : 0;
    }
    return std::to_string(count);
}

uint64_t Milliseconds(const FILETIME &time) {
    return (static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime) / 10000;
}

std::string ProcessorTime() {
    FILETIME start, end, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &start, &end, &kernel, &user);
    return std::to_string(Milliseconds(kernel) + Milliseconds(user));
}

std::string ResourceString() {
    wchar_t text[100] = {};
    LoadStringW(library, 101, text, 100);
    const std::wstring wide = text;
    return {wide.begin(), wide.end()};
}

// The text of the box that a thread finds, which it then closes. While a library is loading, no thread begins
// to run or loads what it needs for its first look at the windows.
std::atomic<bool> boxIsExpected = false;
Signal readerHasLooked;
std::string boxText;

HWND FindBox() {
    return FindWindowW(L"#32770", L"NADRELPRINTER");
}

void CloseBox() {
    HWND box = FindBox();
    readerHasLooked.Give();
    for (; box == nullptr && boxIsExpected; box = FindBox())
        Sleep(1);
    wchar_t text[200] = {};
    while (boxIsExpected && GetDlgItemTextW(box, 0xFFFF, text, 200) == 0)
        Sleep(1); // the box is still being filled
    const std::wstring wide = text;
    boxText.assign(wide.begin(), wide.end());
    PostMessageW(box, WM_COMMAND, IDOK, 0);
}

std::string LoadAndReadBox() {
    std::string error;
    boxIsExpected = true;
    std::thread reader(CloseBox);
    readerHasLooked.Await();
    const bool isLoaded = Load("NADRELPRINTER.dll", error);
    boxIsExpected = false;
    reader.join();
    return (isLoaded ? "loaded, box: " : "not loaded, box: ") + boxText;
}

} // namespace

bool Load(const std::string &file, std::string &error) {
    library = LoadLibraryA(file.c_str());
    if (library == nullptr)
        error = "error " + std::to_string(GetLastError());
    return library != nullptr;
}

bool Unload() {
    return FreeLibrary(library) && GetModuleHandleA("NADRELPRINTER.dll") == nullptr;
}

Function Find(const std::string &name) {
    return reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(library, name.c_str())));
}

void Listen(Told told) {
    listener = std::move(told);
    notification = RegisterWindowMessageW(L"NADREL_PRT_OK");
    OpenWindow();
}

std::string AnswerOwn(const std::string &question) {
    if (question == "is the port overlapped")
        return IsOverlapped(PortHandle());
    if (question == "is a file overlapped")
        return IsOwnFileOverlapped(FILE_FLAG_OVERLAPPED);
    if (question == "is a plain file overlapped")
        return IsOwnFileOverlapped(0);
    if (question == "next handle")
        return NextHandle();
    if (question == "open handles")
        return OpenHandles();
    if (question == "processor time")
        return ProcessorTime();
    if (question == "string 101")
        return ResourceString();
    if (question == "box at load")
        return LoadAndReadBox();
    if (question == "open a window") {
        OpenWindow();
        return "opened";
    }
    if (question == "code page")
        return std::to_string(GetACP());
    return "unknown";
}

} // namespace hosts
