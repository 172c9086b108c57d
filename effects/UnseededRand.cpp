// SPDX-License-Identifier: AGPL-3.0-or-later
// The additive feedback generator behind glibc's rand (31 words, taps 3 and 31), seeded with 1.
#include "effects/UnseededRand.h"

#include <cstdint>
#include <mutex>

namespace
{
class Generator
{
public:
    Generator() { seed(); }

    void seed() noexcept
    {
        // Park-Miller steps fill the table; the first 310 outputs are thrown away.
        state[0] = 1;
        for (int i = 1; i < degree; ++i)
        {
            const std::int32_t previous = (std::int32_t) state[i - 1];
            const std::int32_t hi = previous / 127773;
            const std::int32_t lo = previous % 127773;
            std::int32_t word = 16807 * lo - 2836 * hi;
            if (word < 0)
                word += 2147483647;
            state[i] = (std::uint32_t) word;
        }
        front = separation;
        rear = 0;
        for (int i = 0; i < degree * 10; ++i)
            next();
    }

    int next() noexcept
    {
        state[front] += state[rear];
        const int result = (int) (state[front] >> 1);
        front = front + 1 == degree ? 0 : front + 1;
        rear = rear + 1 == degree ? 0 : rear + 1;
        return result;
    }

private:
    static constexpr int degree = 31;
    static constexpr int separation = 3;
    std::uint32_t state[degree] {};
    int front = separation;
    int rear = 0;
};

std::mutex& sequenceLock()
{
    static std::mutex lock;
    return lock;
}

Generator& sequence()
{
    static Generator generator;
    return generator;
}
} // namespace

void UnseededRand::draw (int* values, std::size_t count)
{
    const std::lock_guard<std::mutex> hold (sequenceLock());
    auto& generator = sequence();
    for (std::size_t i = 0; i < count; ++i)
        values[i] = generator.next();
}

void UnseededRand::restart()
{
    const std::lock_guard<std::mutex> hold (sequenceLock());
    sequence().seed();
}
