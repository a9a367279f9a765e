// Keeps threads that read one model apart for the moments in which a reader makes something: they wait rarely, and briefly.
#pragma once

#include "../frame/Compiler.h"

#include <atomic>

namespace brix {

class SpinLock
{
public:
    /// Holds the lock while it lives.
    class Holder
    {
    public:
        explicit Holder(SpinLock& lock) : isHeld_(lock.isHeld_)
        {
            while (isHeld_.test_and_set(std::memory_order_acquire)) {
            }
        }
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        ~Holder() { isHeld_.clear(std::memory_order_release); }

    private:
        std::atomic_flag& isHeld_;
    };

private:
    std::atomic_flag isHeld_ = ATOMIC_FLAG_INIT;
};

} // namespace brix
