#include "Signals.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstdlib>

#include <unistd.h>

namespace brix::tools {
namespace {

constexpr std::array EndingSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU};

// What the handlers use, which may touch nothing that is not made for it.
std::array<char, PATH_MAX> unfinished{};
std::atomic<bool> isUnfinished{false};
std::atomic<bool> doInterruptsWait{false};
std::atomic<int> interrupt{0};
sigset_t beforeWaiting{}; // what SignalsWait goes back to
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void RemoveUnfinishedAndEnd(int signal)
{
    if (isUnfinished.exchange(false)) unlink(unfinished.data());
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void EndOrWait(int signal)
{
    const bool isInterrupt = signal == SIGINT || signal == SIGTERM || signal == SIGHUP;
    if (!isInterrupt || !doInterruptsWait || interrupt.exchange(signal) != 0) return RemoveUnfinishedAndEnd(signal);
    alarm(1);
}

void EndAfterWaiting(int) { RemoveUnfinishedAndEnd(interrupt); }

void Handle(int signal, void (*handler)(int))
{
    struct sigaction action
    {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) return; // as under nohup
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART; // what waits for the system goes on waiting
    sigaction(signal, &action, nullptr);
}

} // namespace

void CleanUpOnSignals()
{
    for (const int signal : EndingSignals) Handle(signal, EndOrWait);
    Handle(SIGALRM, EndAfterWaiting);
    std::signal(SIGXFSZ, SIG_IGN);
}

SignalsWait::SignalsWait()
{
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signal : EndingSignals) sigaddset(&ending, signal);
    sigaddset(&ending, SIGALRM);
    sigprocmask(SIG_BLOCK, &ending, &beforeWaiting);
}

SignalsWait::~SignalsWait() { sigprocmask(SIG_SETMASK, &beforeWaiting, nullptr); }

void NoteUnfinished(const std::filesystem::path& filePath)
{
    if (filePath.native().size() >= unfinished.size()) return;
    std::ranges::copy(filePath.native() + '\0', unfinished.begin());
    isUnfinished = true;
}

void ForgetUnfinished() { isUnfinished = false; }

void LetInterruptsWait(bool doWait) { doInterruptsWait = doWait; }

bool IsInterrupted() { return interrupt != 0; }

void EndAsInterrupted()
{
    alarm(0);
    RemoveUnfinishedAndEnd(interrupt);
    std::_Exit(EXIT_FAILURE); // not reached: the signal ends the program
}

} // namespace brix::tools
