#pragma once

#include <QtGlobal>

/// KELMOVIE_EXPORT marks what the shared library exports; everything else in it is hidden.
///
/// The module logs through these categories, all enabled by default, so that a host can filter them with
/// QLoggingCategory::setFilterRules(), for example "kelmovie.*=false":
/// - kelmovie.record     starting and stopping a recording, its tracks and their threads
/// - kelmovie.recording  reading and writing the files of a recording
/// - kelmovie.audio      capture, playback and processing of sound
/// - kelmovie.playback   loading and playing a recording
/// - kelmovie.export     exporting a recording
/// - kelmovie.codec      encoders and decoders
/// - kelmovie.screen     capture of screen and pointer
/// - kelmovie.input      global keyboard and mouse events
/// - kelmovie.lottie     vector animations
/// - kelmovie.ui         theme, style sheets and icons
///
/// Lines are logged from every thread of a recording: an installed message handler must be thread-safe.
#if defined(KELMOVIE_BUILD)
#define KELMOVIE_EXPORT Q_DECL_EXPORT
#else
#define KELMOVIE_EXPORT Q_DECL_IMPORT
#endif
