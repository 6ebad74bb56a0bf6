#pragma once

/// Which sound there is to record at present. Each call asks the system: at most a few seconds where it does not
/// answer.
namespace kel::SoundDevices
{

bool hasMicrophone();

/// An output whose sound can be recorded.
bool hasSystemAudio();

} // namespace kel::SoundDevices
