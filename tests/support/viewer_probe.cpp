// What the viewer's tests do from inside the system, beside keys and mouse: a program that runs
// others on a desktop of its own, which fills one screen, and tells about their windows.
//
// Usage: viewer_probe DESKTOP WIDTHxHEIGHT
// Then reads commands from standard input, fields parted by tabs, and answers each with lines, the
// last one ".":
//   run COMMAND_LINE        starts a program: its process number
//   state PROCESS           "running", or "ended" and the exit code
//   windows                 for each visible window: number, process, class, title, text and, of
//                           the viewer, where its picture area is: x, y, width, height
//   post WINDOW MESSAGE WPARAM LPARAM
//   text WINDOW CONTROL TEXT  fills in a control of a dialog
//   drop WINDOW FILE        as if the file had been dropped there
//   activate WINDOW         gives it the keyboard: 1 when it has it
// It ends with its input, and ends the programs that it has started.

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

std::string g_desktop;  // the callbacks and every command work on this one

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == '\t')
            fields.emplace_back();
        else if (c != '\r')
            fields.back() += c;
    }
    return fields;
}

std::uintptr_t Number(const std::string& text) {
    return static_cast<std::uintptr_t>(std::stoull(text, nullptr, 0));
}

HWND WindowOf(const std::string& text) {
    return reinterpret_cast<HWND>(Number(text));  // NOLINT: a handle that was printed as a number
}

/// A program that ends with its owner.
class Program {
  public:
    explicit Program(std::string command_line) {
        STARTUPINFOA start = {};
        start.cb = sizeof(start);
        start.lpDesktop = g_desktop.data();
        is_started_ = CreateProcessA(nullptr, command_line.data(), nullptr, nullptr, FALSE, 0,
                                     nullptr, nullptr, &start, &process_) != 0;
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() {
        if (!is_started_) return;
        TerminateProcess(process_.hProcess, 99);
        WaitForSingleObject(process_.hProcess, INFINITE);
        CloseHandle(process_.hProcess);
        CloseHandle(process_.hThread);
    }

    [[nodiscard]] DWORD Number() const { return process_.dwProcessId; }
    [[nodiscard]] std::string State() const {
        if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT) return "running";
        DWORD code = 0;
        GetExitCodeProcess(process_.hProcess, &code);
        return "ended\t" + std::to_string(code);
    }

  private:
    PROCESS_INFORMATION process_ = {};
    bool is_started_ = false;
};

/// A window's text, also of a program that does not answer: then none.
std::string TextOf(HWND window) {
    std::array<char, 1024> text = {};
    DWORD_PTR length = 0;
    SendMessageTimeoutA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, 2000, &length);
    std::string shown = text.data();
    for (char& c : shown) {
        if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    }
    return shown;
}

BOOL CALLBACK PrintWindow(HWND window, LPARAM /*unused*/) {
    if (!IsWindowVisible(window)) return TRUE;
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    std::array<char, 256> name = {};
    GetClassNameA(window, name.data(), static_cast<int>(name.size()));
    HWND status = FindWindowExA(window, nullptr, "msctls_statusbar32", nullptr);
    constexpr int kMessageText = 0xFFFF;  // the control of a message box
    HWND text = status != nullptr ? status : GetDlgItem(window, kMessageText);
    std::printf("%llu\t%lu\t%s\t%s\t%s",
                static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(window)), process,
                name.data(), TextOf(window).c_str(), text != nullptr ? TextOf(text).c_str() : "");
    if (HWND canvas = FindWindowExA(window, nullptr, "RastrelCanvas", nullptr)) {
        RECT rect = {};
        GetWindowRect(canvas, &rect);
        std::printf("\t%ld\t%ld\t%ld\t%ld", rect.left, rect.top, rect.right - rect.left,
                    rect.bottom - rect.top);
    }
    std::printf("\n");
    return TRUE;
}

/// The list of dropped files is made in the other process's memory, where the system would put it.
bool Drop(HWND window, const std::string& file) {
    DROPFILES head = {};
    head.pFiles = sizeof(head);
    std::vector<char> bytes(sizeof(head) + file.size() + 2);
    std::copy_n(reinterpret_cast<const char*>(&head), sizeof(head), bytes.begin());
    std::copy(file.begin(), file.end(), bytes.begin() + sizeof(head));
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    HANDLE target = OpenProcess(PROCESS_ALL_ACCESS, FALSE, process);
    if (target == nullptr) return false;
    void* there = VirtualAllocEx(target, nullptr, bytes.size(), MEM_COMMIT, PAGE_READWRITE);
    const bool is_there =
        there != nullptr && WriteProcessMemory(target, there, bytes.data(), bytes.size(), nullptr);
    CloseHandle(target);
    return is_there && PostMessageA(window, WM_DROPFILES, reinterpret_cast<WPARAM>(there), 0);
}

/// Whether the window has the keyboard; if not, it will. Its thread takes the focus a little after
/// it has become the one in front, and keys between the two are lost.
bool Activate(HWND window) {
    if (GetForegroundWindow() != window) {
        SetForegroundWindow(window);
        return false;
    }
    GUITHREADINFO info = {};
    info.cbSize = sizeof(info);
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) != 0 &&
           info.hwndActive == window && info.hwndFocus != nullptr;
}

/// A desktop with its window on the screen, made by the shell.
bool EnterDesktop() {
    constexpr int kTries = 600;
    for (int i = 0; i < kTries; ++i, Sleep(100)) {
        HDESK desktop = OpenDesktopA(g_desktop.c_str(), 0, FALSE, MAXIMUM_ALLOWED);
        if (desktop != nullptr) return SetThreadDesktop(desktop) != 0;
    }
    return false;
}

class Watcher {
  public:
    void Answer(const std::vector<std::string>& command) {
        const std::string& verb = command.at(0);
        if (verb == "run") {
            auto program = std::make_unique<Program>(command.at(1));
            const DWORD number = program->Number();
            std::printf("%lu\n", number);
            programs_[number] = std::move(program);
        } else if (verb == "windows") {
            EnumWindows(&PrintWindow, 0);
        } else if (verb == "post") {
            PostMessageA(WindowOf(command.at(1)), static_cast<UINT>(Number(command.at(2))),
                         Number(command.at(3)), static_cast<LPARAM>(Number(command.at(4))));
        } else if (verb == "text") {
            SetDlgItemTextA(WindowOf(command.at(1)), static_cast<int>(Number(command.at(2))),
                            command.at(3).c_str());
        } else if (verb == "drop") {
            std::printf("%d\n", Drop(WindowOf(command.at(1)), command.at(2)) ? 1 : 0);
        } else if (verb == "activate") {
            std::printf("%d\n", Activate(WindowOf(command.at(1))) ? 1 : 0);
        } else if (verb == "state") {
            const auto number = static_cast<DWORD>(Number(command.at(1)));
            std::printf("%s\n", programs_.at(number)->State().c_str());
        } else {
            std::printf("unknown command %s\n", verb.c_str());
        }
    }

  private:
    std::map<DWORD, std::unique_ptr<Program>> programs_;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    g_desktop = argv[1];
    const Program shell("explorer.exe /desktop=" + g_desktop + "," + argv[2]);
    if (!EnterDesktop()) return 1;
    Watcher watcher;
    for (std::string line; std::getline(std::cin, line);) {
        watcher.Answer(Fields(line));
        std::printf(".\n");
        std::fflush(stdout);
    }
    return 0;
}
