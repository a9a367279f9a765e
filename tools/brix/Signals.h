// Signals that end the program (Ctrl-C, a closed terminal, ...): the file that was being written is removed first, and the engine
// is asked to stop before it is made to.
#pragma once

#include <filesystem>

namespace brix::tools {

/// To be called once, at the start. A file that grows beyond its limit is an error like a full disk from then on.
void CleanUpOnSignals();

/// While one of these lives, signals wait: a file and the note of it come and go as one. One at a time.
class SignalsWait
{
public:
    SignalsWait();
    ~SignalsWait();

    SignalsWait(const SignalsWait&) = delete;
    SignalsWait& operator=(const SignalsWait&) = delete;
};

/// The file to be removed when the program is ended; one that is longer than the system takes is no file.
void NoteUnfinished(const std::filesystem::path& filePath);
void ForgetUnfinished();

/// Whether an interrupt waits for the engine to stop by itself; for a second at most, and only the first one.
void LetInterruptsWait(bool doWait);

/// Whether there has been one.
bool IsInterrupted();

/// Ends the program as the interrupt would have ended it.
[[noreturn]] void EndAsInterrupted();

} // namespace brix::tools
