#pragma once

#include <coreaudio/CoreAudio.h>

#include <QtGlobal>

#include <functional>

namespace kel
{

/// What the capture of system audio takes from its surroundings; a test puts a scripted device and clock in their
/// place.
struct CaptureDependencies {
    /// That of the system.
    CaptureDependencies();

    std::function<HRESULT(IMMDeviceEnumerator **)> createEnumerator;

    /// Whose sound: what the default output plays, or what the default input hears.
    EDataFlow flow = eRender;

    /// Milliseconds of the steady clock that the times of packets refer to.
    std::function<qint64()> nowMs;

    /// Lets a moment pass in which more sound can arrive.
    std::function<void()> rest;
};

} // namespace kel
