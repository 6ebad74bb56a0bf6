#pragma once

/// Which sound can be recorded at present. Each call queries the system, and takes up to a few seconds if that does not
/// respond.
namespace kel::SoundDevices
{

bool hasMicrophone();

/// Whether there is an output whose sound can be recorded.
bool hasSystemAudio();

} // namespace kel::SoundDevices
