#pragma once

#include <coreaudio/CoreAudio.h>

#include <QtGlobal>

#include <functional>

namespace kel
{

/// The system services that capturing sound depends on. Tests replace them by a scripted device and clock.
struct CaptureDependencies {
    /// The services of the operating system.
    CaptureDependencies();

    std::function<HRESULT(IMMDeviceEnumerator **)> createEnumerator;

    /// Milliseconds of the steady clock that packet times refer to.
    std::function<qint64()> nowMs;

    /// Waits a moment, so that more sound can arrive.
    std::function<void()> rest;
};

} // namespace kel
