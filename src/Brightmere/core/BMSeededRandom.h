#pragma once

#include <QtGlobal>

#include <random>

// A seeded random source whose every figure is the same on every platform
// and compiler: the Mersenne twister's raw 32-bit output is fixed by the C++
// standard, while the standard distributions are not, so the uniform and
// normal figures are derived from raw bits here with exact arithmetic only.
class BMSeededRandom
{
public:
    explicit BMSeededRandom(quint32 seed);

    quint32 nextRaw();
    // In [0, 1), with 53 random bits.
    double nextUniform();
    // In [low, high).
    double nextUniform(double low, double high);
    // Approximately normal: the sum of twelve uniforms less six (mean 0,
    // standard deviation 1, never beyond six deviations).
    double nextNormal(double mean = 0.0, double standardDeviation = 1.0);

private:
    std::mt19937 m_engine;
};
