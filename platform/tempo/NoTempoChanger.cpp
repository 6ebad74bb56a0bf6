#include "tempo/TempoChanger.h"

namespace kel
{

class TempoChanger::Private
{
};

bool TempoChanger::supports(int, int, double)
{
    return false;
}

TempoChanger::TempoChanger(int, int, double) {}

TempoChanger::~TempoChanger() = default;

void TempoChanger::setTempo(double) {}

int TempoChanger::inputOffset() const
{
    return 0;
}

void TempoChanger::put(const float *, int) {}

int TempoChanger::take(float *, int)
{
    return 0;
}

} // namespace kel
