#pragma once

/// The recording interfaces of Core Audio: the SDK's own headers on Windows; on other systems the same names,
/// signatures and constants, implemented over the sound server.
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
