#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

/// A reader of files that cannot be trusted. run() hands it one input and ends the process if the outcome breaks a
/// promise of the reader; the sanitizers end it for everything else.
struct FuzzTarget {
    const char *name; ///< also of its folder in the corpus
    void (*run)(const QByteArray &input);
};

/// The targets of all files. Null if there is none of that name.
const std::vector<FuzzTarget> &fuzzTargets();
const FuzzTarget *findFuzzTarget(const QByteArray &name);

// The targets of each file.
std::vector<FuzzTarget> trackTargets();
std::vector<FuzzTarget> soundTargets();
std::vector<FuzzTarget> videoTargets();
std::vector<FuzzTarget> recordingTargets();
std::vector<FuzzTarget> settingsTargets();

/// A path in the directory for the files of an input, with the parent directories created. Removed when the process
/// ends.
QString scratchPath(const QString &name);

/// Writes a file there and returns its path.
QString writeScratch(const QString &name, const QByteArray &content);

/// Makes the content of a settings file the settings of the module.
void applySettings(const QByteArray &content);

/// Ends the process with a message unless `isKept`.
void expect(bool isKept, const char *promise);
