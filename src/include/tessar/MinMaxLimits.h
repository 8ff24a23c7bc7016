#pragma once

namespace kestrix {

/// An expected range of a profiler measurement. A range that is not defined is all zero.
struct MinMaxLimits {
    long long m_min;
    long long m_max;
    bool m_isDefined;

    MinMaxLimits() : m_min(0), m_max(0), m_isDefined(false) {}
    MinMaxLimits(long long min, long long max, bool isDefined) : m_min(min), m_max(max), m_isDefined(isDefined) {}
    /// A defined range.
    MinMaxLimits(long long min, long long max) : m_min(min), m_max(max), m_isDefined(true) {}
    MinMaxLimits(const MinMaxLimits& other) = default;
    MinMaxLimits& operator=(const MinMaxLimits& other) = default;
};

} // namespace kestrix
