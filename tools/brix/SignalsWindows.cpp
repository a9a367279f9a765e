#include "Signals.h"

#include "System.h"

#include <atomic>
#include <mutex>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace brix::tools {
namespace {

constexpr UINT EndedByInterrupt = 0xC000013A; // STATUS_CONTROL_C_EXIT, what the system itself ends programs with

// The system asks on a thread of its own.
std::mutex access;
std::filesystem::path unfinished;
std::atomic<bool> doInterruptsWait{false};
std::atomic<bool> isInterrupted{false};

[[noreturn]] void RemoveUnfinishedAndEnd()
{
    const std::lock_guard lock(access);
    if (!unfinished.empty()) RemoveFile(unfinished);
    TerminateProcess(GetCurrentProcess(), EndedByInterrupt);
    for (;;) Sleep(INFINITE); // the process ends meanwhile
}

BOOL WINAPI EndOrWait(DWORD)
{
    constexpr DWORD MostWaiting = 1000; // milliseconds
    if (doInterruptsWait && !isInterrupted.exchange(true)) Sleep(MostWaiting);
    RemoveUnfinishedAndEnd();
}

} // namespace

void CleanUpOnSignals() { SetConsoleCtrlHandler(EndOrWait, TRUE); }

SignalsWait::SignalsWait() { access.lock(); }

SignalsWait::~SignalsWait() { access.unlock(); }

void NoteUnfinished(const std::filesystem::path& filePath) { unfinished = filePath; }

void ForgetUnfinished() { unfinished.clear(); }

void LetInterruptsWait(bool doWait) { doInterruptsWait = doWait; }

bool IsInterrupted() { return isInterrupted; }

void EndAsInterrupted() { RemoveUnfinishedAndEnd(); }

} // namespace brix::tools
