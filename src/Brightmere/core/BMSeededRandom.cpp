#include "BMSeededRandom.h"

BMSeededRandom::BMSeededRandom(quint32 seed)
    : m_engine(seed)
{
}

quint32 BMSeededRandom::nextRaw()
{
    return quint32(m_engine());
}

double BMSeededRandom::nextUniform()
{
    // 27 high bits of one draw and 26 of the next make a 53-bit fraction;
    // every step is exact in double arithmetic.
    const double high = double(nextRaw() >> 5);
    const double low = double(nextRaw() >> 6);
    return (high * 67108864.0 + low) / 9007199254740992.0;
}

double BMSeededRandom::nextUniform(double low, double high)
{
    return low + (high - low) * nextUniform();
}

double BMSeededRandom::nextNormal(double mean, double standardDeviation)
{
    double sum = 0.0;
    for (int i = 0; i < 12; ++i)
        sum += nextUniform();
    return mean + standardDeviation * (sum - 6.0);
}
