#pragma once

/// The part of Core Audio that records sound: the SDK's own headers on Windows; elsewhere the same names, signatures
/// and constants, over the sound server.
#ifdef _WIN32
#include <windows.h>

#include <audioclient.h>
#include <ks.h>
#include <ksmedia.h>
#include <mmdeviceapi.h>
#include <mmreg.h>
#else
#include "coreaudio/sdk/AudioInterfaces.h"
#include "coreaudio/sdk/Com.h"
#include "coreaudio/sdk/WaveFormat.h"
#endif
