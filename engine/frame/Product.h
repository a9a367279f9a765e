// Products that are rounded before anything is added to them.
#pragma once

namespace brix {

/// a * b. A compiler that turns a * b + c into one instruction rounds once instead of twice, and the result then depends on the
/// machine that the code was compiled for. The engine is compiled with -ffp-contract=off against that; but GCC 12 fuses sums and
/// differences of products that stand beside each other all the same. It cannot look through the empty statement in here. Where a
/// loop has to become vector instructions, the option alone must do: tools/dev/check-fused looks at what was made of it.
inline double Product(double a, double b)
{
    double product = a * b;
#if defined(__x86_64__)
    __asm__("" : "+x"(product));
#elif defined(__aarch64__)
    __asm__("" : "+w"(product));
#else
    __asm__("" : "+m"(product));
#endif
    return product;
}

} // namespace brix
