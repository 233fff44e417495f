// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <vector>

namespace havrel {

/// How long \p work takes, in milliseconds.
inline double milliseconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The middle one of 21 samples.
inline double median(const std::function<double()>& sample)
{
    constexpr int kRounds = 21;
    std::vector<double> samples;
    for (int round = 0; round < kRounds; ++round)
        samples.push_back(sample());
    std::nth_element(samples.begin(), samples.begin() + kRounds / 2, samples.end());
    return samples[kRounds / 2];
}

} // namespace havrel
